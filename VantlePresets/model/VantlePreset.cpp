// SPDX-License-Identifier: MIT
#include "VantlePresets/model/VantlePreset.h"

#include "VantlePresets/core/ObjectId.h"
#include "VantlePresets/core/ResourceBundle.h"
#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/ConnectionPrivate.h"
#include "VantlePresets/model/PresetKeys.h"

#include <algorithm>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

/// The UUID of its standard text of 36 characters; nothing for any other text.
std::optional<QUuid> uuidFromText(const QString &text)
{
    constexpr qsizetype kLength = 36;
    const QUuid uuid = text.size() == kLength ? QUuid::fromString(text) : QUuid();
    if (uuid.isNull() && text != QUuid().toString(QUuid::WithoutBraces))
        return std::nullopt;
    return uuid;
}

template <class Settings>
QList<std::shared_ptr<Settings>> withoutFirstEqual(QList<std::shared_ptr<Settings>> list,
                                                   const Settings &setting)
{
    const auto found = std::find_if(list.cbegin(), list.cend(), [&](const auto &s) { return *s == setting; });
    if (found != list.cend())
        list.erase(found);
    return list;
}

using Data = VantlePresetPrivate;
using Shared = SharedRows<VantlePreset, Data>;

constexpr auto kId = [] {
    FieldRow<VantlePreset, Data> row;
    row.key = "id"_L1;
    row.label = "Identifier"_L1;
    row.type = Field::Type::identifier;
    row.meaning = "The preset's identifier. Without a valid one a new one is taken."_L1;
    row.isAssignable = false;
    row.read = [](Data &data, const document::ObjectReader &object, const FieldFacts &field) {
        const auto uuid = uuidFromText(object.stringIfAny(field.keyBytes()).value_or(QString()));
        data.uuid = uuid ? *uuid : newObjectId();
    };
    row.write = [](const Data &data, document::DocumentWriter &writer, const FieldFacts &field) {
        writer.string(field.key.data(), data.uuid.toString(QUuid::WithoutBraces));
    };
    return row;
}();

// The base's document, and that of HLS presets. Every class reads these fields before its own.
constexpr RecordTable kFields{std::array{
    Shared::kName,
    Shared::kType.order(1, 1),
    Shared::kVideo.order(2, 2),
    Shared::kAudio.order(3, 3),
    kId.order(4, 0),
}};

[[maybe_unused]] const bool kConverted = registerConversions<StreamingType>();

} // namespace

VantlePreset::VantlePreset(Key key) : VantlePreset(key, std::make_unique<VantlePresetPrivate>()) {}
VantlePreset::VantlePreset(Key, std::unique_ptr<VantlePresetPrivate> data) : d(std::move(data)) {}
VantlePreset::~VantlePreset() = default;

std::shared_ptr<VantlePreset> VantlePreset::withType(StreamingType type, const QString &name)
{
    auto preset = std::make_shared<VantlePreset>(Key{});
    Data::makeDefaults(*preset, type, name);
    return preset;
}

std::shared_ptr<VantlePreset> VantlePreset::withFileAtPath(const QString &path)
{
    auto preset = std::make_shared<VantlePreset>(Key{});
    return Data::readBaseFromFile(*preset, path) ? preset : nullptr;
}

std::shared_ptr<VantlePreset> VantlePreset::decoded(QByteArrayView document)
{
    const document::Document json(document, isPresetKey);
    auto preset = std::make_shared<VantlePreset>(Key{});
    Data::decodeBase(*preset, json.root());
    return preset;
}

QByteArray VantlePreset::encoded(document::Format format) const
{
    return document::encode(format, [this](document::DocumentWriter &writer) {
        writer.beginObject();
        d->encode(writer);
        writer.endObject();
    });
}

std::size_t VantlePreset::documentHash() const
{
    return document::hashOf([this](document::DocumentWriter &writer) {
        writer.beginObject();
        d->encode(writer);
        writer.endObject();
    });
}

const QList<Field> &VantlePreset::fields() const
{
    return d->fields();
}

bool VantlePreset::writeToFileAtPath(const QString &path) const
{
    try {
        writeFileInPlace(fileSystemPath(path), encoded(document::Format::pretty));
        return true;
    } catch (const std::exception &) {
        return false;
    }
}

QByteArray VantlePreset::imageForPresetType(StreamingType type)
{
    return resourceImage(vantle::displayName(type));
}

StreamingType VantlePreset::type() const
{
    return d->type;
}

const QString &VantlePreset::name() const
{
    return d->name;
}

const VideoSettingsList &VantlePreset::videoSettings() const
{
    return d->videoSettings;
}

const AudioSettingsList &VantlePreset::audioSettings() const
{
    return d->audioSettings;
}

const std::shared_ptr<AudioSettings> &VantlePreset::defaultAudioSettings() const
{
    return d->defaultAudioSettings;
}

const QUuid &VantlePreset::uuid() const
{
    return d->uuid;
}

const QUuid &VantlePreset::id() const
{
    return d->uuid;
}

QByteArray VantlePreset::presetImage() const
{
    return imageForPresetType(d->type);
}

void VantlePreset::setType(StreamingType type)
{
    d->type = type;
}

