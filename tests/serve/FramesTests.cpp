// SPDX-License-Identifier: MIT
#include "apps/vantlectl/serve/Frames.h"

#include <QtCore/QByteArrayList>

#include <gtest/gtest.h>

#include <algorithm>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

constexpr quint64 kLargest = 10;

struct Case
{
    const char *what;
    QByteArray input;
    QByteArrayList frames; ///< a body, "!tooLarge" or "!broken"
    bool isInFrame = false;
};

QByteArray textOf(const Frame &frame)
{
    switch (frame.kind) {
    case Frame::Kind::message:
        return frame.body;
    case Frame::Kind::tooLarge:
        return "!tooLarge";
    case Frame::Kind::broken:
        break;
    }
    return "!broken";
}

QByteArrayList cut(const QByteArray &input, qsizetype step, bool &isInFrame)
{
    Frames frames(kLargest);
    QByteArrayList found;
    for (qsizetype from = 0; from < input.size(); from += step) {
        frames.append(input.sliced(from, std::min(step, input.size() - from)));
        while (const auto frame = frames.next()) {
            EXPECT_EQ(frame->kind == Frame::Kind::message, frame->problem.isEmpty());
            found.append(textOf(*frame));
        }
    }
    isInFrame = frames.isInFrame();
    return found;
}

TEST(FramesTest, AreCutOutOfAnyPieces)
{
    const QByteArray longHeader = "X: " + QByteArray(5000, 'x') + "\r\n";
    const Case cases[]{
        {"nothing", "", {}},
        {"one", "Content-Length: 2\r\n\r\n{}", {"{}"}},
        {"two at once", "Content-Length: 2\r\n\r\n{}Content-Length: 3\r\n\r\n[1]", {"{}", "[1]"}},
        {"an empty body", "Content-Length: 0\r\n\r\nContent-Length: 1\r\n\r\n1", {"", "1"}},
        {"other headers", "Content-Type: x; charset=utf-8\r\nCONTENT-LENGTH:2\r\n\r\n{}", {"{}"}},
        {"line feeds alone", "content-length : 2 \n\n{}", {"{}"}},
        {"the same length twice", "Content-Length: 2\r\nContent-Length: 2\r\n\r\n{}", {"{}"}},
        {"line breaks in a body", "Content-Length: 4\r\n\r\n\r\n\r\n", {"\r\n\r\n"}},
        {"the largest", "Content-Length: 10\r\n\r\n0123456789", {"0123456789"}},
        {"one too large",
         "Content-Length: 11\r\n\r\n01234567890Content-Length: 1\r\n\r\n1",
         {"!tooLarge", "1"}},
        {"far too large", "Content-Length: 999999999999999999\r\n\r\n0123", {"!tooLarge"}, true},
        {"a header that ends", "Content-Len", {}, true},
        {"a body that ends", "Content-Length: 3\r\n\r\n{}", {}, true},
        {"no length", "Content-Type: x\r\n\r\n{}", {"!broken"}},
        {"no header", "\r\n\r\n", {"!broken"}},
        {"no colon", "[]\n", {"!broken"}},
        {"no number", "Content-Length: two\r\n\r\n{}", {"!broken"}},
        {"a sign", "Content-Length: -2\r\n\r\n{}", {"!broken"}},
        {"a number that is too large", "Content-Length: 9999999999999999999\r\n\r\n", {"!broken"}},
        {"two lengths", "Content-Length: 1\r\nContent-Length: 2\r\n\r\n{}", {"!broken"}},
        {"an endless header", longHeader, {"!broken"}},
        {"what follows a broken one", "x\nContent-Length: 2\r\n\r\n{}", {"!broken"}},
    };
    for (const Case &tried : cases) {
        for (const qsizetype step : {qsizetype(1), qsizetype(7), qsizetype(10'000)}) {
            SCOPED_TRACE(testing::Message() << tried.what << ", in pieces of " << step);
            bool isInFrame = false;
            EXPECT_EQ(cut(tried.input, step, isInFrame), tried.frames);
            EXPECT_EQ(isInFrame, tried.isInFrame);
        }
    }
}

TEST(FramesTest, CarryWhatTheyWrite)
{
    bool isInFrame = true;
    EXPECT_EQ(cut(framed("{}") + framed("") + framed("\xc3\xa4"), 3, isInFrame),
              QByteArrayList({"{}", "", "\xc3\xa4"}));
    EXPECT_FALSE(isInFrame);
}

} // namespace
} // namespace vantle::ctl
