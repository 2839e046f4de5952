// SPDX-License-Identifier: MIT
#include "VantlePresets/encoder/PlanDraft.h"
#include "VantlePresets/encoder/ServerArgument.h"

#include <QtCore/QRegularExpression>

#include <algorithm>

namespace vantle::encoder {
namespace {

using namespace Qt::StringLiterals;

// Apple's authoring rules for HLS: segments of 6 s, whole multiples of the key frames' 2 s (7.5, 1.13), and
// 15 minutes of a live stream to go back (8.12).
constexpr int kSegmentSeconds = 6;
constexpr int kWindowSeconds = 15 * 60;

// YouTube takes segments of 1 to 4 s.
constexpr int kPushSegmentSeconds = 2;
constexpr int kPushWindow = 6;

enum class Place {
    folder,
    server, ///< takes files below an address, by PUT
    push,   ///< takes files by an address that ends with "file=" and their name
};

struct Base
{
    Place place;
    Argument text; ///< without a slash at the end
};

std::optional<Base> addressBase(PlanDraft &draft, const QString &output)
{
    const auto address = StreamAddress::parse(output);
    const bool isPush = address && (address->query == "file="_L1 || address->query.endsWith("&file="_L1));
    if (!address || (address->scheme != "http"_L1 && address->scheme != "https"_L1) ||
        address->host.isEmpty() || (!address->query.isEmpty() && !isPush)) {
        draft.problem(u"--output"_s,
                      u"is neither a folder nor an http or https address, whose parameters, if "
                      "it has any, end with \"file=\""_s);
        return std::nullopt;
    }
    if (address->scheme == "https"_L1)
        draft.note(u"--output"_s, kUncheckedCertificate);
    Argument text =
        serverArgument(*address).plain(address->path.isEmpty() ? QString() : u'/' + address->path);
    if (isPush)
        text.plain(u"?"_s).secret(address->query.chopped(5)).plain(address->query.last(5));
    return Base{isPush ? Place::push : Place::server, text};
}

std::optional<Base> baseOf(PlanDraft &draft)
{
    const QString &output = draft.request.output();
    if (output.contains(u'%') || (output.isEmpty() && draft.preset.name().contains(u'%'))) {
        draft.problem(u"--output"_s, u"\"%\" can't stand in the segments' place; name another one"_s);
        return std::nullopt;
    }
    if (output.contains("://"_L1))
        return addressBase(draft, output);
    QString folder = output.isEmpty() ? draft.preset.name() : output;
    while (folder.size() > 1 && folder.endsWith(u'/'))
        folder.chop(1);
    // A dot first: "a:b" would be a protocol, "-a" an option.
    if (!folder.startsWith(u'/') && !folder.startsWith(u'.'))
        folder.prepend("./"_L1);
    return Base{Place::folder, Argument().plain(folder)};
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
        entry += i == defaultTrack(preset) ? ",default:yes"_L1 : ""_L1;
        map.append(entry + ",name:audio"_L1 + number(i));
    }
    return map.join(u' ');
}

void planLadder(PlanDraft &draft, const Base &base)
{
    const bool isFragmented = draft.container == &kHlsFragments;
    // In a folder the playlists that an earlier run left are gone on from. A server need not give them back:
    // numbers that count the seconds of the clock rise as well, unless segments come faster than that.
    const bool isFolder = base.place == Place::folder;
    Arguments &out = draft.destination;
    out.add({u"-hls_time"_s, QString::number(kSegmentSeconds), u"-hls_list_size"_s,
             QString::number(kWindowSeconds / kSegmentSeconds), u"-hls_flags"_s,
             "independent_segments+delete_segments+program_date_time+"_L1 +
                 (isFolder ? "append_list+temp_file"_L1 : "discont_start"_L1)});
    if (isFolder)
        draft.masterPlaylist = base.text.text(true) + "/master.m3u8"_L1;
    else
        out.add({u"-hls_start_number_source"_s, u"epoch"_s, u"-method"_s, u"PUT"_s});
    out.add({u"-hls_segment_type"_s, isFragmented ? u"fmp4"_s : u"mpegts"_s, u"-master_pl_name"_s,
             u"master.m3u8"_s, u"-var_stream_map"_s, streamMap(draft.preset)});
    out.add(u"-hls_segment_filename"_s,
            Argument(base.text).plain(isFragmented ? u"/%v/segment_%05d.m4s"_s : u"/%v/segment_%05d.ts"_s));
    out.add(Argument(base.text).plain(u"/%v/index.m3u8"_s));
}

void planPush(PlanDraft &draft, const Base &base)
{
    Arguments &out = draft.destination;
    out.add({u"-hls_time"_s, QString::number(kPushSegmentSeconds), u"-hls_list_size"_s,
             QString::number(kPushWindow), u"-hls_flags"_s, u"independent_segments+discont_start"_s,
             u"-hls_start_number_source"_s, u"epoch"_s, u"-method"_s, u"PUT"_s, u"-hls_segment_type"_s,
             u"mpegts"_s});
    out.add(u"-hls_segment_filename"_s, Argument(base.text).plain(u"segment_%05d.ts"_s));
    out.add(Argument(base.text).plain(u"index.m3u8"_s));
}

} // namespace

void planHls(PlanDraft &draft)
{
    const auto &renditions = draft.preset.videoSettings();
    const bool hasHEVC = std::any_of(renditions.begin(), renditions.end(),
                                     [](const auto &video) { return video->codec() == VideoCodec::hevc; });
    const auto base = baseOf(draft);
    draft.container = base && base->place == Place::push ? &kHlsPush
                      : hasHEVC                          ? &kHlsFragments
                                                         : &kHlsSegments;
    if (!base)
        return;
    draft.destination.add({u"-f"_s, u"hls"_s});
    if (base->place == Place::push)
        planPush(draft, *base);
    else
        planLadder(draft, *base);
}

} // namespace vantle::encoder
