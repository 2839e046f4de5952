// SPDX-License-Identifier: MIT
#include "apps/vantlectl/EncoderRun.h"

#include "apps/support/StopOnSignal.h"
#include "apps/vantlectl/StoreSession.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/document/DocumentWriter.h"
#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/encoder/MasterPlaylist.h"
#include "VantlePresets/model/StreamAddress.h"

#include <QtCore/QEventLoop>
#include <QtCore/QProcess>
#include <QtCore/QTimer>

#include <array>
#include <chrono>
#include <csignal>

#include <sys/prctl.h>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

/// An address that answers at all does so long before.
constexpr int kProbeMilliseconds = 20000;

/// The whole lines of what has come in so far; ffmpeg ends some with a carriage return.
QList<QByteArray> takeLines(QByteArray &buffer)
{
    buffer.replace('\r', '\n');
    const qsizetype end = buffer.lastIndexOf('\n');
    if (end < 0)
        return {};
    QList<QByteArray> lines = buffer.first(end).split('\n');
    buffer.remove(0, end + 1);
    return lines;
}

struct ProgressField
{
    QByteArrayView key; ///< ffmpeg's, of the text that is shown
    QLatin1StringView unit;
    const char *name;         ///< in JSON
    QByteArrayView numberKey; ///< ffmpeg's, of the number there
    QByteArrayView suffix;    ///< which ffmpeg writes behind it
    double divisor = 1;
};

constexpr std::array<ProgressField, 5> kProgress{{{"out_time", {}, "time", "out_time_us", "", 1e6},
                                                  {"frame", " frames"_L1, "frame", "frame", ""},
                                                  {"fps", " fps"_L1, "fps", "fps", ""},
                                                  {"bitrate", {}, "bitRate", "bitrate", "kbits/s"},
                                                  {"speed", {}, "speed", "speed", "x"}}};

/// One encoder that runs.
class EncoderProcess : public QObject
{
public:
    EncoderProcess(const VantlePreset &preset, const EncoderPlan &plan, bool readsInput, bool json,
                   Output &out)
        : m_preset(preset), m_plan(plan), m_json(json), m_out(out)
    {
        QStringList texts = plan.arguments();
        m_process.setProgram(texts.takeFirst());
        m_process.setArguments(QStringList{u"-nostdin"_s, u"-loglevel"_s, u"warning"_s, u"-nostats"_s,
                                           u"-stats_period"_s, u"1"_s, u"-progress"_s, u"pipe:1"_s} +
                               texts);
        if (readsInput)
            m_process.setInputChannelMode(QProcess::ForwardedInputChannel);
        else
            m_process.setStandardInputFile(QProcess::nullDevice());
        m_process.setChildProcessModifier([] {
            // The child needs the signals that this process takes from a descriptor, and ends with it.
            sigset_t none;
            sigemptyset(&none);
            sigprocmask(SIG_SETMASK, &none, nullptr);
            prctl(PR_SET_PDEATHSIG, SIGTERM);
        });
        connect(&m_process, &QProcess::readyReadStandardOutput, this, &EncoderProcess::takeProgress);
        connect(&m_process, &QProcess::readyReadStandardError, this, &EncoderProcess::takeMessages);
        connect(&m_process, &QProcess::finished, &m_loop, &QEventLoop::quit);
    }

    ExitCode run()
    {
        const StopOnSignal stop([this] { this->stop(); });
        m_process.start();
        if (!m_process.waitForStarted(-1))
            throw Refusal("can't run "_L1 + m_process.program() + ": "_L1 + m_process.errorString());
        if (m_process.state() != QProcess::NotRunning)
            m_loop.exec();
        takeProgress();
        takeMessages();
        if (!m_messages.isEmpty())
            complainMasked(m_messages);
        completeMaster();
        if (m_failure)
            std::rethrow_exception(m_failure);
        return code();
    }

private:
    void stop()
    {
        if (std::exchange(m_isStopped, true))
            m_process.kill();
        else
            terminate();
    }

    /// Asks the encoder to end. One that waits for its input, in opening a FIFO, does not hear it.
    void terminate()
    {
        constexpr std::chrono::seconds kGrace{10};
        m_process.terminate();
        QTimer::singleShot(kGrace, &m_process, &QProcess::kill);
    }

    [[nodiscard]] ExitCode code() const
    {
        const bool isGood = m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
        if (isGood || m_isStopped)
            return ExitCode::good;
        complain(m_process.exitStatus() == QProcess::CrashExit
                     ? u"ffmpeg crashed"_s
                     : u"ffmpeg ended with exit code %1"_s.arg(m_process.exitCode()));
        return ExitCode::failed;
    }

    void takeMessages()
    {
        m_messages += m_process.readAllStandardError();
        for (const QByteArray &line : takeLines(m_messages))
            complainMasked(line);
    }

