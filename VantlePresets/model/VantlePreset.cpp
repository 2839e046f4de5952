// SPDX-License-Identifier: MIT
#include "VantlePresets/model/VantlePreset.h"

#include "VantlePresets/core/ObjectId.h"
#include "VantlePresets/core/ResourceBundle.h"
#include "VantlePresets/document/DocumentReader.h"
#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/PresetKeys.h"
#include "VantlePresets/model/SettingsLists.h"

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

} // namespace

std::shared_ptr<VantlePreset> VantlePreset::withType(StreamingType type, const QString &name)
{
    auto preset = std::make_shared<VantlePreset>(Key{});
    preset->makeDefaults(type, name);
    return preset;
}

std::shared_ptr<VantlePreset> VantlePreset::withFileAtPath(const QString &path)
{
    auto preset = std::make_shared<VantlePreset>(Key{});
    return preset->readBaseFromFile(path) ? preset : nullptr;
}

std::shared_ptr<VantlePreset> VantlePreset::decode(const document::ObjectReader &root)
{
    auto preset = std::make_shared<VantlePreset>(Key{});
    preset->decodeBase(root);
    return preset;
}

void VantlePreset::encode(document::DocumentWriter &writer) const
{
    writer.string("type", streamingTypes().text(m_type));
    encodeLists(writer);
    writer.string("id", m_uuid.toString(QUuid::WithoutBraces));
}

QByteArray VantlePreset::encoded(document::Format format) const
{
    return document::encode(format, [this](document::DocumentWriter &writer) { encodeDocument(writer); });
}

std::size_t VantlePreset::documentHash() const
{
    return document::hashOf([this](document::DocumentWriter &writer) { encodeDocument(writer); });
}

void VantlePreset::encodeDocument(document::DocumentWriter &writer) const
{
    writer.beginObject();
    encode(writer);
    writer.endObject();
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

void VantlePreset::setName(const QString &name)
{
    assign(m_name, name, &VantlePreset::nameChanged);
}

void VantlePreset::setVideoSettings(const VideoSettingsList &settings)
{
    assign(m_videoSettings, settings, &VantlePreset::videoSettingsChanged);
}

void VantlePreset::setAudioSettings(const AudioSettingsList &settings)
{
    assign(m_audioSettings, settings, &VantlePreset::audioSettingsChanged);
}

void VantlePreset::setDefaultAudioSettings(const std::shared_ptr<AudioSettings> &track)
{
    assign(m_defaultAudioSettings, track, &VantlePreset::defaultAudioSettingsChanged);
}

void VantlePreset::newVideoSettings()
{
    setVideoSettings(m_videoSettings + VideoSettingsList{VideoSettings::create()});
}

void VantlePreset::removeVideoSetting(const VideoSettings &setting)
{
    const VideoSettingsList rest = withoutFirstEqual(m_videoSettings, setting);
    if (rest.size() != m_videoSettings.size())
        setVideoSettings(rest);
}

void VantlePreset::newAudioSettings()
{
    auto track = AudioSettings::create();
    track->setDelegate(weak_from_this());
    setAudioSettings(m_audioSettings + AudioSettingsList{track});
}

void VantlePreset::removeAudioSettings(const AudioSettings &setting)
{
    const AudioSettingsList rest = withoutFirstEqual(m_audioSettings, setting);
    if (rest.size() != m_audioSettings.size())
        setAudioSettings(rest);
}

void VantlePreset::update(const VantlePreset &other)
{
    setType(other.m_type);
    setVideoSettings(other.m_videoSettings);
    setAudioSettings(other.m_audioSettings);
}

void VantlePreset::update()
{
    Q_EMIT objectWillChange();
}

void VantlePreset::moveWithSettingsToThread(QThread *thread)
{
    moveToThread(thread);
    for (const auto &rendition : std::as_const(m_videoSettings))
        rendition->moveToThread(thread);
    for (const auto &track : std::as_const(m_audioSettings))
        track->moveToThread(thread);
    // After the factory's reading it is a track of its own; after others it is one of the list.
    if (m_defaultAudioSettings && m_defaultAudioSettings->thread() != thread)
        m_defaultAudioSettings->moveToThread(thread);
}

void VantlePreset::audioSettingsDidChangeDefault(const std::shared_ptr<AudioSettings> &track, bool isDefault)
{
    if (!isDefault)
        return;
    const AudioSettingsList tracks = m_audioSettings; // observers of a flag may change the list
    for (const auto &other : tracks) {
        if (*other != *track && other->isDefault())
            other->setIsDefault(false);
    }
    setDefaultAudioSettings(track);
}

void VantlePreset::makeDefaults(StreamingType type, const QString &name)
{
    m_type = type;
    m_name = name;
    m_uuid = newObjectId();
    m_videoSettings = {VideoSettings::create()};
    const auto track = AudioSettings::create();
    track->setIsDefault(true);
    track->setDelegate(weak_from_this());
    m_audioSettings = {track};
    m_defaultAudioSettings = track;
}

void VantlePreset::decodeBase(const document::ObjectReader &root)
{
    // An unknown kind does not make a file unreadable.
    m_type = streamingTypes().fromText(root.text("type")).value_or(StreamingType::hls);
    m_videoSettings = decodeList<VideoSettings>(root, "videoSettings");
    m_audioSettings = decodeList<AudioSettings>(root, "audioSettings");
    const auto uuid = uuidFromText(root.stringIfAny("id").value_or(QString()));
    m_uuid = uuid ? *uuid : newObjectId();
    for (const auto &track : std::as_const(m_audioSettings)) {
        track->setDelegate(weak_from_this());
        if (track->isDefault())
            m_defaultAudioSettings = track;
    }
}

void VantlePreset::separateDefaultTrack()
{
    for (const auto &track : std::as_const(m_audioSettings))
        track->setDelegate({});
    if (!m_defaultAudioSettings)
        return;
    m_defaultAudioSettings = m_defaultAudioSettings->copy();
    m_defaultAudioSettings->setDelegate(weak_from_this());
}

bool VantlePreset::readBaseFromFile(const QString &path)
{
    try {
        const document::Document json(readFile(fileSystemPath(path)), isPresetKey);
        decodeBase(json.root());
    } catch (const std::exception &) {
        return false;
    }
    m_name = presetNameFromPath(path);
    return true;
}

void VantlePreset::takeDecodedBase(const VantlePreset &decoded)
{
    m_type = decoded.m_type;
    m_videoSettings = decoded.m_videoSettings;
    m_audioSettings = decoded.m_audioSettings;
}

void VantlePreset::encodeLists(document::DocumentWriter &writer) const
{
    encodeList(writer, "videoSettings", m_videoSettings);
    encodeList(writer, "audioSettings", m_audioSettings);
}

QString presetNameFromPath(const QString &path)
{
    const QString fileName = path.sliced(path.lastIndexOf(u'/') + 1);
    const qsizetype dot = fileName.lastIndexOf(u'.');
    return dot > 0 ? fileName.first(dot) : fileName;
}

} // namespace vantle