void VantlePreset::setName(const QString &name)
{
    assign(d->name, name, &VantlePreset::nameChanged);
}

void VantlePreset::setVideoSettings(const VideoSettingsList &settings)
{
    assign(d->videoSettings, settings, &VantlePreset::videoSettingsChanged);
}

void VantlePreset::setAudioSettings(const AudioSettingsList &settings)
{
    assign(d->audioSettings, settings, &VantlePreset::audioSettingsChanged);
}

void VantlePreset::setDefaultAudioSettings(const std::shared_ptr<AudioSettings> &track)
{
    assign(d->defaultAudioSettings, track, &VantlePreset::defaultAudioSettingsChanged);
}

void VantlePreset::newVideoSettings()
{
    setVideoSettings(d->videoSettings + VideoSettingsList{VideoSettings::create()});
}

void VantlePreset::removeVideoSetting(const VideoSettings &setting)
{
    const VideoSettingsList rest = withoutFirstEqual(d->videoSettings, setting);
    if (rest.size() != d->videoSettings.size())
        setVideoSettings(rest);
}

void VantlePreset::newAudioSettings()
{
    auto track = AudioSettings::create();
    track->setDelegate(weak_from_this());
    setAudioSettings(d->audioSettings + AudioSettingsList{track});
}

void VantlePreset::removeAudioSettings(const AudioSettings &setting)
{
    const AudioSettingsList rest = withoutFirstEqual(d->audioSettings, setting);
    if (rest.size() != d->audioSettings.size())
        setAudioSettings(rest);
}

void VantlePreset::update(const VantlePreset &other)
{
    kFields.update(*this, *d, *other.d);
}

void VantlePreset::update()
{
    Q_EMIT objectWillChange();
}

void VantlePreset::moveWithSettingsToThread(QThread *thread)
{
    moveToThread(thread);
    for (const auto &rendition : std::as_const(d->videoSettings))
        rendition->moveToThread(thread);
    for (const auto &track : std::as_const(d->audioSettings))
        track->moveToThread(thread);
    // After the factory's reading it is a track of its own; after others it is one of the list.
    if (d->defaultAudioSettings && d->defaultAudioSettings->thread() != thread)
        d->defaultAudioSettings->moveToThread(thread);
}

void VantlePreset::audioSettingsDidChangeDefault(const std::shared_ptr<AudioSettings> &track, bool isDefault)
{
    if (!isDefault)
        return;
    const AudioSettingsList tracks = d->audioSettings; // observers of a flag may change the list
    for (const auto &other : tracks) {
        if (*other != *track && other->isDefault())
            other->setIsDefault(false);
    }
    setDefaultAudioSettings(track);
}

void VantlePresetPrivate::encode(document::DocumentWriter &writer) const
{
    kFields.write(*this, writer);
}

const QList<Field> &VantlePresetPrivate::fields() const
{
    return baseFields();
}

const QList<Field> &VantlePresetPrivate::baseFields()
{
    static const QList<Field> list = kFields.fields();
    return list;
}

void VantlePresetPrivate::makeDefaults(VantlePreset &preset, StreamingType type, const QString &name)
{
    VantlePresetPrivate &data = of(preset);
    data.type = type;
    data.name = name;
    data.uuid = newObjectId();
    data.videoSettings = {VideoSettings::create()};
    const auto track = AudioSettings::create();
    track->setIsDefault(true);
    track->setDelegate(preset.weak_from_this());
    data.audioSettings = {track};
    data.defaultAudioSettings = track;
}

void VantlePresetPrivate::decodeBase(VantlePreset &preset, const document::ObjectReader &root)
{
    VantlePresetPrivate &data = of(preset);
    kFields.read(data, root);
    for (const auto &track : std::as_const(data.audioSettings)) {
        track->setDelegate(preset.weak_from_this());
        if (track->isDefault())
            data.defaultAudioSettings = track;
    }
}

void VantlePresetPrivate::separateDefaultTrack(VantlePreset &preset)
{
    VantlePresetPrivate &data = of(preset);
    for (const auto &track : std::as_const(data.audioSettings))
        track->setDelegate({});
    if (!data.defaultAudioSettings)
        return;
    data.defaultAudioSettings = data.defaultAudioSettings->copy();
    data.defaultAudioSettings->setDelegate(preset.weak_from_this());
}

bool VantlePresetPrivate::readBaseFromFile(VantlePreset &preset, const QString &path)
{
    try {
        const document::Document json(readFile(fileSystemPath(path)), isPresetKey);
        decodeBase(preset, json.root());
    } catch (const std::exception &) {
        return false;
    }
    of(preset).name = presetNameFromPath(path);
    return true;
}

void VantlePresetPrivate::takeDecodedBase(const VantlePresetPrivate &decoded)
{
    type = decoded.type;
    videoSettings = decoded.videoSettings;
    audioSettings = decoded.audioSettings;
}

QString presetNameFromPath(const QString &path)
{
    const QString fileName = path.sliced(path.lastIndexOf(u'/') + 1);
    const qsizetype dot = fileName.lastIndexOf(u'.');
    return dot > 0 ? fileName.first(dot) : fileName;
}

} // namespace vantle
