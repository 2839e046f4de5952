// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/model/RTMPVantlePreset.h"

namespace vantle {

class SRTPrivate;

/// A preset for Secure Reliable Transport.
///
/// Its document keeps address, port and the authentication flag; isBackup, streamKey and application last
/// as long as the object only, and the identifier is new whenever the file is read.
class VANTLE_PRESETS_EXPORT SRTVantlePreset : public VantlePreset
{
    Q_OBJECT
    Q_PROPERTY(bool isBackup READ isBackup WRITE setIsBackup NOTIFY isBackupChanged)
    Q_PROPERTY(QString streamKey READ streamKey WRITE setStreamKey NOTIFY streamKeyChanged)
    Q_PROPERTY(QString streamingURL READ streamingURL WRITE setStreamingURL NOTIFY streamingURLChanged)
    Q_PROPERTY(qint64 portNumber READ portNumber WRITE setPortNumber NOTIFY portNumberChanged)
    Q_PROPERTY(bool authenticate READ authenticate WRITE setAuthenticate NOTIFY authenticateChanged)
    Q_PROPERTY(QString application READ application WRITE setApplication NOTIFY applicationChanged)

public:
    /// For the static functions that make objects.
    explicit SRTVantlePreset(Key);
    ~SRTVantlePreset() override;

    /// For hosts; no field of the preset, and in no document. Encoded on its own it is its raw value.
    enum class SRTMode : int { caller = 1, listener = 2 };
    Q_ENUM(SRTMode)

    /// A new preset without server address and port.
    [[nodiscard]] static std::shared_ptr<SRTVantlePreset> withType(StreamingType type, const QString &name);

    /// Reads the file as an RTMP-family document, which the documents of this class are not: they yield
    /// null and one "Error reading file: " line. PresetFactory.h reads SRT files.
    [[nodiscard]] static std::shared_ptr<SRTVantlePreset> withFileAtPath(const QString &path);

    /// Reads a whole SRT document; throws DecodingError. See decodePreset().
    [[nodiscard]] static std::shared_ptr<SRTVantlePreset> decoded(QByteArrayView document);

    /// For the host application, which gives it its effect.
    [[nodiscard]] bool isBackup() const;
    /// For the host application; in no file.
    [[nodiscard]] const QString &streamKey() const;
    /// The server's host name or URL.
    [[nodiscard]] const QString &streamingURL() const;
    /// 0 until the user names one.
    [[nodiscard]] qint64 portNumber() const;
    /// Whether the server asks for a login, which no file keeps.
    [[nodiscard]] bool authenticate() const;
    /// For the host application; in no file.
    [[nodiscard]] const QString &application() const;

    /// @{
    /// Stores the value and announces it, see ObservableRecord.
    void setIsBackup(bool isBackup);
    void setStreamKey(const QString &streamKey);
    void setStreamingURL(const QString &url);
    void setPortNumber(qint64 port);
    void setAuthenticate(bool authenticate);
    void setApplication(const QString &application);
    /// @}

    using VantlePreset::update;
    /// Takes over kind, name, address, port, authentication and lists of an RTMP-family preset; the kind
    /// becomes one of that family.
    void update(const RTMPVantlePreset &other);
    /// Takes over the same fields of another SRT preset: all that its document keeps.
    void update(const SRTVantlePreset &other);

Q_SIGNALS:
    /// @{
    /// Comes after the value was stored, equal values included.
    void isBackupChanged(bool isBackup);
    void streamKeyChanged(const QString &streamKey);
    void streamingURLChanged(const QString &url);
    void portNumberChanged(qint64 port);
    void authenticateChanged(bool authenticate);
    void applicationChanged(const QString &application);
    /// @}

private:
    friend class SRTPrivate;

    [[nodiscard]] Q_DECL_HIDDEN SRTPrivate &data();
    [[nodiscard]] Q_DECL_HIDDEN const SRTPrivate &data() const;
};

/// Both modes in order, with their display strings.
[[nodiscard]] VANTLE_PRESETS_EXPORT const EnumerationTable<SRTVantlePreset::SRTMode> &srtModes();
/// The display string; a value outside the enumeration stops the process.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString displayName(SRTVantlePreset::SRTMode mode);

/// The modes for callers that know numbers and texts only.
class VANTLE_PRESETS_EXPORT SRTModeHelper
{
public:
    SRTModeHelper() = delete;

    /// In the order of the enumeration.
    [[nodiscard]] static QList<int> allRawValues();
    /// "" for a value that is neither mode.
    [[nodiscard]] static QString displayName(qint64 rawValue);
    /// In the order of the enumeration.
    [[nodiscard]] static QStringList allDisplayNames();
};

} // namespace vantle
