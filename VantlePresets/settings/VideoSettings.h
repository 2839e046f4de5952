// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/core/Field.h"
#include "VantlePresets/core/ObservableRecord.h"
#include "VantlePresets/document/DocumentFormat.h"
#include "VantlePresets/settings/CodecProfiles.h"
#include "VantlePresets/settings/VideoFormats.h"

#include <QtCore/QByteArray>
#include <QtCore/QStringList>
#include <QtCore/QUuid>

#include <memory>

namespace vantle {

class VideoSettingsPrivate;

/// The encoding choices of one video rendition of a preset.
///
/// A reference object: presets, forms and the host share it. Main thread only, see ObservableRecord.
class VANTLE_PRESETS_EXPORT VideoSettings : public ObservableRecord
{
    Q_OBJECT
    Q_PROPERTY(vantle::VideoCodec codec READ codec WRITE setCodec NOTIFY codecChanged)
    Q_PROPERTY(
        vantle::VideoResolution resolution READ resolution WRITE setResolution NOTIFY resolutionChanged)
    Q_PROPERTY(qint64 customWidth READ customWidth WRITE setCustomWidth NOTIFY customWidthChanged)
    Q_PROPERTY(qint64 customHeight READ customHeight WRITE setCustomHeight NOTIFY customHeightChanged)
    Q_PROPERTY(double frameRate READ frameRate WRITE setFrameRate NOTIFY frameRateChanged)
    Q_PROPERTY(qint64 bitRate READ bitRate WRITE setBitRate NOTIFY bitRateChanged)
    Q_PROPERTY(QString profile READ profile WRITE setProfile NOTIFY profileChanged)
    Q_PROPERTY(qint64 pid READ pid WRITE setPid NOTIFY pidChanged)
    Q_PROPERTY(QUuid id READ id CONSTANT)
    Q_PROPERTY(qint64 width READ width STORED false)
    Q_PROPERTY(qint64 height READ height STORED false)
    Q_PROPERTY(QString videoCodecType READ videoCodecType STORED false)
    Q_PROPERTY(QString videoToolboxProfile READ videoToolboxProfile STORED false)
    Q_PROPERTY(QString variantName READ variantName STORED false)
    Q_PROPERTY(qint64 maxBitRate READ maxBitRate STORED false)

    struct Key
    {
        explicit Key() = default;
    };

public:
    /// The profiles that settings offer.
    using H264Profile = vantle::H264Profile;
    /// The profiles that settings offer.
    using HEVCProfile = vantle::HEVCProfile;

    /// For the static functions that make objects.
    explicit VideoSettings(Key);
    ~VideoSettings() override;

    /// New settings: H.264 Main, automatic level, 1920 x 1080 at 30 frames per second, 4500 kbit/s.
    [[nodiscard]] static std::shared_ptr<VideoSettings> create();

    /// Reads the JSON text of one element of "videoSettings"; throws DecodingError. Nothing is corrected: a
    /// bit rate above the profile's limit stays until the next assignment. Callable from any thread.
    [[nodiscard]] static std::shared_ptr<VideoSettings> decoded(QByteArrayView object);

    /// One element of "videoSettings" as UTF-8 text; throws EncodingError when the frame rate is not finite.
    [[nodiscard]] QByteArray encoded(document::Format format) const;

    /// What there is to know of the fields that files keep, in the order in which they are written. Callable
    /// from any thread.
    [[nodiscard]] static const QList<Field> &fields();

    /// The frame rates that forms offer, in frames per second.
    [[nodiscard]] static QList<double> availableFrameRates();

    /// Decides which profiles there are.
    [[nodiscard]] VideoCodec codec() const;
    /// See width() and height() for the pixels.
    [[nodiscard]] VideoResolution resolution() const;
    /// In pixels; counts only while the resolution is custom.
    [[nodiscard]] qint64 customWidth() const;
    /// In pixels; counts only while the resolution is custom.
    [[nodiscard]] qint64 customHeight() const;
    /// In frames per second.
    [[nodiscard]] double frameRate() const;
    /// In kbit/s.
    [[nodiscard]] qint64 bitRate() const;
    /// The display name of an H264Profile or HEVCProfile; may name a profile of the other codec.
    [[nodiscard]] const QString &profile() const;
    /// The MPEG-TS packet identifier of the stream.
    [[nodiscard]] qint64 pid() const;
    /// Identifies this object in memory; never in a file.
    [[nodiscard]] const QUuid &id() const;

