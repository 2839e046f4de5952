// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/check/Export.h"
#include "VantlePresets/core/EnumerationTable.h"
#include "VantlePresets/model/VantlePreset.h"

#include <QtCore/QList>
#include <QtCore/QMetaType>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <chrono>
#include <memory>

namespace vantle {

/// How a step of a check ended.
enum class CheckOutcome : int { good = 1, failed = 2 };

/// The outcomes with the texts "ok" and "failed".
[[nodiscard]] VANTLE_CHECK_EXPORT const EnumerationTable<CheckOutcome> &checkOutcomes();

/// One step of a check. A plain value without secrets: no stream key, passphrase, password or parameter.
struct VANTLE_CHECK_EXPORT CheckStep
{
    QString
        name; ///< "name look-up", "TCP", "TLS", "RTMP handshake", "RTSP", "HTTP", "SRT", "folder" or "preset"
    CheckOutcome outcome = CheckOutcome::failed; ///< the first that failed is the last one
    std::chrono::milliseconds time{};            ///< how long it took
    QString text;                                ///< what was found, or why it failed; one line
};

/// What a check is to know beside its preset.
struct VANTLE_CHECK_EXPORT CheckOptions
{
    /// A folder or an http or https address for HLS, else an address, in place of the preset's; "" for that
    /// one.
    QString output;
    /// A PEM file of certificates that are trusted beside the machine's own; "" for none.
    QString authorityFile;
    /// How long each step may take; more than 0.
    std::chrono::milliseconds limit{std::chrono::seconds(5)};
};

/// Asks the server of a preset, before air, whether it is there and speaks what the preset sends: name
/// look-up, TCP, TLS with certificate and host name, then what the protocol says first. Nothing is published.
///
/// | server | what is said to it |
/// |---|---|
/// | RTMP, RTMPS | the handshake, without a connection to an application |
/// | HTTP, HTTPS, RTSP | OPTIONS, without a login |
/// | SRT | a connection with passphrase and stream identifier, closed at once: it takes the place of a
/// listener that serves one caller | | this machine, as SRT's listener or as HLS's folder | whether the port
/// is free, whether the folder can be written to |
///
/// Runs on the event loop of the thread that calls start(), to which it has to belong, and blocks nowhere; a
/// look-up has a thread of its own, which ends when the system gives up, also later than the check. The
/// values of the preset are read by the constructor, on the preset's thread; the preset is not kept.
/// Destroying it ends it, in a slot of its own signals too.
class VANTLE_CHECK_EXPORT ConnectionCheck : public QObject
{
    Q_OBJECT

public:
    /// Asks nobody yet.
    explicit ConnectionCheck(const VantlePreset &preset, const CheckOptions &options = {},
                             QObject *parent = nullptr);
    ~ConnectionCheck() override;

    /// Begins, once; later calls do nothing. The first signal comes from the event loop.
    void start();
    /// Ends it without another signal; what has been found stays.
    void cancel();

    /// The steps that have ended, in their order.
    [[nodiscard]] const QList<CheckStep> &steps() const;

Q_SIGNALS:
    /// A step has ended.
    void stepFinished(const vantle::CheckStep &step);
    /// The last step has ended. Not sent after cancel().
    void finished(bool isGood);

private:
    class Private;
    std::unique_ptr<Private> d;
};

/// For programs of which everything else is silent on standard error: takes what libsrt logs there for
/// itself, in the whole process. The library never does so, since hosts may use libsrt, too. On any thread.
VANTLE_CHECK_EXPORT void silenceSrtLog();

} // namespace vantle

Q_DECLARE_METATYPE(vantle::CheckStep)
