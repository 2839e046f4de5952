// SPDX-License-Identifier: MIT
// A host that checks a preset before air. Nobody listens on port 1 of the loopback.
#include "VantlePresets/check/ConnectionCheck.h"
#include "VantlePresets/model/RTMPVantlePreset.h"

#include <QtCore/QCoreApplication>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const auto preset =
        vantle::RTMPVantlePreset::withType(vantle::StreamingType::rtmp, QStringLiteral("Check"), false, {});
    preset->setStreamingURL(QStringLiteral("127.0.0.1:1"));
    vantle::ConnectionCheck check(*preset);
    QObject::connect(&check, &vantle::ConnectionCheck::finished, &application, [&](bool isGood) {
        const bool isRefused = check.steps().last().name == QLatin1String("TCP") &&
                               check.steps().last().outcome == vantle::CheckOutcome::failed;
        QCoreApplication::exit(!isGood && isRefused ? 0 : 1);
    });
    check.start();
    return QCoreApplication::exec();
}