    /// @{
    /// Stores the value and announces it, see ObservableRecord.
    void setCodec(VideoCodec codec);
    /// Any size but custom sets customWidth and customHeight to 0.
    void setResolution(VideoResolution resolution);
    void setCustomWidth(qint64 width);
    void setCustomHeight(qint64 height);
    void setFrameRate(double frameRate);
    /// A negative rate becomes 0, one above maxBitRate() becomes that maximum; every step is announced.
    /// A profile that is not among the codec's has the maximum 0.
    void setBitRate(qint64 bitRate);
    void setProfile(const QString &profile);
    void setPid(qint64 pid);
    /// @}

    /// @{
    /// The profiles that this object offers, in order. Belong to each object; a host may replace the
    /// H.264 ones, and with an empty list every bit-rate limit is 0. Not observable.
    [[nodiscard]] const QList<H264Profile> &availableH264Profiles() const;
    void setAvailableH264Profiles(const QList<H264Profile> &profiles);
    [[nodiscard]] const QList<HEVCProfile> &availableHEVCProfiles() const;
    void setAvailableHEVCProfiles(const QList<HEVCProfile> &profiles);
    /// @}

    /// The frame size in pixels. Custom sizes are not checked.
    [[nodiscard]] qint64 width() const;
    /// In pixels.
    [[nodiscard]] qint64 height() const;
    /// The name of the platform's codec type constant.
    [[nodiscard]] QString videoCodecType() const;
    /// The name of the VideoToolbox constant; Main at the automatic level when the profile is unknown.
    [[nodiscard]] QString videoToolboxProfile() const;
    /// "H_264_1920x1080_4500".
    [[nodiscard]] QString variantName() const;
    /// "Video Variant: H.264 1920 x 1080 @ 30.0".
    [[nodiscard]] QString displayName() const;
    /// One text of everything but the bit rate and the identifiers, for observers of any such change.
    [[nodiscard]] QString aggregateDescription() const;

    /// The names of the offered profiles that suit this object's own frame size at the given rate. The
    /// resolution argument is not used. The computation stops the process for sizes and rates for which
    /// H264Profile::isComputable() is false.
    [[nodiscard]] QStringList profileLevels(VideoCodec codec, VideoResolution resolution,
                                            double frameRate) const;
    /// As profileLevels() for H.264. Not to be taken for vantle::h264ProfileLevels(), the levels alone.
    [[nodiscard]] QStringList h264ProfileLevels(VideoResolution resolution, double frameRate) const;
    /// All offered HEVC profiles, unfiltered.
    [[nodiscard]] QStringList hevcProfileLevels(VideoResolution resolution, double frameRate) const;

    /// The profile's bit-rate limit in kbit/s, 0 when the codec offers none of that name. Size and rate
    /// have no influence.
    [[nodiscard]] qint64 maximumBitRate(VideoCodec codec, const QString &profile, VideoResolution resolution,
                                        double frameRate) const;
    /// The limit of the object's own profile, in kbit/s.
    [[nodiscard]] qint64 maxBitRate() const;

    /// Assigns the other's fields one by one, the profile after the bit rate: the bit rate is limited by
    /// the profile that this object had before.
    void update(const VideoSettings &other);

    /// Codec, resolution, frame rate and profile alone.
    VANTLE_PRESETS_EXPORT friend bool operator==(const VideoSettings &a, const VideoSettings &b);

Q_SIGNALS:
    /// @{
    /// Comes after the value was stored, equal values included.
    void codecChanged(vantle::VideoCodec codec);
    void resolutionChanged(vantle::VideoResolution resolution);
    void customWidthChanged(qint64 width);
    void customHeightChanged(qint64 height);
    void frameRateChanged(double frameRate);
    void bitRateChanged(qint64 bitRate);
    void profileChanged(const QString &profile);
    void pidChanged(qint64 pid);
    /// @}

private:
    friend class VideoSettingsPrivate;

    const std::unique_ptr<VideoSettingsPrivate> d;
};

} // namespace vantle
