// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/model/VantlePreset.h"

#include <QtCore/QByteArray>
#include <QtCore/QSharedDataPointer>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace vantle {

/// What a preset is to be encoded from and where to. A value: copies are independent of each other. A new
/// one asks for test pictures and tones, in real time, to the preset's own destination.
class VANTLE_PRESETS_EXPORT EncoderRequest
{
public:
    EncoderRequest();
    /// Another one with the same content.
    EncoderRequest(const EncoderRequest &other);
    /// The other's content.
    EncoderRequest &operator=(const EncoderRequest &other);
    ~EncoderRequest();

    /// A file, a URL, or "-" for standard input; "" for test pictures, and tones with as many channels as the
    /// preset takes.
    [[nodiscard]] QString input() const;
    /// Sets input().
    void setInput(const QString &input);
    /// How many channels the input's first audio stream has. Nothing when that is not known: then the encoder
    /// ends by itself when a track names a channel that is not there. Does not concern the test input.
    [[nodiscard]] std::optional<int> inputChannels() const;
    /// Sets inputChannels().
    void setInputChannels(std::optional<int> channels);
    /// Takes the place of the preset's destination, unless it is "": for HLS a folder or an http or https
    /// address, else a server's address with port and stream key.
    [[nodiscard]] QString output() const;
    /// Sets output().
    void setOutput(const QString &output);
    /// Whether the input is read in real time, as a live stream is sent, and not as fast as it goes.
    [[nodiscard]] bool isPaced() const;
    /// Sets isPaced().
    void setPaced(bool paced);
    /// Seconds of media after which the stream ends, above 0; nothing for a stream that ends with its input.
    [[nodiscard]] std::optional<double> duration() const;
    /// Sets duration().
    void setDuration(std::optional<double> seconds);

private:
    struct Data;
    QSharedDataPointer<Data> m_data;
};

/// The encoder's arguments for a preset, or why there are none. A value, made by planEncoder().
class VANTLE_PRESETS_EXPORT EncoderPlan
{
public:
    /// The same plan.
    EncoderPlan(const EncoderPlan &other);
    /// The other's content.
    EncoderPlan &operator=(const EncoderPlan &other);
    ~EncoderPlan();

    /// What encoder or container can't carry, one text each that begins with the field as
    /// "videoSettings.1.bitRate: " or with the request's part as "--input: ". While there are any, there are
    /// no arguments.
    [[nodiscard]] QStringList problems() const;
    /// What the stream will not say though the preset does, in the same form.
    [[nodiscard]] QStringList notes() const;
    /// What to start the encoder with, without a shell: the program's name "ffmpeg", then its arguments.
    /// Holds secrets as they are; other users of the machine can see the arguments of a running program.
    [[nodiscard]] QStringList arguments() const;
    /// The same for showing and logging: each secret is "********".
    [[nodiscard]] QStringList maskedArguments() const;
    /// Every secret in the arguments (stream key, password, passphrase, an address's parameters), the longest
    /// first. Known from where it was put in, not found again in the text.
    [[nodiscard]] QStringList secrets() const;
    /// What the encoder printed, for showing and logging: it repeats addresses, secrets included.
    [[nodiscard]] QByteArray withSecretsMasked(QByteArray message) const;

private:
    struct Data;
    VANTLE_PRESETS_NO_EXPORT explicit EncoderPlan(Data data);
    friend VANTLE_PRESETS_EXPORT EncoderPlan planEncoder(const VantlePreset &preset,
                                                         const EncoderRequest &request);

    QSharedDataPointer<Data> m_data;
};

/// Plans the command line with which ffmpeg 5.1 encodes a preset and sends it. Looks at nothing but its
/// arguments: no file is opened, no server contacted, no program started. On the thread that the preset
/// belongs to.
[[nodiscard]] VANTLE_PRESETS_EXPORT EncoderPlan planEncoder(const VantlePreset &preset,
                                                            const EncoderRequest &request = {});

/// One line that a POSIX shell reads as these arguments. Callable from any thread.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString shellLine(const QStringList &arguments);

} // namespace vantle
