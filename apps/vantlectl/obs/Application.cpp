// SPDX-License-Identifier: MIT
#include "apps/vantlectl/obs/Application.h"

#include <algorithm>

namespace vantle::ctl::obs {

using namespace Qt::StringLiterals;

namespace {

constexpr auto kServiceType = "rtmp_custom"_L1;
/// Stands in for a moment where OBS has to select a profile anew: selecting the current one does nothing. No
/// preset's profile has this name.
constexpr auto kInterim = "Vantle-Interim"_L1;

/// Values whose change takes effect when the profile is selected.
bool isReadAtSelection(const Parameter &parameter)
{
    return (parameter.category == "Output"_L1 && parameter.name == "Mode"_L1) ||
           parameter.name == "StreamEncoder"_L1;
}

class Applier
{
public:
    Applier(Connection &connection, const RunningObs &obs, const Plan &plan, const QString &presetName)
        : m_connection(connection), m_obs(obs), m_plan(plan), m_presetName(presetName)
    {
    }

    bool run()
    {
        refuseQuestions();
        try {
            applyAll();
        } catch (const Error &error) {
            throw Error(error.text() + "; "_L1 + putBack());
        }
        return m_hasChanged;
    }

private:
    /// OBS asks in a window, and does not answer until somebody has, when the audio format of the profile to
    /// come differs.
    void refuseQuestions() const
    {
        if (m_obs.profile != m_plan.profile && m_obs.profiles.contains(m_plan.profile) &&
            m_plan.audio != m_obs.storedAudio)
            throw Error("OBS would ask on its screen whether to start again: choose the profile \""_L1 +
                        m_plan.profile + "\" in OBS's own menu and let it, then apply the preset"_L1);
    }

    void applyAll()
    {
        selectProfile();
        if (m_obs.profiles.contains(kInterim)) // of a command that did not come to its end
            removeInterim();
        setParameter({kOwnCategory, kPresetParameter, m_presetName});
        bool hasToReselect = false;
        for (const Parameter &parameter : m_plan.parameters)
            hasToReselect = (setParameter(parameter) && isReadAtSelection(parameter)) || hasToReselect;
        setAudioFormat();
        notePendingAudio();
        if (hasToReselect)
            reselect();
        setVideo();
        setService();
    }

    void selectProfile()
    {
        if (m_obs.profile == m_plan.profile)
            return;
        m_hasChanged = true;
        if (m_obs.profiles.contains(m_plan.profile)) {
            select(m_plan.profile);
            return;
        }
        m_isNew = true;
        m_connection.request(u"CreateProfile"_s, {{u"profileName"_s, m_plan.profile}});
        expectProfile(m_plan.profile);
    }

    /// OBS can be asking in a window then whether to start again. It has switched, and waits.
    void select(const QString &profile)
    {
        try {
            m_connection.request(u"SetCurrentProfile"_s, {{u"profileName"_s, profile}});
        } catch (const NoAnswer &) {
            m_isAsking = true;
            throw Error("OBS is asking on its screen about the audio format of the profile \""_L1 + profile +
                        u'"');
        }
        expectProfile(profile);
    }

    void expectProfile(const QString &profile)
    {
        const QJsonObject list = m_connection.request(u"GetProfileList"_s);
        if (list["currentProfileName"_L1].toString() != profile)
            throw Error("OBS did not take the profile \""_L1 + profile + u'"');
    }

    /// Through a profile of the same audio format, so that OBS has nothing to ask.
    void reselect()
    {
        m_connection.request(u"CreateProfile"_s, {{u"profileName"_s, QString(kInterim)}});
        expectProfile(kInterim);
        setAudioFormat();
        select(m_plan.profile);
        removeInterim();
    }

    void removeInterim()
    {
        m_connection.request(u"RemoveProfile"_s, {{u"profileName"_s, QString(kInterim)}});
    }

