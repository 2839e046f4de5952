// SPDX-License-Identifier: MIT
#include "VantlePresets/model/ConnectionPrivate.h"
#include "VantlePresets/model/PresetKeys.h"

namespace vantle {
namespace {

using Data = RTMPPrivate;
using RTMP = RTMPVantlePreset;
using Rows = SharedRows<RTMP, Data>;

constexpr qint64 kGreatestPort = 65535;

// The turns are those of reading the class's own keys, and of an update. A field that the document would not
// keep is not taken over by an update either.
constexpr RecordTable kFields{std::array{
    Rows::kName.order(0, 2),
    Rows::kType.order(0, 1),
    Rows::field<&Data::streamingURL, &RTMP::setStreamingURL>("streamingURL", "Server")
        .order(1, 3)
        .means("The server's host name or URL.")
        .address(),
    Rows::field<&Data::streamingProtocol, &RTMP::setStreamingProtocol>("streamingProtocol", "Protocol")
        .order(2, 4),
    Rows::field<&Data::portNumber, &RTMP::setPortNumber>("portNumber", "Port")
        .order(3, 5)
        .range(1, kGreatestPort),
    Rows::field<&Data::authenticate, &RTMP::setAuthenticate>("authenticate", "Authentication")
        .order(4, 6)
        .means("Whether the server asks for a login."),
    Rows::field<&Data::authenticationLogin, &RTMP::setAuthenticationLogin>("authenticationLogin", "Login")
        .order(5, 7)
        .keptIf(&Data::authenticate, "authenticate"),
    Rows::field<&Data::authenticationPassword, &RTMP::setAuthenticationPassword>("authenticationPassword",
                                                                                 "Password")
        .order(6, 8)
        .keptIf(&Data::authenticate, "authenticate")
        .means("In plain text.")
        .secret(),
    Rows::field<&Data::isBackup, &RTMP::setIsBackup>("isBackup", "Backup")
        .order(7, 10)
        .keptBy(kServiceKinds)
        .means("Whether the stream goes to the backup ingest."),
    Rows::field<&Data::streamKey, &RTMP::setStreamKey>("streamKey", "Stream key")
        .order(8, 11)
        .keptBy(kServiceKinds)
        .means("In plain text.")
        .secret(),
    Rows::field<&Data::application, &RTMP::setApplication>("application", "Application")
        .order(9, 9)
        .keptBy(kServiceKinds)
        .means("The application's name on the server."),
    Rows::kVideo.order(0, 12),
    Rows::kAudio.order(0, 13),
}};

} // namespace

std::shared_ptr<RTMPVantlePreset> RTMPPrivate::decode(const document::ObjectReader &root)
{
    auto preset = std::make_shared<RTMP>(RTMP::Key{});
    decodeBase(*preset, root);
    kFields.read(preset->data(), root);
    separateDefaultTrack(*preset);
    return preset;
}

void RTMPPrivate::takeDecoded(const RTMPPrivate &decoded)
{
    const VantlePresetPrivate own = *this;
    *this = decoded;
    name = own.name;
    uuid = own.uuid;
    defaultAudioSettings = own.defaultAudioSettings;
}

void RTMPPrivate::encode(document::DocumentWriter &writer) const
{
    kFields.write(*this, writer);
}

const QList<Field> &RTMPPrivate::classFields()
{
    static const QList<Field> list = kFields.fields();
    return list;
}

std::shared_ptr<RTMPVantlePreset> RTMPVantlePreset::decoded(QByteArrayView document)
{
    const document::Document json(document, isPresetKey);
    return RTMPPrivate::decode(json.root());
}

void RTMPVantlePreset::update(const RTMPVantlePreset &other)
{
    kFields.update(*this, data(), other.data());
}

} // namespace vantle
