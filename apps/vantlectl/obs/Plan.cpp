// SPDX-License-Identifier: MIT
#include "apps/vantlectl/obs/PlanDraft.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QRegularExpression>

namespace vantle::ctl::obs {

using namespace Qt::StringLiterals;

namespace {

constexpr int kOldestVersion = 28; // which brings obs-websocket 5

void planMode(PlanDraft &draft)
{
    draft.set(u"Output"_s, u"Mode"_s, u"Simple"_s);
    draft.set(u"SimpleOutput"_s, u"StreamEncoder"_s, u"x264"_s);
    draft.set(u"SimpleOutput"_s, u"StreamAudioEncoder"_s, u"aac"_s);
    draft.set(u"SimpleOutput"_s, u"UseAdvanced"_s, u"true"_s);
}

} // namespace

Plan planFor(const VantlePreset &preset, const Host &host)
{
    PlanDraft draft{preset, host, {}};
    draft.plan.profile = profileName(preset.name());
    if (host.version.majorVersion() < kOldestVersion)
        draft.refuse(u"OBS"_s,
                     u"version %1 is too old, %2 is the first that can be told"_s.arg(host.version.toString())
                         .arg(kOldestVersion));
    planMode(draft);
    if (planTarget(draft)) {
        planVideo(draft);
        planAudio(draft);
    }
    return draft.plan;
}

QString profileName(const QString &presetName)
{
    constexpr qsizetype kLongest = 48;
    static const QRegularExpression others(u"[^A-Za-z0-9 ]+"_s);
    QString name = presetName;
    name = name.remove(others).simplified().left(kLongest).trimmed();
    if (name != presetName) {
        const QByteArray digest = QCryptographicHash::hash(presetName.toUtf8(), QCryptographicHash::Sha1);
        name = u"%1 %2"_s.arg(name, QString::fromLatin1(digest.toHex().first(8))).trimmed();
    }
    return "Vantle "_L1 + name;
}

} // namespace vantle::ctl::obs
