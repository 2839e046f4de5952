// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/FieldHints.h"

#include "VantlePresets/settings/VideoSettings.h"

#include <QtCore/QCoreApplication>

#include <algorithm>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

QString tr(const char *text)
{
    return QCoreApplication::translate("vantle::FieldHints", text);
}

/// The first part that H.264 profile names share: "H264_High_" of "H264_High_4_1".
QString typeOf(const QString &profile)
{
    return profile.section(u'_', 0, 1) + u'_';
}

/// Of the profiles that fit, the lowest one of the same type that carries the bit rate, too.
QString bestOf(const QStringList &fitting, const VideoSettings &settings)
{
    const QString type = typeOf(settings.profile());
    const auto carries = [&](const QString &name) {
        for (const H264Profile &profile : settings.availableH264Profiles()) {
            if (profile.displayName() == name)
                return profile.maxBitRate() >= settings.bitRate();
        }
        return true;
    };
    for (const QString &name : fitting) {
        if (name.startsWith(type) && carries(name))
            return name;
    }
    const QString usual = u"H264_Main_AutoLevel"_s;
    return fitting.contains(usual) ? usual : fitting.value(0);
}

QString profileHint(const VideoSettings &settings)
{
    const QStringList fitting = fittingProfiles(settings);
    if (fitting.contains(settings.profile()))
        return {};
    if (fitting.isEmpty())
        return tr("No profile fits this size and rate.");
    const auto &offered = settings.availableH264Profiles();
    const bool isKnown = settings.codec() == VideoCodec::h264 &&
                         std::any_of(offered.begin(), offered.end(), [&](const H264Profile &profile) {
                             return profile.displayName() == settings.profile();
                         });
    const QString best = bestOf(fitting, settings);
    if (!isKnown)
        return tr("%1 is no profile of %2. %3 fits.")
            .arg(settings.profile(), displayName(settings.codec()), best);
    return tr("%1 is too low for %2 x %3 at %4 frames per second. %5 fits.")
        .arg(settings.profile(), QString::number(settings.width()), QString::number(settings.height()),
             QString::number(settings.frameRate()), best);
}

} // namespace

QStringList fittingProfiles(const VideoSettings &settings)
{
    if (settings.codec() == VideoCodec::h264 &&
        !H264Profile::isComputable(settings.width(), settings.height(), settings.frameRate()))
        return {};
    return settings.profileLevels(settings.codec(), settings.resolution(), settings.frameRate());
}

QList<FieldHint> hintsFor(const VideoSettings &settings)
{
    QList<FieldHint> hints;
    if (const QString text = profileHint(settings); !text.isEmpty())
        hints.append({u"profile"_s, text});
    const qint64 maximum = settings.maxBitRate();
    if (maximum > 0 && settings.bitRate() > maximum)
        hints.append({u"bitRate"_s,
                      tr("%1 allows no more than %2.").arg(settings.profile(), QString::number(maximum))});
    return hints;
}

QString pidHint(qint64 pid)
{
    return pid >= 16 && pid <= 8190 ? QString() : tr("A PID is a number from 16 to 8190.");
}

QString portHint(qint64 port)
{
    return port >= 1 && port <= 65535 ? QString() : tr("A port is a number from 1 to 65535.");
}

} // namespace vantle