    void complainMasked(const QByteArray &line)
    {
        complain("ffmpeg: "_L1 + escapedControls(QString::fromUtf8(m_plan.withSecretsMasked(line))));
    }

    void takeProgress()
    try {
        m_progress += m_process.readAllStandardOutput();
        for (const QByteArray &line : takeLines(m_progress)) {
            const qsizetype equals = line.indexOf('=');
            m_values.insert(line.first(std::max<qsizetype>(equals, 0)), line.sliced(equals + 1).trimmed());
            if (line.startsWith("progress=")) {
                completeMaster();
                print();
            }
        }
    } catch (const std::exception &) {
        m_failure = std::current_exception();
        terminate();
    }

    /// The encoder writes it once, as soon as a segment of each part is there.
    void completeMaster()
    {
        if (m_isMasterGivenUp)
            return;
        try {
            completeMasterPlaylist(m_preset, m_plan);
        } catch (const std::system_error &error) {
            m_isMasterGivenUp = true;
            remark("note: "_L1 + escapedControls(m_plan.masterPlaylist()) +
                   " stays as the encoder wrote it: "_L1 + QString::fromUtf8(error.what()));
        }
    }

    void print()
    {
        if (m_json) {
            m_out.bytes(document::encode(document::Format::compact, [&](document::DocumentWriter &writer) {
                writer.beginObject();
                for (const ProgressField &field : kProgress)
                    writeNumber(writer, field);
                writer.endObject();
            }));
        } else {
            QStringList texts;
            for (const ProgressField &field : kProgress)
                texts.append(text(field) + field.unit);
            m_out.bytes(texts.join("  "_L1).toUtf8());
        }
        m_out.line();
        m_out.flush();
    }

    /// Nothing for what ffmpeg does not know yet, "N/A".
    void writeNumber(document::DocumentWriter &writer, const ProgressField &field) const
    {
        QByteArray value = m_values.value(field.numberKey.toByteArray());
        if (!field.suffix.isEmpty() && value.endsWith(field.suffix))
            value.chop(field.suffix.size());
        bool isNumber = false;
        if (const qint64 count = value.toLongLong(&isNumber); isNumber && field.divisor == 1)
            return writer.integer(field.name, count);
        if (const double number = value.toDouble(&isNumber); isNumber && qIsFinite(number))
            writer.number(field.name, number / field.divisor);
    }

    [[nodiscard]] QString text(const ProgressField &field) const
    {
        return QString::fromUtf8(m_values.value(field.key.toByteArray()));
    }

    const VantlePreset &m_preset;
    EncoderPlan m_plan;
    bool m_json;
    Output &m_out;
    QProcess m_process;
    QEventLoop m_loop;
    QByteArray m_messages;
    QByteArray m_progress;
    QHash<QByteArray, QByteArray> m_values;
    bool m_isStopped = false;
    bool m_isMasterGivenUp = false;
    std::exception_ptr m_failure;
};

} // namespace

bool isLive(const QString &input)
{
    if (isLiveInput(input))
        return true;
    std::error_code none;
    const auto type = std::filesystem::status(fileSystemPath(input), none).type();
    return type == std::filesystem::file_type::fifo || type == std::filesystem::file_type::character ||
           type == std::filesystem::file_type::socket;
}

int channelsOfInput(const QString &input)
{
    QProcess probe;
    probe.setStandardInputFile(QProcess::nullDevice());
    probe.start(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-select_streams"_s, u"a:0"_s, u"-show_entries"_s,
                               u"stream=channels"_s, u"-of"_s, u"csv=p=0"_s, u"-i"_s, input});
    if (!probe.waitForStarted(-1))
        throw Refusal("can't run ffprobe: "_L1 + probe.errorString());
    if (!probe.waitForFinished(kProbeMilliseconds)) {
        probe.kill();
        probe.waitForFinished(-1);
        throw Refusal("--input: nothing was learnt of it in "_L1 +
                      QString::number(kProbeMilliseconds / 1000) + " seconds"_L1);
    }
    if (probe.exitStatus() != QProcess::NormalExit || probe.exitCode() != 0) {
        QString message = QString::fromUtf8(probe.readAllStandardError().trimmed());
        if (input.contains("://"_L1))
            message.replace(input, shownAddress(input));
        throw Refusal("--input: "_L1 + escapedControls(message));
    }
    return probe.readAllStandardOutput().split('\n').first().trimmed().toInt();
}

ExitCode runEncoder(const VantlePreset &preset, const EncoderPlan &plan, bool readsInput, bool json,
                    Output &out)
{
    return EncoderProcess(preset, plan, readsInput, json, out).run();
}

} // namespace vantle::ctl
