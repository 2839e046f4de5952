// SPDX-License-Identifier: MIT
#include "VantlePresets/check/ConnectionCheck.h"
#include "VantlePresets/check/StepWork.h"
#include "tests/check/Servers.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"
#include "tests/support/Wait.h"

#include <gtest/gtest.h>

#include <QtCore/QThread>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;

TEST(ConnectionCheck, AnAddressThatIsDeadOrSwallowsEverythingDoesNotHideTheNext)
{
    const FullPort swallowing;
    QTcpServer behind;
    ASSERT_TRUE(behind.listen(QHostAddress(u"127.0.0.2"_s), swallowing.port()));
    check::CheckContext context;
    context.target.port = swallowing.port();
    context.limit = std::chrono::seconds(3);
    context.addresses = {QHostAddress(u"127.0.0.3"_s), QHostAddress(u"127.0.0.1"_s), behind.serverAddress()};
    QString said;
    const auto work = check::kTcp.make(
        context, [&](bool isGood, const QString &text) { said = (isGood ? "ok "_L1 : "failed "_L1) + text; });
    work->start();
    EXPECT_TRUE(waitFor([&] { return !said.isEmpty(); }));
    EXPECT_EQ(said, "ok 127.0.0.2 port "_L1 + QString::number(swallowing.port()));
    EXPECT_EQ(context.socket->state(), QAbstractSocket::ConnectedState);
}

std::shared_ptr<VantlePreset> presetFor(const Server &server)
{
    const QByteArray address = "127.0.0.1:" + QByteArray::number(server.port());
    return decodePreset(presetText("RTMP")
                            .with("streamingURL", '"' + address + '"')
                            .with("streamingProtocol", R"("RTMP")")
                            .text());
}

TEST(ConnectionCheck, EndsWhenItIsCancelledOrDestroyed)
{
    const Server silent(staySilent);
    const auto preset = presetFor(silent);
    for (const bool isDestroyed : {false, true}) {
        auto check = std::make_unique<ConnectionCheck>(*preset);
        int steps = 0;
        bool hasFinished = false;
        QObject::connect(check.get(), &ConnectionCheck::finished, [&] { hasFinished = true; });
        QObject::connect(check.get(), &ConnectionCheck::stepFinished, [&](const CheckStep &step) {
            ++steps;
            if (step.name != "TCP"_L1)
                return;
            if (isDestroyed)
                check.reset();
            else
                check->cancel();
        });
        check->start();
        check->start();
        ASSERT_TRUE(waitFor([&] { return steps == 2 && silent.isCallerGone(); }));
        QCoreApplication::processEvents();
        EXPECT_EQ(steps, 2);
        EXPECT_FALSE(hasFinished);
    }
}

TEST(ConnectionCheck, RunsOnAThreadOfItsOwn)
{
    const Server server(shakeHands);
    QThread thread;
    auto *const check = new ConnectionCheck(*presetFor(server));
    check->moveToThread(&thread);
    QObject::connect(&thread, &QThread::started, check, &ConnectionCheck::start);
    QObject::connect(&thread, &QThread::finished, check, &QObject::deleteLater);
    QStringList steps;
    std::optional<bool> result;
    QObject here;
    QObject::connect(check, &ConnectionCheck::stepFinished, &here,
                     [&](const CheckStep &step) { steps.append(step.name); });
    QObject::connect(check, &ConnectionCheck::finished, &here, [&](bool isGood) { result = isGood; });
    thread.start();
    EXPECT_TRUE(waitFor([&] { return result.has_value(); }));
    thread.quit();
    thread.wait();
    EXPECT_EQ(result, true);
    EXPECT_EQ(steps, (QStringList{u"name look-up"_s, u"TCP"_s, u"RTMP handshake"_s}));
    // Version and two blocks: nothing was said after the handshake.
    EXPECT_TRUE(waitFor([&] { return server.isCallerGone(); }));
    EXPECT_EQ(server.said().size(), 1 + 2 * 1536);
}

} // namespace
} // namespace vantle::test
