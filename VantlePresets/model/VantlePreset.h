// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/core/Field.h"
#include "VantlePresets/document/DocumentFormat.h"
#include "VantlePresets/model/StreamingType.h"
#include "VantlePresets/settings/AudioSettings.h"
#include "VantlePresets/settings/VideoSettings.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QUuid>

#include <memory>

namespace vantle {

class VantlePresetPrivate;

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
    explicit VantlePreset(Key);
    ~VantlePreset() override;

    /// A new preset with one default rendition and one default track, which is the default track.
    [[nodiscard]] static std::shared_ptr<VantlePreset> withType(StreamingType type, const QString &name);

    /// Reads the keys that all kinds share; null when the file can't be read or decoded. To read a file
    /// as the class of its kind, see PresetFactory.h.
    [[nodiscard]] static std::shared_ptr<VantlePreset> withFileAtPath(const QString &path);

    /// Reads the keys that all kinds share from a document's JSON text; throws DecodingError. The name is
    /// "Untitled Preset". To read a document as the class of its kind, see decodePreset(). Callable from any
    /// thread, to which the preset belongs.
    [[nodiscard]] static std::shared_ptr<VantlePreset> decoded(QByteArrayView document);

    /// The UTF-8 text of this object's own document; throws EncodingError.
    [[nodiscard]] QByteArray encoded(document::Format format) const;
    /// Equal for presets whose documents are equal; throws EncodingError. See document::hashOf().
    [[nodiscard]] std::size_t documentHash() const;

    /// Writes the pretty-printed document where the file stands: not atomic, a failure can leave a part
    /// of it. False when the preset can't be encoded or the file can't be written.
    bool writeToFileAtPath(const QString &path) const;

    /// What there is to know of the fields of this object's class, in the order in which they are written; of
    /// those, isKept() tells which ones the documents of type() hold. Callable from any thread.
    [[nodiscard]] const QList<Field> &fields() const;

    /// The kind, which decides how the preset is written.
    [[nodiscard]] StreamingType type() const;
    /// The preset's file is named after it.
    [[nodiscard]] const QString &name() const;
    /// In the order of the file.
    [[nodiscard]] const VideoSettingsList &videoSettings() const;
    /// In the order of the file.
    [[nodiscard]] const AudioSettingsList &audioSettings() const;
    /// The track that was marked default last, or null. After PresetFactory's reading it equals a track
    /// of audioSettings() in content but is another object; it may also be one that was removed.
    [[nodiscard]] const std::shared_ptr<AudioSettings> &defaultAudioSettings() const;
    /// Kept in the files of some kinds; for the others, new whenever the file is read.
    [[nodiscard]] const QUuid &uuid() const;
    /// The same as uuid().
    [[nodiscard]] const QUuid &id() const;

    /// The icon of a kind, in SVG format, from the component's bundle; read when asked for.
    [[nodiscard]] static QByteArray imageForPresetType(StreamingType type);
    /// The icon of the preset's kind.
    [[nodiscard]] QByteArray presetImage() const;

    /// Not observable. Only kinds of the object's own class (see makePreset()) make sense: a document of
    /// another kind has keys that this class does not write, and can't be read back.
    void setType(StreamingType type);
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

    /// Takes over the other's kind, renditions and tracks, whatever the objects' classes: of an
    /// RTMPVantlePreset behind a reference to this class that is a part only, and with a kind of another
    /// class the document can't be read back. To take over all that is kept, call updatePreset(). The
    /// settings objects are shared from then on.
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
    /// For derived classes, whose data are more.
    VantlePreset(Key, std::unique_ptr<VantlePresetPrivate> data);

private:
    friend class VantlePresetPrivate;

    const std::unique_ptr<VantlePresetPrivate> d;
};

/// The name that a preset file gives its preset: the last path component without its last extension.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString presetNameFromPath(const QString &path);

} // namespace vantle
