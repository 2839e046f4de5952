// SPDX-License-Identifier: MIT
#include "tests/support/FinishedProcess.h"
#include "tests/support/LiveStore.h"

#include <QtCore/QFile>
#include <QtGui/QImage>

#include <gtest/gtest.h>

#include <cstring>

#include <signal.h>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::runProcess;
using test::waitFor;

TEST(Program, NeedsNoDisplayToSayHowItIsCalled)
{
    const struct
    {
        std::vector<std::string> arguments;
        bool isHelp;
    } cases[] = {{{"--help"}, true}, {{"--colors", "blue"}, false}, {{"--bogus"}, false}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments.front());
        std::vector<std::string> command{"/usr/bin/env", "QT_QPA_PLATFORM=none", VANTLE};
        command.insert(command.end(), c.arguments.begin(), c.arguments.end());
        const auto finished = runProcess(command);
        EXPECT_EQ(finished.exitCode, c.isHelp ? 0 : 2);
        EXPECT_NE((c.isHelp ? finished.output : finished.errors).indexOf("--help"), -1);
    }
    // Qt's own options are still taken.
    EXPECT_EQ(
        runProcess({VANTLE, "-style", "fusion", "--data-dir", "/dev/null", "--screenshot", "/dev/null/a.png"})
            .exitCode,
        1);
    EXPECT_EQ(runProcess({VANTLE, "-style", "fusion", "--bogus"}).exitCode, 2);
}

TEST(Program, EndsInGoodOrderOnASignal)
{
    const test::LiveStore store;
    for (const int signal : {SIGTERM, SIGINT}) {
        test::ChildProcess editor({VANTLE, "--data-dir", store.dataDirectory().toStdString()});
        const std::string status = "/proc/" + std::to_string(editor.id()) + "/status";
        ASSERT_TRUE(waitFor([&] {
            QFile file(QString::fromStdString(status));
            if (!file.open(QIODevice::ReadOnly))
                return false;
            const QByteArray text = file.readAll();
            const qsizetype blocked = text.indexOf("SigBlk:\t") + 8;
            return (text.mid(blocked, 16).toULongLong(nullptr, 16) >> (signal - 1) & 1) != 0;
        }));
        ::kill(editor.id(), signal);
        ASSERT_TRUE(waitFor([&] { return editor.status().has_value(); }));
        EXPECT_EQ(editor.status(), 0) << strsignal(signal);
    }
}

TEST(Program, EndsWhenThereIsNothingToTakeAPictureOf)
{
    const test::LiveStore store;
    for (const char *script : {"rmdir ../*Presets", "rmdir ../*Presets; touch '../Streaming Presets'"}) {
        std::filesystem::create_directories(store.folder());
        ASSERT_TRUE(store.runElsewhere(QString::fromUtf8(script)));
        const bool isThere = std::filesystem::exists(store.folder());
        const auto finished = runProcess({VANTLE, "--data-dir", store.dataDirectory().toStdString(),
                                          "--screenshot", store.folder().parent_path() / "picture.png"});
        EXPECT_EQ(finished.exitCode, 1);
        EXPECT_NE(finished.errors.indexOf("vantle: " + store.folder().string() +
                                          (isThere ? ": Not a directory\n" : ": there is no such folder\n")),
                  -1);
        EXPECT_EQ(std::filesystem::exists(store.folder()), isThere) << "looking makes none";
    }
}

TEST(Program, APictureChangesNothing)
{
    const test::LiveStore store;
    store.writePreset(u"Alpha"_s);
    ASSERT_TRUE(store.runElsewhere(u"echo >>Alpha.json; mkdir -p ../Orvalle; "
                                   "echo '[General]' >../Orvalle/Vantle.conf; cp Alpha.json ../before"_s));
    const std::string data = store.dataDirectory().toStdString();
    const std::string picture = data + "/picture.png";
    const auto finished =
        runProcess({"/usr/bin/env", "XDG_CONFIG_HOME=" + data + "/Orvalle", VANTLE, "--data-dir", data,
                    "--screenshot", picture, "--select", "Alpha", "--size", "1200x800"});
    EXPECT_EQ(finished.exitCode, 0) << finished.errors.constData();
    EXPECT_EQ(QImage(QString::fromStdString(picture)).size(), QSize(1200, 800));
    EXPECT_TRUE(
        store.runElsewhere(u"cmp Alpha.json ../before; echo '[General]' | cmp - ../Orvalle/Vantle.conf"_s));
}

} // namespace
} // namespace vantle
