// SPDX-License-Identifier: MIT
#include "VantlePresets/model/RTMPVantlePreset.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/ConnectionPrivate.h"
#include "VantlePresets/model/PresetKeys.h"
#include "VantlePresets/model/ServiceIngest.h"

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using StreamingProtocol = RTMPVantlePreset::StreamingProtocol;

constexpr EnumerationTable<StreamingProtocol>::Case kProtocolCases[] = {
    {StreamingProtocol::rtmp, "RTMP"_L1},
    {StreamingProtocol::rtmps, "RTMPS"_L1},
    {StreamingProtocol::rtspUDP, "RTSP UDP"_L1},
    {StreamingProtocol::rtspTCP, "RTSP TCP"_L1}};
constexpr EnumerationTable<StreamingProtocol> kProtocols{"unexpected StreamingProtocol value",
                                                         kProtocolCases};

[[maybe_unused]] const bool kConverted = registerConversions<StreamingProtocol>();

} // namespace

RTMPVantlePreset::RTMPVantlePreset(Key key) : VantlePreset(key, std::make_unique<RTMPPrivate>()) {}
RTMPVantlePreset::~RTMPVantlePreset() = default;

RTMPPrivate &RTMPVantlePreset::data()
{
    return static_cast<RTMPPrivate &>(VantlePresetPrivate::of(*this));
}
const RTMPPrivate &RTMPVantlePreset::data() const
{
    return static_cast<const RTMPPrivate &>(VantlePresetPrivate::of(*this));
}

const EnumerationTable<StreamingProtocol> &streamingProtocols()
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
    preset->data().isBackup = isBackup;
    preset->data().streamKey = streamKey;
    if (const ServiceIngest *service = firstIngestOf(type)) {
        preset->data().streamingURL = service->host;
        preset->data().application = service->application;
    }
    VantlePresetPrivate::makeDefaults(*preset, type, name);
    return preset;
}

std::shared_ptr<RTMPVantlePreset> RTMPVantlePreset::withFileAtPath(const QString &path)
{
    auto preset = std::make_shared<RTMPVantlePreset>(Key{});
    if (!VantlePresetPrivate::readBaseFromFile(*preset, path))
        return nullptr;
    try {
        const document::Document json(readFile(fileSystemPath(path)), isPresetKey);
        const auto decoded = RTMPPrivate::decode(json.root());
        preset->data().takeDecoded(decoded->data());
    } catch (const std::exception &error) {
        logLine("Error reading file: "_L1 + QString::fromUtf8(error.what()));
        return nullptr;
    }
    return preset;
}

bool RTMPVantlePreset::isBackup() const
{
    return data().isBackup;
}

const QString &RTMPVantlePreset::streamKey() const
{
    return data().streamKey;
}

const QString &RTMPVantlePreset::streamingURL() const
{
    return data().streamingURL;
}

StreamingProtocol RTMPVantlePreset::streamingProtocol() const
{
    return data().streamingProtocol;
}

qint64 RTMPVantlePreset::portNumber() const
{
    return data().portNumber;
}

bool RTMPVantlePreset::authenticate() const
{
    return data().authenticate;
}

const QString &RTMPVantlePreset::authenticationLogin() const
{
    return data().authenticationLogin;
}

const QString &RTMPVantlePreset::authenticationPassword() const
{
    return data().authenticationPassword;
}

const QString &RTMPVantlePreset::application() const
{
    return data().application;
}

void RTMPVantlePreset::setIsBackup(bool isBackup)
{
    assign(data().isBackup, isBackup, &RTMPVantlePreset::isBackupChanged);
}

void RTMPVantlePreset::setStreamKey(const QString &streamKey)
{
    assign(data().streamKey, streamKey, &RTMPVantlePreset::streamKeyChanged);
}

void RTMPVantlePreset::setStreamingURL(const QString &url)
{
    assign(data().streamingURL, url, &RTMPVantlePreset::streamingURLChanged);
}

void RTMPVantlePreset::setStreamingProtocol(StreamingProtocol protocol)
{
    assign(data().streamingProtocol, protocol, &RTMPVantlePreset::streamingProtocolChanged);
}

void RTMPVantlePreset::setPortNumber(qint64 port)
{
    assign(data().portNumber, port, &RTMPVantlePreset::portNumberChanged);
}

void RTMPVantlePreset::setAuthenticate(bool authenticate)
{
    assign(data().authenticate, authenticate, &RTMPVantlePreset::authenticateChanged);
}

void RTMPVantlePreset::setAuthenticationLogin(const QString &login)
{
    assign(data().authenticationLogin, login, &RTMPVantlePreset::authenticationLoginChanged);
}

void RTMPVantlePreset::setAuthenticationPassword(const QString &password)
{
    assign(data().authenticationPassword, password, &RTMPVantlePreset::authenticationPasswordChanged);
}

void RTMPVantlePreset::setApplication(const QString &application)
{
    assign(data().application, application, &RTMPVantlePreset::applicationChanged);
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
