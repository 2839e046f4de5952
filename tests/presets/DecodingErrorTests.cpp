// SPDX-License-Identifier: MIT
#include "VantlePresets/document/FileAccess.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsSanitized = true; // their bookkeeping is in the figure
#else
constexpr bool kIsSanitized = false;
#endif

struct Row
{
    QByteArray text;
    QString place;
    QString description;
};

void expectErrors(const std::vector<Row> &rows)
{
    for (const Row &row : rows) {
        SCOPED_TRACE(row.text.left(300).toStdString());
        try {
            (void)decodePreset(row.text);
            ADD_FAILURE() << "was read";
        } catch (const DecodingError &error) {
            EXPECT_EQ(error.place(), row.place);
            EXPECT_EQ(error.description(), row.description);
            const QString message =
                row.place.isEmpty() ? row.description : row.place + u": "_s + row.description;
            EXPECT_EQ(error.message(), message);
            EXPECT_EQ(QString::fromUtf8(error.what()), message);
        }
    }
}

QByteArray withVideo(const ObjectText &second)
{
    return presetText("HLS").with("videoSettings", list({videoText(), second})).text();
}

QByteArray withAudio(const ObjectText &track)
{
    return presetText("HLS").with("audioSettings", list({track})).text();
}

TEST(DecodingErrors, NameThePlaceAndTheReason)
{
    const QString missing = u"required key is missing"_s;
    const QString notInteger = u"expected an integer between -2^63 and 2^63 - 1, found another number"_s;
    const ObjectText rtmp = presetText("RTMP");
    expectErrors({
        {"[]", u""_s, u"expected an object, found an array"_s},
        {"{}", u"type"_s, missing},
        {rtmp.with("type", "3").text(), u"type"_s, u"expected a string, found a number"_s},
        {rtmp.with("portNumber", R"("1935")").text(), u"portNumber"_s,
         u"expected an integer, found a string"_s},
        {rtmp.with("portNumber", "1935.5").text(), u"portNumber"_s, notInteger},
        {rtmp.with("portNumber", "9223372036854775808").text(), u"portNumber"_s, notInteger},
        {rtmp.with("portNumber", "-9223372036854775809").text(), u"portNumber"_s, notInteger},
        {rtmp.with("portNumber", "9223372036854775807.5").text(), u"portNumber"_s, notInteger},
        {rtmp.with("portNumber", "1e19").text(), u"portNumber"_s, notInteger},
        {rtmp.with("authenticate", "0").text(), u"authenticate"_s, u"expected a boolean, found a number"_s},
        {rtmp.without("authenticationLogin").text(), u"authenticationLogin"_s, missing},
        {rtmp.with("streamingProtocol", "null").text(), u"streamingProtocol"_s,
         u"expected a string, found null"_s},
        {presetText("YouTube").without("streamKey").text(), u"streamKey"_s, missing},
        {presetText("Facebook").with("isBackup", R"("true")").text(), u"isBackup"_s,
         u"expected a boolean, found a string"_s},
        {presetText("SRT").without("portNumber").text(), u"portNumber"_s, missing},
        {presetText("HLS").without("audioSettings").text(), u"audioSettings"_s, missing},
        {presetText("HLS").with("videoSettings", "{}").text(), u"videoSettings"_s,
         u"expected an array, found an object"_s},
        {presetText("HLS").with("videoSettings", "[true]").text(), u"videoSettings[0]"_s,
         u"expected an object, found a boolean"_s},
        {withVideo(videoText().with("codec", R"("VP9")")), u"videoSettings[1].codec"_s,
         u"Invalid VideoCodec display string: VP9"_s},
        {withVideo(videoText().with("codec", R"("h264")")), u"videoSettings[1].codec"_s,
         u"Invalid VideoCodec display string: h264"_s},
        {withVideo(videoText().with("resolution", R"("1920x1080")")), u"videoSettings[1].resolution"_s,
         u"Invalid Resolution display string: 1920x1080"_s},
        {withVideo(videoText().without("customWidth")), u"videoSettings[1].customWidth"_s, missing},
        {withVideo(videoText().with("frameRate", R"("30")")), u"videoSettings[1].frameRate"_s,
         u"expected a number, found a string"_s},
        {withVideo(videoText().with("pid", "1.5")), u"videoSettings[1].pid"_s, notInteger},
        {withAudio(audioText().with("codec", R"("AAC")")), u"audioSettings[0].codec"_s,
         u"Invalid AudioCodec display string: AAC"_s},
        {withAudio(audioText().without("inputChannels")), u"audioSettings[0].inputChannels"_s, missing},
        {withAudio(audioText().with("inputChannels", R"([0,"1"])")), u"audioSettings[0].inputChannels[1]"_s,
         u"expected an integer, found a string"_s},
        {withAudio(audioText().with("isDefault", "1")), u"audioSettings[0].isDefault"_s,
         u"expected a boolean, found a number"_s},
    });
}

