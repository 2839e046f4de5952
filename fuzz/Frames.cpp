// SPDX-License-Identifier: MIT
#include "fuzz/FuzzTarget.h"

#include "apps/vantlectl/serve/Frames.h"
#include "apps/vantlectl/serve/Request.h"

#include <QtCore/QJsonDocument>

#include <algorithm>

// The first byte is the size of the pieces in which the rest arrives, as whole and in these pieces.

namespace vantle::fuzz {
namespace {

constexpr quint64 kLargest = 4096;

struct Cut
{
    QList<ctl::Frame> frames;
    bool isInFrame = false;
};

Cut cut(QByteArrayView input, qsizetype step)
{
    ctl::Frames frames(kLargest);
    Cut result;
    for (qsizetype from = 0; from < input.size(); from += step) {
        frames.append(input.sliced(from, std::min(step, input.size() - from)));
        while (auto frame = frames.next())
            result.frames.append(*frame);
    }
    result.isInFrame = frames.isInFrame();
    return result;
}

bool isSame(const ctl::Frame &one, const ctl::Frame &other)
{
    return one.kind == other.kind && one.body == other.body && one.problem == other.problem;
}

void checkBody(const QByteArray &body)
{
    QByteArray answer;
    const auto request = ctl::Request::parse(body, answer);
    require(request.has_value() == answer.isEmpty(), "a body is a request or has an answer");
    if (request && !request->id.isEmpty())
        answer = ctl::answerTo(request->id, "null");
    if (!answer.isEmpty())
        require(QJsonDocument::fromJson(answer).isObject(), "an answer is an object of JSON");
}

void run(QByteArrayView input)
{
    if (input.isEmpty())
        return;
    const auto step = std::max<qsizetype>(static_cast<uchar>(input.front()), 1);
    const Cut whole = cut(input.sliced(1), std::max<qsizetype>(input.size(), 1));
    const Cut pieces = cut(input.sliced(1), step);
    require(std::equal(whole.frames.begin(), whole.frames.end(), pieces.frames.begin(), pieces.frames.end(),
                       isSame),
            "pieces make no difference");
    require(whole.isInFrame == pieces.isInFrame, "nor for what is unfinished");
    for (const ctl::Frame &frame : whole.frames) {
        require(static_cast<quint64>(frame.body.size()) <= kLargest, "no body is larger than the largest");
        if (frame.kind == ctl::Frame::Kind::message)
            checkBody(frame.body);
    }
}

} // namespace
} // namespace vantle::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    vantle::fuzz::run({reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)});
    return 0;
}
