// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/document/DocumentFormat.h"
#include "VantlePresets/model/StreamingType.h"
#include "VantlePresets/settings/AudioSettings.h"
#include "VantlePresets/settings/VideoSettings.h"

#include <QtCore/QByteArray>
#include <QtCore/QUuid>

#include <memory>

namespace vantle {

namespace document {
class DocumentWriter;
class ObjectReader;
} // namespace document

using VideoSettingsList = QList<std::shared_ptr<VideoSettings>>;
using AudioSettingsList = QList<std::shared_ptr<AudioSettings>>;

/// What the presets of every kind share.
///
/// Presets are held by std::shared_ptr, compared by identity, and made by static functions only. Main
/// thread only, see ObservableRecord. The settings objects may be shared with another preset.
class VANTLE_PRESETS_EXPORT VantlePreset : public ObservableRecord,
                                           public AudioSettingsDelegate,
                                           public std::enable_shared_from_this<VantlePreset>
{
    Q_OBJECT
    Q_PROPERTY(vantle::StreamingType type READ type WRITE setType)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(vantle::VideoSettingsList videoSettings READ videoSettings WRITE setVideoSettings NOTIFY
                   videoSettingsChanged)
    Q_PROPERTY(vantle::AudioSettingsList audioSettings READ audioSettings WRITE setAudioSettings NOTIFY
                   audioSettingsChanged)
    Q_PROPERTY(std::shared_ptr<vantle::AudioSettings> defaultAudioSettings READ defaultAudioSettings WRITE
                   setDefaultAudioSettings NOTIFY defaultAudioSettingsChanged)
    Q_PROPERTY(QUuid id READ id CONSTANT)

protected:
    /// Keeps callers from making presets that no std::shared_ptr holds.
    struct Key
    {
        explicit Key() = default;
    };

public:
    /// For the static functions that make objects.
    explicit VantlePreset(Key) {}

    /// A new preset with one default rendition and one default track, which is the default track.
    [[nodiscard]] static std::shared_ptr<VantlePreset> withType(StreamingType type, const QString &name);

    /// Reads the keys that all kinds share; null when the file can't be read or decoded. To read a file
    /// as the class of its kind, see PresetFactory.h.
    [[nodiscard]] static std::shared_ptr<VantlePreset> withFileAtPath(const QString &path);

    /// Reads the document of this class; throws DecodingError. The name is "Untitled Preset".
    [[nodiscard]] static std::shared_ptr<VantlePreset> decode(const document::ObjectReader &root);

    /// Writes the members of this object's own document. Throws EncodingError.
    virtual void encode(document::DocumentWriter &writer) const;

    /// The document's UTF-8 text; throws EncodingError.
    [[nodiscard]] QByteArray encoded(document::Format format) const;
    /// Equal for presets whose documents are equal; throws EncodingError. See document::hashOf().
    [[nodiscard]] std::size_t documentHash() const;

    /// Writes the pretty-printed document where the file stands: not atomic, a failure can leave a part
    /// of it. False when the preset can't be encoded or the file can't be written.
    bool writeToFileAtPath(const QString &path) const;

    /// The kind, which decides how the preset is written.
    [[nodiscard]] StreamingType type() const { return m_type; }
    /// The preset's file is named after it.
    [[nodiscard]] const QString &name() const { return m_name; }
    /// In the order of the file.
    [[nodiscard]] const VideoSettingsList &videoSettings() const { return m_videoSettings; }
    /// In the order of the file.
    [[nodiscard]] const AudioSettingsList &audioSettings() const { return m_audioSettings; }
    /// The track that was marked default last, or null. After PresetFactory's reading it equals a track
    /// of audioSettings() in content but is another object; it may also be one that was removed.
    [[nodiscard]] const std::shared_ptr<AudioSettings> &defaultAudioSettings() const
    {
        return m_defaultAudioSettings;
    }
    /// Kept in the files of some kinds; for the others, new whenever the file is read.
    [[nodiscard]] const QUuid &uuid() const { return m_uuid; }
    /// The same as uuid().
    [[nodiscard]] const QUuid &id() const { return m_uuid; }

    /// The icon of a kind, in SVG format, from the component's bundle; read when asked for.
    [[nodiscard]] static QByteArray imageForPresetType(StreamingType type);
    /// The icon of the preset's kind.
    [[nodiscard]] QByteArray presetImage() const { return imageForPresetType(m_type); }

    /// Not observable.
    void setType(StreamingType type) { m_type = type; }
    /// @{
    /// Stores the value and announces it, see ObservableRecord.
    void setName(const QString &name);
    void setVideoSettings(const VideoSettingsList &settings);
    void setAudioSettings(const AudioSettingsList &settings);
    void setDefaultAudioSettings(const std::shared_ptr<AudioSettings> &track);
    /// @}

    /// Appends a default rendition.
    void newVideoSettings();
    /// Removes the first rendition that equals the argument.
    void removeVideoSetting(const VideoSettings &setting);
    /// Appends a default track, which reports to this preset but is not the default track.
    void newAudioSettings();
    /// Removes the first track that equals the argument. The default track is not touched, even when it
    /// is the one removed.
    void removeAudioSettings(const AudioSettings &setting);

    /// Takes over the other's kind, renditions and tracks. The settings objects are shared from then on.
    void update(const VantlePreset &other);
    /// Emits objectWillChange() alone, after a change inside a settings object.
    void update();

    /// Hands the preset and its settings objects to another thread. Called on the thread that owns them.
    void moveWithSettingsToThread(QThread *thread);

    /// Clears the flag of all other tracks when a track became the default, and notes the track.
    void audioSettingsDidChangeDefault(const std::shared_ptr<AudioSettings> &track, bool isDefault) override;

Q_SIGNALS:
    /// @{
    /// Comes after the value was stored, equal values included.
    void nameChanged(const QString &name);
    void videoSettingsChanged(const vantle::VideoSettingsList &settings);
    void audioSettingsChanged(const vantle::AudioSettingsList &settings);
    void defaultAudioSettingsChanged(const std::shared_ptr<vantle::AudioSettings> &track);
    /// @}

protected:
    /// Fills a new preset with its kind, its name and one default rendition and track.
    void makeDefaults(StreamingType type, const QString &name);

    /// Reads the shared keys: the first step of every class.
    void decodeBase(const document::ObjectReader &root);

    /// The last step of decode() in every derived class: afterwards the listed tracks have no delegate, and
    /// defaultAudioSettings() is a track of its own, with a delegate, that equals the one in the list.
    void separateDefaultTrack();

    /// Fills the shared keys and the name from a file; false, silently, when that fails.
    bool readBaseFromFile(const QString &path);

    /// Takes the kind and the lists of a preset decoded from the same file, without announcing them.
    void takeDecodedBase(const VantlePreset &decoded);

    /// Writes "videoSettings" and "audioSettings".
    void encodeLists(document::DocumentWriter &writer) const;

private:
    void encodeDocument(document::DocumentWriter &writer) const;

    StreamingType m_type = StreamingType::hls;
    QString m_name = QStringLiteral("Untitled Preset");
    VideoSettingsList m_videoSettings;
    AudioSettingsList m_audioSettings;
    std::shared_ptr<AudioSettings> m_defaultAudioSettings;
    QUuid m_uuid;
};

/// The name that a preset file gives its preset: the last path component without its last extension.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString presetNameFromPath(const QString &path);

} // namespace vantle