TEST(DecodingErrors, TheFirstKeyInReadingOrderIsTheOneNamed)
{
    // Shared keys first, then the connection, whatever their order in the file.
    const ObjectText preset = presetText("RTMP").without("streamingURL").without("portNumber").reversed();
    expectErrors({{preset.text(), u"streamingURL"_s, u"required key is missing"_s},
                  {preset.with("audioSettings", "1").text(), u"audioSettings"_s,
                   u"expected an array, found a number"_s}});
}

TEST(DecodingErrors, TextThatIsNotJsonIsNamedByLineAndColumn)
{
    const QString noValue = u"Invalid value"_s;
    const QString encoding = u"Invalid encoding in string"_s;
    expectErrors({
        {"", u"line 1, column 1"_s, u"The document is empty"_s},
        {" \n ", u"line 2, column 2"_s, u"The document is empty"_s},
        {"{}x", u"line 1, column 3"_s, u"The document root must not be followed by other values"_s},
        {"{\n  \"é😀\": nope}", u"line 2, column 10"_s, noValue},
        {QByteArray("{}\0{}", 5), u"line 1, column 3"_s, u"unexpected NUL byte"_s},
        {QByteArray("{\0}", 3), u"line 1, column 2"_s, u"Missing a name for object member"_s},
        {"{\"a\":\"\xFF\"}", u"line 1, column 7"_s, encoding},
        {"{\"a\":\"\xC0\x80\"}", u"line 1, column 7"_s, encoding},
        {"{\"a\":\"\xED\xA0\x80\"}", u"line 1, column 7"_s, encoding},
        {R"({"a":"\ud800"})", u"line 1, column 7"_s, u"The surrogate pair in string is invalid"_s},
        {R"({"a":"\udc00"})", u"line 1, column 14"_s, u"lone surrogate in a string"_s},
        {R"({"a":"\udc00\ud800"})", u"line 1, column 13"_s, u"The surrogate pair in string is invalid"_s},
        {R"({"\udfff":1})", u"line 1, column 10"_s, u"lone surrogate in a string"_s},
        {"{\"a\":1e999}", u"line 1, column 6"_s, u"Number too big to be stored in double"_s},
        {"{\"a\":1.8e308}", u"line 1, column 6"_s, u"number out of range"_s},
        {"{\"a\":NaN}", u"line 1, column 6"_s, noValue},
    });
}

TEST(DecodingErrors, NestingEndsAt256)
{
    const QString tooDeep = u"nested more than 256 deep"_s;
    const auto nested = [](qsizetype depth) -> QByteArray {
        return QByteArray(depth, '[') + QByteArray(depth, ']');
    };
    expectErrors({{QByteArray(1'000'000, '['), u"line 1, column 257"_s, tooDeep},
                  {QByteArray(R"({"a":)").repeated(1'000'000), u"line 1, column 1281"_s, tooDeep},
                  {"{\n\"notes\":" + nested(256) + '}', u"line 2, column 264"_s, tooDeep},
                  {"{\"type\":" + nested(255) + '}', u"type"_s, u"expected a string, found an array"_s}});
}

TEST(DecodingErrors, WhatNobodyReadsIsCheckedAndLeftOut)
{
    for (const QByteArray value : {"null", "-1.5e3", R"("\u00e9")", "[]", "{}",
                                   R"([{"type":[1,{"b":{}}]},2])", R"({"type":{"type":3},"a":[[],{}]})"}) {
        const ObjectText video = videoText().with("later", value);
        const auto preset = presetText("RTMP").with("notes", value).with("videoSettings", list({video}));
        EXPECT_EQ(decodePreset(preset.text())->encoded(document::Format::compact),
                  decodePreset(presetText("RTMP").text())->encoded(document::Format::compact))
            << value.toStdString();
    }
    expectErrors({{"{\"a\":[1,}", u"line 1, column 9"_s, u"Invalid value"_s}});
}

TEST(DecodingErrors, NoFileTakesMoreThan300MiB)
{
    struct Text
    {
        const char *begin, *unit;
    };
    for (const Text &text : {Text{"", "["}, {"{\"a\":[0", ",0"}, {"{\"type\":[0", ",0"}}) {
        const pid_t child = ::fork(); // whose memory is measured
        if (child == 0) {
            QByteArray file = text.begin;
            file.reserve(kMaximumFileSize);
            while (file.size() + 2 < kMaximumFileSize)
                file += text.unit;
            try {
                (void)decodePreset(file);
            } catch (const DecodingError &) {
                ::_exit(0);
            }
            ::_exit(1);
        }
        int status = 0;
        rusage usage = {};
        ASSERT_EQ(::wait4(child, &status, 0, &usage), child);
        EXPECT_EQ(status, 0) << text.begin;
        EXPECT_TRUE(kIsSanitized || usage.ru_maxrss < 300 * 1024)
            << usage.ru_maxrss << " KiB: " << text.begin;
    }
}

} // namespace
} // namespace vantle::test
