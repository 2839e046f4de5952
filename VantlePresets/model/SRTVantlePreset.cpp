// SPDX-License-Identifier: MIT
#include "VantlePresets/model/SRTVantlePreset.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/document/DocumentReader.h"
#include "VantlePresets/document/DocumentWriter.h"
#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/PresetKeys.h"

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using SRTMode = SRTVantlePreset::SRTMode;

constexpr EnumerationTable<SRTMode, 2> kModes{
    "unexpected SRTMode value", {{{SRTMode::caller, "Caller"_L1}, {SRTMode::listener, "Listener"_L1}}}};

} // namespace

const EnumerationTable<SRTMode, 2> &srtModes()
{
    return kModes;
}
QString displayName(SRTMode mode)
{
    return kModes.text(mode);
}

std::shared_ptr<SRTVantlePreset> SRTVantlePreset::withType(StreamingType type, const QString &name)
{
    auto preset = std::make_shared<SRTVantlePreset>(Key{});
    preset->makeDefaults(type, name);
    return preset;
}

std::shared_ptr<SRTVantlePreset> SRTVantlePreset::withFileAtPath(const QString &path)
{
    auto preset = std::make_shared<SRTVantlePreset>(Key{});
    if (!preset->readBaseFromFile(path))
        return nullptr;
    try {
        const document::Document json(readFile(fileSystemPath(path)), isPresetKey);
        const auto decoded = RTMPVantlePreset::decode(json.root());
        preset->m_streamingURL = decoded->streamingURL();
        preset->m_portNumber = decoded->portNumber();
        preset->m_authenticate = decoded->authenticate();
        preset->takeDecodedBase(*decoded);
    } catch (const std::exception &error) {
        logLine("Error reading file: "_L1 + QString::fromUtf8(error.what()));
        return nullptr;
    }
    return preset;
}

std::shared_ptr<SRTVantlePreset> SRTVantlePreset::decode(const document::ObjectReader &root)
{
    auto preset = std::make_shared<SRTVantlePreset>(Key{});
    preset->decodeBase(root);
    preset->m_streamingURL = root.string("streamingURL");
    preset->m_portNumber = root.integer("portNumber");
    preset->m_authenticate = root.boolean("authenticate");
    preset->separateDefaultTrack();
    return preset;
}

void SRTVantlePreset::encode(document::DocumentWriter &writer) const
{
    writer.string("type", streamingTypes().text(type()));
    writer.string("streamingURL", m_streamingURL);
    writer.integer("portNumber", m_portNumber);
    writer.boolean("authenticate", m_authenticate);
    encodeLists(writer);
}

void SRTVantlePreset::setIsBackup(bool isBackup)
{
    assign(m_isBackup, isBackup, &SRTVantlePreset::isBackupChanged);
}

void SRTVantlePreset::setStreamKey(const QString &streamKey)
{
    assign(m_streamKey, streamKey, &SRTVantlePreset::streamKeyChanged);
}

void SRTVantlePreset::setStreamingURL(const QString &url)
{
    assign(m_streamingURL, url, &SRTVantlePreset::streamingURLChanged);
}

void SRTVantlePreset::setPortNumber(qint64 port)
{
    assign(m_portNumber, port, &SRTVantlePreset::portNumberChanged);
}

void SRTVantlePreset::setAuthenticate(bool authenticate)
{
    assign(m_authenticate, authenticate, &SRTVantlePreset::authenticateChanged);
}

void SRTVantlePreset::setApplication(const QString &application)
{
    assign(m_application, application, &SRTVantlePreset::applicationChanged);
}

template <class Preset>
void SRTVantlePreset::takeFrom(const Preset &other)
{
    setType(other.type());
    setName(other.name());
    setStreamingURL(other.streamingURL());
    setPortNumber(other.portNumber());
    setAuthenticate(other.authenticate());
    setVideoSettings(other.videoSettings());
    setAudioSettings(other.audioSettings());
}

void SRTVantlePreset::update(const RTMPVantlePreset &other)
{
    takeFrom(other);
}
void SRTVantlePreset::update(const SRTVantlePreset &other)
{
    takeFrom(other);
}

QList<int> SRTModeHelper::allRawValues()
{
    return kModes.rawValues();
}

QString SRTModeHelper::displayName(qint64 rawValue)
{
    const auto mode = kModes.fromRawValue(rawValue);
    return mode ? vantle::displayName(*mode) : QString();
}

QStringList SRTModeHelper::allDisplayNames()
{
    return kModes.texts();
}

} // namespace vantle
