// SPDX-License-Identifier: MIT
#include "VantlePresets/core/Log.h"
#include "tests/support/QtPrinters.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;

TEST(Log, ASinkMayLogAndWaitForThreadsThatDo)
{
    QStringList lines;
    setLogSink([&lines](const QString &line) {
        if (line == u"first"_s) {
            logLine(u"from the sink"_s);
            std::thread([] { logLine(u"from a thread"_s); }).join();
        }
        lines.append(line);
    });
    logLine(u"first"_s);
    setLogSink({});
    EXPECT_EQ(lines, (QStringList{u"first"_s, u"from the sink"_s, u"from a thread"_s}));
}

TEST(Log, ASinkMayReplaceItself)
{
    QStringList lines;
    setLogSink([&lines](const QString &line) {
        setLogSink([&lines](const QString &later) { lines.append(u"second: "_s + later); });
        lines.append(line);
    });
    logLine(u"a"_s);
    logLine(u"b"_s);
    setLogSink({});
    EXPECT_EQ(lines, (QStringList{u"a"_s, u"second: b"_s}));
}

TEST(Log, TheEarlierSinkDoesNotRunAnyMoreWhenItHasBeenReplaced)
{
    std::promise<void> isRunning;
    std::promise<void> mayEnd;
    std::atomic<bool> hasEnded = false;
    setLogSink([&](const QString &) {
        isRunning.set_value();
        mayEnd.get_future().wait();
        hasEnded = true;
    });
    std::thread logging([] { logLine(u"slow"_s); });
    isRunning.get_future().wait();
    std::thread releasing([&] { mayEnd.set_value(); });
    setLogSink({});
    EXPECT_TRUE(hasEnded);
    logging.join();
    releasing.join();
}

TEST(Log, ASinkThatThrowsIsCalledAgain)
{
    int calls = 0;
    setLogSink([&calls](const QString &) {
        if (++calls == 1)
            throw std::runtime_error("full");
    });
    EXPECT_THROW(logLine(u"a"_s), std::runtime_error);
    logLine(u"b"_s);
    setLogSink({});
    EXPECT_EQ(calls, 2);
}

} // namespace
} // namespace vantle::test
