// SPDX-License-Identifier: MIT
#include "VantlePresets/model/RTMPVantlePreset.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/document/DocumentReader.h"
#include "VantlePresets/document/DocumentWriter.h"
#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/PresetKeys.h"
#include "VantlePresets/model/ServiceIngest.h"

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using StreamingProtocol = RTMPVantlePreset::StreamingProtocol;

constexpr EnumerationTable<StreamingProtocol, 4> kProtocols{"unexpected StreamingProtocol value",
                                                            {{{StreamingProtocol::rtmp, "RTMP"_L1},
                                                              {StreamingProtocol::rtmps, "RTMPS"_L1},
                                                              {StreamingProtocol::rtspUDP, "RTSP UDP"_L1},
                                                              {StreamingProtocol::rtspTCP, "RTSP TCP"_L1}}}};

} // namespace

const EnumerationTable<StreamingProtocol, 4> &streamingProtocols()
{
    return kProtocols;
}
QString displayName(StreamingProtocol protocol)
{
    return kProtocols.text(protocol);
}

std::shared_ptr<RTMPVantlePreset> RTMPVantlePreset::withType(StreamingType type, const QString &name,
                                                             bool isBackup, const QString &streamKey)
{
    auto preset = std::make_shared<RTMPVantlePreset>(Key{});
    preset->m_isBackup = isBackup;
    preset->m_streamKey = streamKey;
    if (const ServiceIngest *service = firstIngestOf(type)) {
        preset->m_streamingURL = service->host;
        preset->m_application = service->application;
    }
    preset->makeDefaults(type, name);
    return preset;
}

std::shared_ptr<RTMPVantlePreset> RTMPVantlePreset::withFileAtPath(const QString &path)
{
    auto preset = std::make_shared<RTMPVantlePreset>(Key{});
    if (!preset->readBaseFromFile(path))
        return nullptr;
    try {
        const document::Document json(readFile(fileSystemPath(path)), isPresetKey);
        const auto decoded = decode(json.root());
        preset->m_streamingURL = decoded->m_streamingURL;
        preset->m_streamingProtocol = decoded->m_streamingProtocol;
        preset->m_portNumber = decoded->m_portNumber;
        preset->m_authenticate = decoded->m_authenticate;
        preset->m_authenticationLogin = decoded->m_authenticationLogin;
        preset->m_authenticationPassword = decoded->m_authenticationPassword;
        preset->m_isBackup = decoded->m_isBackup;
        preset->m_streamKey = decoded->m_streamKey;
        preset->m_application = decoded->m_application;
        preset->takeDecodedBase(*decoded);
    } catch (const std::exception &error) {
        logLine("Error reading file: "_L1 + QString::fromUtf8(error.what()));
        return nullptr;
    }
    return preset;
}

std::shared_ptr<RTMPVantlePreset> RTMPVantlePreset::decode(const document::ObjectReader &root)
{
    auto preset = std::make_shared<RTMPVantlePreset>(Key{});
    preset->decodeBase(root);
    preset->decodeConnection(root);
    preset->separateDefaultTrack();
    return preset;
}

bool RTMPVantlePreset::keepsServiceKeys() const
{
    return type() == StreamingType::youTube || type() == StreamingType::facebook;
}

void RTMPVantlePreset::decodeConnection(const document::ObjectReader &root)
{
    m_streamingURL = root.string("streamingURL");
    m_streamingProtocol =
        kProtocols.fromText(root.text("streamingProtocol")).value_or(StreamingProtocol::rtmp);
    m_portNumber = root.integer("portNumber");
    m_authenticate = root.boolean("authenticate");
    if (m_authenticate) {
        m_authenticationLogin = root.string("authenticationLogin");
        m_authenticationPassword = root.string("authenticationPassword");
    }
    if (keepsServiceKeys()) {
        m_isBackup = root.boolean("isBackup");
        m_streamKey = root.string("streamKey");
        m_application = root.string("application");
    }
}

void RTMPVantlePreset::encode(document::DocumentWriter &writer) const
{
    writer.string("type", streamingTypes().text(type()));
    writer.string("streamingURL", m_streamingURL);
    writer.string("streamingProtocol", kProtocols.text(m_streamingProtocol));
    writer.integer("portNumber", m_portNumber);
    writer.boolean("authenticate", m_authenticate);
    if (m_authenticate) {
        writer.string("authenticationLogin", m_authenticationLogin);
        writer.string("authenticationPassword", m_authenticationPassword);
    }
    if (keepsServiceKeys()) {
        writer.boolean("isBackup", m_isBackup);
        writer.string("streamKey", m_streamKey);
        writer.string("application", m_application);
    }
    encodeLists(writer);
}

void RTMPVantlePreset::setIsBackup(bool isBackup)
{
    assign(m_isBackup, isBackup, &RTMPVantlePreset::isBackupChanged);
}

void RTMPVantlePreset::setStreamKey(const QString &streamKey)
{
    assign(m_streamKey, streamKey, &RTMPVantlePreset::streamKeyChanged);
}

void RTMPVantlePreset::setStreamingURL(const QString &url)
{
    assign(m_streamingURL, url, &RTMPVantlePreset::streamingURLChanged);
}

void RTMPVantlePreset::setStreamingProtocol(StreamingProtocol protocol)
{
    assign(m_streamingProtocol, protocol, &RTMPVantlePreset::streamingProtocolChanged);
}

void RTMPVantlePreset::setPortNumber(qint64 port)
{
    assign(m_portNumber, port, &RTMPVantlePreset::portNumberChanged);
}

void RTMPVantlePreset::setAuthenticate(bool authenticate)
{
    assign(m_authenticate, authenticate, &RTMPVantlePreset::authenticateChanged);
}

void RTMPVantlePreset::setAuthenticationLogin(const QString &login)
{
    assign(m_authenticationLogin, login, &RTMPVantlePreset::authenticationLoginChanged);
}

void RTMPVantlePreset::setAuthenticationPassword(const QString &password)
{
    assign(m_authenticationPassword, password, &RTMPVantlePreset::authenticationPasswordChanged);
}

void RTMPVantlePreset::setApplication(const QString &application)
{
    assign(m_application, application, &RTMPVantlePreset::applicationChanged);
}

void RTMPVantlePreset::update(const RTMPVantlePreset &other)
{
    setType(other.type());
    setName(other.name());
    setStreamingURL(other.m_streamingURL);
    setStreamingProtocol(other.m_streamingProtocol);
    setPortNumber(other.m_portNumber);
    setAuthenticate(other.m_authenticate);
    if (m_authenticate) {
        setAuthenticationLogin(other.m_authenticationLogin);
        setAuthenticationPassword(other.m_authenticationPassword);
    }
    if (keepsServiceKeys()) {
        setApplication(other.m_application);
        setIsBackup(other.m_isBackup);
        setStreamKey(other.m_streamKey);
    }
    setVideoSettings(other.videoSettings());
    setAudioSettings(other.audioSettings());
}

QList<int> StreamingProtocolHelper::allRawValues()
{
    return kProtocols.rawValues();
}

QString StreamingProtocolHelper::displayName(qint64 rawValue)
{
    const auto protocol = kProtocols.fromRawValue(rawValue);
    return protocol ? vantle::displayName(*protocol) : QString();
}

QStringList StreamingProtocolHelper::allDisplayNames()
{
    return kProtocols.texts();
}

} // namespace vantle
