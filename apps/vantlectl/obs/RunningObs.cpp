// SPDX-License-Identifier: MIT
#include "apps/vantlectl/obs/RunningObs.h"

#include <QtCore/QJsonArray>

#include <array>

namespace vantle::ctl::obs {

using namespace Qt::StringLiterals;

namespace {

/// A request that says whether something runs.
struct Activity
{
    QLatin1StringView request;
    std::array<QLatin1StringView, 3> fields; ///< each of which says so
    QLatin1StringView text;
};

constexpr std::array<Activity, 4> kActivities{
    {{"GetStreamStatus"_L1, {"outputActive"_L1, "outputReconnecting"_L1, ""_L1}, "streams"_L1},
     {"GetRecordStatus"_L1, {"outputActive"_L1, "outputPaused"_L1, ""_L1}, "records"_L1},
     {"GetReplayBufferStatus"_L1, {"outputActive"_L1, ""_L1, ""_L1}, "fills its replay buffer"_L1},
     {"GetVirtualCamStatus"_L1, {"outputActive"_L1, ""_L1, ""_L1}, "feeds its virtual camera"_L1}}};

constexpr int kNotFound = 600;
constexpr int kUnavailable = 604;

} // namespace

QString PendingAudio::text() const
{
    return u"%1 %2 %3"_s.arg(run).arg(running.sampleRate).arg(running.channelSetup);
}

std::optional<PendingAudio> PendingAudio::parse(const QString &text)
{
    const QStringList parts = text.split(u' ');
    if (parts.size() != 3)
        return std::nullopt;
    return PendingAudio{parts[0], {parts[1].toLongLong(), parts[2]}};
}

AudioFormat runningAudio(const AudioFormat &stored, const std::optional<PendingAudio> &pending,
                         const QString &run)
{
    return pending && pending->run == run ? pending->running : stored;
}

QString parameter(Connection &connection, const QString &category, const QString &name)
{
    const QJsonObject answer = connection.request(
        u"GetProfileParameter"_s, {{u"parameterCategory"_s, category}, {u"parameterName"_s, name}});
    const QJsonValue value = answer["parameterValue"_L1];
    return value.isString() ? value.toString() : answer["defaultParameterValue"_L1].toString();
}

AudioFormat storedAudio(Connection &connection)
{
    return {parameter(connection, "Audio"_L1, "SampleRate"_L1).toLongLong(),
            parameter(connection, "Audio"_L1, "ChannelSetup"_L1)};
}

RunningObs lookAt(Connection &connection, const QString &run)
{
    RunningObs obs;
    obs.run = run;
    obs.host.version =
        QVersionNumber::fromString(connection.request(u"GetVersion"_s)["obsVersion"_L1].toString());
    const QJsonObject video = connection.request(u"GetVideoSettings"_s);
    obs.host.canvas = QSize(video["baseWidth"_L1].toInt(), video["baseHeight"_L1].toInt());
    const QJsonObject list = connection.request(u"GetProfileList"_s);
    obs.profile = list["currentProfileName"_L1].toString();
    for (const QJsonValue &name : list["profiles"_L1].toArray())
        obs.profiles.append(name.toString());
    obs.storedAudio = storedAudio(connection);
    obs.host.audio = runningAudio(
        obs.storedAudio, PendingAudio::parse(parameter(connection, kOwnCategory, kAudioParameter)), run);
    return obs;
}

void refuseWhileActive(Connection &connection)
{
    for (const Activity &activity : kActivities) {
        QJsonObject status;
        try {
            status = connection.request(activity.request);
        } catch (const RequestError &error) {
            // There is no such output in this OBS.
            if (error.code() == kNotFound || error.code() == kUnavailable)
                continue;
            throw;
        }
        for (const QLatin1StringView field : activity.fields) {
            if (!field.isEmpty() && status[field].toBool())
                throw Error("OBS "_L1 + activity.text + "; nothing was changed"_L1);
        }
    }
}

} // namespace vantle::ctl::obs
