// SPDX-License-Identifier: MIT
#include "VantlePresets/model/SRTVantlePreset.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/ConnectionPrivate.h"
#include "VantlePresets/model/PresetKeys.h"

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using SRTMode = SRTVantlePreset::SRTMode;

constexpr EnumerationTable<SRTMode>::Case kModeCases[] = {{SRTMode::caller, "Caller"_L1},
                                                          {SRTMode::listener, "Listener"_L1}};
constexpr EnumerationTable<SRTMode> kModes{"unexpected SRTMode value", kModeCases};

using Data =
    ConnectionPrivate; // so that presets of the other class that send to a server update this one, too
using SRT = SRTVantlePreset;
using Rows = SharedRows<SRT, Data>;

constexpr qint64 kGreatestPort = 65535;

// The turns are those of reading the class's own keys, and of an update.
constexpr RecordTable kFields{std::array{
    Rows::kName.order(0, 2),
    Rows::kType.order(0, 1),
    Rows::field<&Data::streamingURL, &SRT::setStreamingURL>("streamingURL", "Server")
        .order(1, 3)
        .means("The server's host name or URL.")
        .address(),
    Rows::field<&Data::portNumber, &SRT::setPortNumber>("portNumber", "Port")
        .order(2, 4)
        .range(1, kGreatestPort),
    Rows::field<&Data::authenticate, &SRT::setAuthenticate>("authenticate", "Authentication")
        .order(3, 5)
        .means("Whether the server asks for a login."),
    Rows::kVideo.order(0, 6),
    Rows::kAudio.order(0, 7),
    // For the host application; in no file.
    Rows::field<&Data::isBackup, &SRT::setIsBackup>("isBackup", "Backup").keptBy({}),
    Rows::field<&Data::streamKey, &SRT::setStreamKey>("streamKey", "Stream key").keptBy({}).secret(),
    Rows::field<&Data::application, &SRT::setApplication>("application", "Application").keptBy({}),
}};

} // namespace

SRTVantlePreset::SRTVantlePreset(Key key) : VantlePreset(key, std::make_unique<SRTPrivate>()) {}
SRTVantlePreset::~SRTVantlePreset() = default;

SRTPrivate &SRTVantlePreset::data()
{
    return static_cast<SRTPrivate &>(VantlePresetPrivate::of(*this));
}
const SRTPrivate &SRTVantlePreset::data() const
{
    return static_cast<const SRTPrivate &>(VantlePresetPrivate::of(*this));
}

const EnumerationTable<SRTMode> &srtModes()
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
    VantlePresetPrivate::makeDefaults(*preset, type, name);
    return preset;
}

std::shared_ptr<SRTVantlePreset> SRTVantlePreset::withFileAtPath(const QString &path)
{
    auto preset = std::make_shared<SRTVantlePreset>(Key{});
    if (!VantlePresetPrivate::readBaseFromFile(*preset, path))
        return nullptr;
    try {
        const document::Document json(readFile(fileSystemPath(path)), isPresetKey);
        const auto decoded = RTMPPrivate::decode(json.root());
        preset->data().streamingURL = decoded->streamingURL();
        preset->data().portNumber = decoded->portNumber();
        preset->data().authenticate = decoded->authenticate();
        preset->data().takeDecodedBase(VantlePresetPrivate::of(*decoded));
    } catch (const std::exception &error) {
        logLine("Error reading file: "_L1 + QString::fromUtf8(error.what()));
        return nullptr;
    }
    return preset;
}

std::shared_ptr<SRTVantlePreset> SRTPrivate::decode(const document::ObjectReader &root)
{
    auto preset = std::make_shared<SRT>(SRT::Key{});
    decodeBase(*preset, root);
    kFields.read(preset->data(), root);
    separateDefaultTrack(*preset);
    return preset;
}

void SRTPrivate::encode(document::DocumentWriter &writer) const
{
    kFields.write(*this, writer);
}

const QList<Field> &SRTPrivate::classFields()
{
    static const QList<Field> list = kFields.fields();
    return list;
}

std::shared_ptr<SRTVantlePreset> SRTVantlePreset::decoded(QByteArrayView document)
{
    const document::Document json(document, isPresetKey);
    return SRTPrivate::decode(json.root());
}

bool SRTVantlePreset::isBackup() const
{
    return data().isBackup;
}

const QString &SRTVantlePreset::streamKey() const
{
    return data().streamKey;
}

const QString &SRTVantlePreset::streamingURL() const
{
    return data().streamingURL;
}

qint64 SRTVantlePreset::portNumber() const
{
    return data().portNumber;
}

bool SRTVantlePreset::authenticate() const
{
    return data().authenticate;
}

const QString &SRTVantlePreset::application() const
{
    return data().application;
}

void SRTVantlePreset::setIsBackup(bool isBackup)
{
    assign(data().isBackup, isBackup, &SRTVantlePreset::isBackupChanged);
}

void SRTVantlePreset::setStreamKey(const QString &streamKey)
{
    assign(data().streamKey, streamKey, &SRTVantlePreset::streamKeyChanged);
}

void SRTVantlePreset::setStreamingURL(const QString &url)
{
    assign(data().streamingURL, url, &SRTVantlePreset::streamingURLChanged);
}

void SRTVantlePreset::setPortNumber(qint64 port)
{
    assign(data().portNumber, port, &SRTVantlePreset::portNumberChanged);
}

void SRTVantlePreset::setAuthenticate(bool authenticate)
{
    assign(data().authenticate, authenticate, &SRTVantlePreset::authenticateChanged);
}

void SRTVantlePreset::setApplication(const QString &application)
{
    assign(data().application, application, &SRTVantlePreset::applicationChanged);
}

void SRTVantlePreset::update(const RTMPVantlePreset &other)
{
    kFields.update(*this, data(), static_cast<const Data &>(VantlePresetPrivate::of(other)));
}

void SRTVantlePreset::update(const SRTVantlePreset &other)
{
    kFields.update(*this, data(), other.data());
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
