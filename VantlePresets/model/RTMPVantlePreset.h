// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/model/VantlePreset.h"

namespace vantle {

class RTMPPrivate;

/// A preset that pushes to a server: YouTube, RTMP, Wowza and Facebook.
///
/// YouTube and Facebook documents keep isBackup, streamKey and application; RTMP and Wowza documents do
/// not, so these values last as long as the object only. Login and password are kept, in plain text, while
/// authenticate is on. None of the four kinds keeps its identifier.
class VANTLE_PRESETS_EXPORT RTMPVantlePreset : public VantlePreset
{
    Q_OBJECT

public:
    /// The transport to the server.
    enum class StreamingProtocol : int { rtmp = 1, rtmps = 2, rtspUDP = 3, rtspTCP = 4 };
    Q_ENUM(StreamingProtocol)

private:
    Q_PROPERTY(bool isBackup READ isBackup WRITE setIsBackup NOTIFY isBackupChanged)
    Q_PROPERTY(QString streamKey READ streamKey WRITE setStreamKey NOTIFY streamKeyChanged)
    Q_PROPERTY(QString streamingURL READ streamingURL WRITE setStreamingURL NOTIFY streamingURLChanged)
    Q_PROPERTY(vantle::RTMPVantlePreset::StreamingProtocol streamingProtocol READ streamingProtocol WRITE
                   setStreamingProtocol NOTIFY streamingProtocolChanged)
    Q_PROPERTY(qint64 portNumber READ portNumber WRITE setPortNumber NOTIFY portNumberChanged)
    Q_PROPERTY(bool authenticate READ authenticate WRITE setAuthenticate NOTIFY authenticateChanged)
    Q_PROPERTY(QString authenticationLogin READ authenticationLogin WRITE setAuthenticationLogin NOTIFY
                   authenticationLoginChanged)
    Q_PROPERTY(QString authenticationPassword READ authenticationPassword WRITE setAuthenticationPassword
                   NOTIFY authenticationPasswordChanged)
    Q_PROPERTY(QString application READ application WRITE setApplication NOTIFY applicationChanged)

public:
    using VantlePreset::update;
    /// For the static functions that make objects.
    explicit RTMPVantlePreset(Key);
    ~RTMPVantlePreset() override;

    /// A new preset with its kind's defaults. YouTube and Facebook bring their service's host and
    /// application.
    [[nodiscard]] static std::shared_ptr<RTMPVantlePreset> withType(StreamingType type, const QString &name,
                                                                    bool isBackup, const QString &streamKey);
    static std::shared_ptr<RTMPVantlePreset> withType(StreamingType type, const QString &name) = delete;

    /// Null when the file can't be read; when only the keys of this class can't, also logs
    /// "Error reading file: " and the reason.
    [[nodiscard]] static std::shared_ptr<RTMPVantlePreset> withFileAtPath(const QString &path);

    /// Reads a whole document of one of the four kinds; throws DecodingError. See decodePreset().
    [[nodiscard]] static std::shared_ptr<RTMPVantlePreset> decoded(QByteArrayView document);

    /// For the host application, which gives it its effect.
    [[nodiscard]] bool isBackup() const;
    /// A secret that names the stream to the server.
    [[nodiscard]] const QString &streamKey() const;
    /// The server's host name or URL.
    [[nodiscard]] const QString &streamingURL() const;
    /// RTMP in a new preset.
    [[nodiscard]] StreamingProtocol streamingProtocol() const;
    /// Any number that the file or the user gave.
    [[nodiscard]] qint64 portNumber() const;
    /// Whether the server asks for login and password.
    [[nodiscard]] bool authenticate() const;
    /// Kept in the file while authenticate() is on.
    [[nodiscard]] const QString &authenticationLogin() const;
    /// Kept in the file, in plain text, while authenticate() is on.
    [[nodiscard]] const QString &authenticationPassword() const;
    /// The application's name on the server.
    [[nodiscard]] const QString &application() const;

    /// @{
    /// Stores the value and announces it, see ObservableRecord.
    void setIsBackup(bool isBackup);
    void setStreamKey(const QString &streamKey);
    void setStreamingURL(const QString &url);
    void setStreamingProtocol(StreamingProtocol protocol);
    void setPortNumber(qint64 port);
    void setAuthenticate(bool authenticate);
    void setAuthenticationLogin(const QString &login);
    void setAuthenticationPassword(const QString &password);
    void setApplication(const QString &application);
    /// @}

    /// Takes over what the other's document would keep, its name included; shares its settings objects.
    void update(const RTMPVantlePreset &other);

Q_SIGNALS:
    /// @{
    /// Comes after the value was stored, equal values included.
    void isBackupChanged(bool isBackup);
    void streamKeyChanged(const QString &streamKey);
    void streamingURLChanged(const QString &url);
    void streamingProtocolChanged(vantle::RTMPVantlePreset::StreamingProtocol protocol);
    void portNumberChanged(qint64 port);
    void authenticateChanged(bool authenticate);
    void authenticationLoginChanged(const QString &login);
    void authenticationPasswordChanged(const QString &password);
    void applicationChanged(const QString &application);
    /// @}

private:
    friend class RTMPPrivate;

    [[nodiscard]] Q_DECL_HIDDEN RTMPPrivate &data();
    [[nodiscard]] Q_DECL_HIDDEN const RTMPPrivate &data() const;
};

/// The four transports in order, with the strings shown to users and kept in preset files.
[[nodiscard]] VANTLE_PRESETS_EXPORT const EnumerationTable<RTMPVantlePreset::StreamingProtocol> &
streamingProtocols();
/// The display string; a value outside the enumeration stops the process.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString displayName(RTMPVantlePreset::StreamingProtocol protocol);

/// The transports for callers that know numbers and texts only.
class VANTLE_PRESETS_EXPORT StreamingProtocolHelper
{
public:
    StreamingProtocolHelper() = delete;

    /// In the order of the enumeration.
    [[nodiscard]] static QList<int> allRawValues();
    /// "" for a value that is none of the transports.
    [[nodiscard]] static QString displayName(qint64 rawValue);
    /// In the order of the enumeration.
    [[nodiscard]] static QStringList allDisplayNames();
};

} // namespace vantle
