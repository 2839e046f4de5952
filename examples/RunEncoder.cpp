// SPDX-License-Identifier: MIT
// A host that sends a preset's stream: it prints how ffmpeg would do that, or lets it do so.
#include "VantlePresets/encoder/EncoderPlan.h"
#include "VantlePresets/model/PresetFactory.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QProcess>

#include <cstdio>

namespace {

/// The process's exit code.
int failed(const QString &why)
{
    std::fprintf(stderr, "run_encoder: %s\n", qUtf8Printable(why));
    return 1;
}

int run(const vantle::EncoderPlan &plan)
{
    QStringList arguments = plan.arguments();
    const QString program = arguments.takeFirst();
    QProcess encoder;
    encoder.setReadChannel(QProcess::StandardError);
    encoder.setStandardInputFile(QProcess::nullDevice());
    encoder.start(program, QStringList{QStringLiteral("-nostats")} + arguments);
    if (!encoder.waitForStarted())
        return failed(program + QStringLiteral(": ") + encoder.errorString());
    // It repeats addresses, stream keys included. By whole lines, so that none comes in two pieces.
    while (encoder.canReadLine() || encoder.waitForReadyRead(-1)) {
        while (encoder.canReadLine())
            std::fputs(plan.withSecretsMasked(encoder.readLine()).constData(), stderr);
    }
    encoder.waitForFinished(-1);
    return encoder.exitStatus() == QProcess::NormalExit ? encoder.exitCode() : 1;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser options;
    options.addHelpOption();
    options.addOption({QStringLiteral("run"), QStringLiteral("Run it, from test pictures and tones")});
    options.addOption({QStringLiteral("seconds"), QStringLiteral("End after so many seconds of media"),
                       QStringLiteral("N"), QStringLiteral("10")});
    options.addOption({QStringLiteral("output"),
                       QStringLiteral("Folder or address in place of the preset's destination"),
                       QStringLiteral("PLACE")});
    options.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The preset"));
    options.process(application);
    if (options.positionalArguments().size() != 1)
        options.showHelp(2);

    try {
        const auto preset = vantle::readPresetFile(options.positionalArguments().first().toStdString());
        vantle::EncoderRequest request;
        request.setOutput(options.value(QStringLiteral("output")));
        request.setDuration(options.value(QStringLiteral("seconds")).toDouble());
        const vantle::EncoderPlan plan = vantle::planEncoder(*preset, request);
        if (!plan.problems().isEmpty())
            return failed(plan.problems().join(u'\n'));
        if (options.isSet(QStringLiteral("run")))
            return run(plan);
        std::puts(qUtf8Printable(vantle::shellLine(plan.maskedArguments())));
    } catch (const std::exception &error) {
        return failed(QString::fromUtf8(error.what()));
    }
    return 0;
}