    /// Whether it had another value.
    bool setParameter(const Parameter &wanted)
    {
        const auto value = [&] { return parameter(m_connection, wanted.category, wanted.name); };
        if (value() == wanted.value)
            return false;
        m_hasChanged = true;
        const QJsonValue written = wanted.value.isEmpty() ? QJsonValue() : QJsonValue(wanted.value);
        m_connection.request(u"SetProfileParameter"_s, {{u"parameterCategory"_s, wanted.category},
                                                        {u"parameterName"_s, wanted.name},
                                                        {u"parameterValue"_s, written}});
        if (value() != wanted.value)
            throw Error("OBS did not take "_L1 + wanted.category + u'/' + wanted.name);
        return true;
    }

    void setAudioFormat()
    {
        setParameter({u"Audio"_s, u"SampleRate"_s, QString::number(m_plan.audio.sampleRate)});
        setParameter({u"Audio"_s, u"ChannelSetup"_s, m_plan.audio.channelSetup});
    }

    void notePendingAudio()
    {
        const bool isPending = m_plan.audio != m_obs.host.audio && !m_obs.run.isEmpty();
        const bool hadChanged = m_hasChanged;
        setParameter({kOwnCategory, kAudioParameter,
                      isPending ? PendingAudio{m_obs.run, m_obs.host.audio}.text() : QString()});
        m_hasChanged = hadChanged; // a note of ours is no change of what OBS does
    }

    [[nodiscard]] QJsonObject wantedVideo() const
    {
        return {{u"baseWidth"_s, m_obs.host.canvas.width()},
                {u"baseHeight"_s, m_obs.host.canvas.height()},
                {u"outputWidth"_s, m_plan.picture.size.width()},
                {u"outputHeight"_s, m_plan.picture.size.height()},
                {u"fpsNumerator"_s, m_plan.picture.rateNumerator},
                {u"fpsDenominator"_s, m_plan.picture.rateDenominator}};
    }

    /// OBS may tell more than it was told.
    static bool holds(const QJsonObject &settings, const QJsonObject &wanted)
    {
        const QStringList keys = wanted.keys();
        return std::all_of(keys.begin(), keys.end(),
                           [&](const QString &key) { return settings[key] == wanted[key]; });
    }

    void setVideo()
    {
        const QJsonObject wanted = wantedVideo();
        const auto isSet = [&] { return holds(m_connection.request(u"GetVideoSettings"_s), wanted); };
        if (isSet())
            return;
        m_hasChanged = true;
        m_connection.request(u"SetVideoSettings"_s, wanted);
        if (!isSet())
            throw Error(u"OBS did not take the size or the frame rate"_s);
    }

    void setService()
    {
        const auto isSet = [&] {
            const QJsonObject answer = m_connection.request(u"GetStreamServiceSettings"_s);
            return answer["streamServiceType"_L1].toString() == kServiceType &&
                   holds(answer["streamServiceSettings"_L1].toObject(), m_plan.service);
        };
        if (isSet())
            return;
        m_hasChanged = true;
        m_connection.request(u"SetStreamServiceSettings"_s, {{u"streamServiceType"_s, QString(kServiceType)},
                                                             {u"streamServiceSettings"_s, m_plan.service}});
        if (!isSet())
            throw Error(u"OBS did not take the server"_s);
    }

    /// What has become of the profile, for the message of a failure.
    QString putBack()
    {
        if (!m_hasChanged)
            return u"nothing was changed"_s;
        if (m_isAsking)
            return u"answer it, then apply the preset again"_s;
        try {
            select(m_obs.profile);
            if (m_isNew)
                m_connection.request(u"RemoveProfile"_s, {{u"profileName"_s, m_plan.profile}});
            if (m_obs.profile == m_plan.profile)
                return "the profile \""_L1 + m_plan.profile + "\" was changed in part"_L1;
            return "OBS has its profile \""_L1 + m_obs.profile + "\" back"_L1;
        } catch (const Error &error) {
            return "OBS may be in the profile \""_L1 + m_plan.profile + "\" ("_L1 + error.text() + u')';
        }
    }

    Connection &m_connection;
    const RunningObs &m_obs;
    const Plan &m_plan;
    const QString &m_presetName;
    bool m_hasChanged = false;
    bool m_isNew = false;
    bool m_isAsking = false;
};

} // namespace

bool apply(Connection &connection, const RunningObs &obs, const Plan &plan, const QString &presetName)
{
    return Applier(connection, obs, plan, presetName).run();
}

} // namespace vantle::ctl::obs
