// SPDX-License-Identifier: MIT
#include "VantlePresets/encoder/PlanDraft.h"
#include "VantlePresets/encoder/ServerArgument.h"

#include <QtCore/QRegularExpression>

#include <algorithm>

namespace vantle::encoder {
namespace {

using namespace Qt::StringLiterals;

/// The folder or the upload's address, without a slash at the end.
std::optional<Argument> baseOf(PlanDraft &draft, bool &isUpload)
{
    const QString &output = draft.request.output();
    if (output.contains(u'%') || (output.isEmpty() && draft.preset.name().contains(u'%'))) {
        draft.problem(u"--output"_s, u"\"%\" can't stand in the segments' place; name another one"_s);
        return std::nullopt;
    }
    isUpload = output.contains("://"_L1);
    if (isUpload) {
        const auto address = StreamAddress::parse(output);
        if (address && (address->scheme == "http"_L1 || address->scheme == "https"_L1) &&
            !address->host.isEmpty() && address->query.isEmpty()) {
            if (address->scheme == "https"_L1)
                draft.note(u"--output"_s, kUncheckedCertificate);
            return serverArgument(*address).plain(address->path.isEmpty() ? QString() : u'/' + address->path);
        }
        draft.problem(u"--output"_s,
                      u"is neither a folder nor an http or https address without parameters"_s);
        return std::nullopt;
    }
    QString folder = output.isEmpty() ? draft.preset.name() : output;
    while (folder.size() > 1 && folder.endsWith(u'/'))
        folder.chop(1);
    // A dot first: "a:b" would be a protocol, "-a" an option.
    return Argument().plain(folder.startsWith(u'/') || folder.startsWith(u'.') ? folder : "./"_L1 + folder);
}

/// What goes into which playlist: "v:0,agroup:audio,name:video0 a:0,agroup:audio,language:de,name:audio0".
QString streamMap(const VantlePreset &preset)
{
    static const QRegularExpression tag(u"\\A[A-Za-z0-9-]+\\z"_s); // other characters would end the entry
    const AudioSettingsList &tracks = preset.audioSettings();
    const auto number = [](qsizetype i) { return QString::number(i); };
    const QString group = tracks.isEmpty() ? u""_s : u",agroup:audio"_s;
    QStringList map;
    for (qsizetype i = 0; i < preset.videoSettings().size(); ++i)
        map.append("v:"_L1 + number(i) + group + ",name:video"_L1 + number(i));
    for (qsizetype i = 0; i < tracks.size(); ++i) {
        QString entry = "a:"_L1 + number(i) + group;
        if (tag.match(tracks[i]->language()).hasMatch())
            entry += ",language:"_L1 + tracks[i]->language();
        entry += tracks[i]->isDefault() ? ",default:yes"_L1 : ""_L1;
        map.append(entry + ",name:audio"_L1 + number(i));
    }
    return map.join(u' ');
}

} // namespace

void planHls(PlanDraft &draft)
{
    const auto &renditions = draft.preset.videoSettings();
    const bool hasHEVC = std::any_of(renditions.begin(), renditions.end(),
                                     [](const auto &video) { return video->codec() == VideoCodec::hevc; });
    draft.container = hasHEVC ? &kHlsFragments : &kHlsSegments;
    bool isUpload = false;
    const auto base = baseOf(draft, isUpload);
    if (!base)
        return;
    const QString flags = u"independent_segments+delete_segments"_s;
    Arguments &out = draft.destination;
    out.add({u"-f"_s, u"hls"_s, u"-hls_time"_s, u"2"_s, u"-hls_list_size"_s, u"6"_s, u"-hls_flags"_s,
             isUpload ? flags : flags + "+temp_file"_L1});
    if (isUpload)
        out.add({u"-method"_s, u"PUT"_s});
    out.add({u"-hls_segment_type"_s, hasHEVC ? u"fmp4"_s : u"mpegts"_s, u"-master_pl_name"_s,
             u"master.m3u8"_s, u"-var_stream_map"_s, streamMap(draft.preset)});
    out.add(u"-hls_segment_filename"_s,
            Argument(*base).plain(hasHEVC ? u"/%v/segment_%05d.m4s"_s : u"/%v/segment_%05d.ts"_s));
    out.add(Argument(*base).plain(u"/%v/index.m3u8"_s));
}

} // namespace vantle::encoder
