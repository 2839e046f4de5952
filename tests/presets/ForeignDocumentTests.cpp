// SPDX-License-Identifier: MIT
#include "VantlePresets/model/HLSVantlePreset.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"

#include <gtest/gtest.h>

#include <limits>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;

TEST(ForeignDocuments, OrderUnknownKeysWhiteSpaceAndByteOrderMarkDontMatter)
{
    const ObjectText video = videoText().with("encodingType", "1").with("videoCodecType", "[]").reversed();
    const ObjectText audio = audioText(true).with("encodingType", "{}").reversed();
    const ObjectText preset = presetText("Wowza")
                                  .with("videoSettings", list({video}))
                                  .with("audioSettings", list({audio}))
                                  .with("notes", R"({"deep":[[{"type":"SRT"}]],"n":1e300})")
                                  .reversed();
    const QByteArray expected = decodePreset(presetText("Wowza").text())->encoded(document::Format::compact);
    const QByteArray text = preset.text();
    const QByteArray marked = "\xEF\xBB\xBF" + text;
    const QByteArray spaced = "\r\n\t " + QByteArray(text).replace(",\"", ",\n\"") + " \n\n";
    for (const QByteArray &variant : {text, marked, spaced})
        EXPECT_EQ(decodePreset(variant)->encoded(document::Format::compact), expected);
}

TEST(ForeignDocuments, IntegersInAnyNotation)
{
    constexpr qint64 kMaximum = std::numeric_limits<qint64>::max();
    for (const auto &[text, value] : {std::pair{"30", qint64{30}},
                                      {"30.0", 30},
                                      {"3e1", 30},
                                      {"3E+1", 30},
                                      {"300e-1", 30},
                                      {"0.3e2", 30},
                                      {"-0", 0},
                                      {"-0.0", 0},
                                      {"0e5", 0},
                                      {"9007199254740993.0", 9007199254740993},
                                      {"9223372036854775807", kMaximum},
                                      {"922337203685477580700e-2", kMaximum},
                                      {"-9223372036854775808.000", std::numeric_limits<qint64>::min()}}) {
        const auto preset = decodeAs<RTMPVantlePreset>(presetText("RTMP").with("portNumber", text).text());
        EXPECT_EQ(preset->portNumber(), value) << text;
    }
}

TEST(ForeignDocuments, FrameRatesInAnyNotation)
{
    for (const auto &[text, value] : {std::pair{"30", 30.0},
                                      {"30.0", 30.0},
                                      {"3e1", 30.0},
                                      {"23.976", 23.976},
                                      {"29.970029970029970029970029970", 30000 / 1001.0},
                                      {"9007199254740993", 9007199254740992.0},
                                      {"1e-400", 0.0},
                                      {"4.9e-324", 4.9e-324},
                                      {"18446744073709551615", 18446744073709551615.0},
                                      {"1.7976931348623157e308", std::numeric_limits<double>::max()}}) {
        const ObjectText video = videoText().with("frameRate", text);
        const auto preset = decodePreset(presetText("HLS").with("videoSettings", list({video})).text());
        EXPECT_EQ(preset->videoSettings()[0]->frameRate(), value) << text;
    }
}

TEST(ForeignDocuments, EscapesInStringsAndKeys)
{
    const ObjectText preset = presetText("YouTube")
                                  .with("streamingURL", R"("rtmp:\/\/host\/live")")
                                  .with("streamKey", R"("\u00e9\uD83D\ude00\u0000\"\\\n")")
                                  .without("application")
                                  .with(R"(\u0061pplication)", R"("\u0061pp")");
    const auto read = decodeAs<RTMPVantlePreset>(preset.text());
    EXPECT_EQ(read->streamingURL(), u"rtmp://host/live"_s);
    EXPECT_EQ(read->streamKey(), QString::fromStdU32String(std::u32string(U"\u00e9\U0001F600\0\"\\\n", 6)));
    EXPECT_EQ(read->application(), u"app"_s);
}

TEST(ForeignDocuments, OfDuplicateKeysTheLastCounts)
{
    const QByteArray text = presetText("RTMP").text();
    const auto preset = decodeAs<RTMPVantlePreset>(
        QByteArray(text).replace(R"("portNumber":443)", R"("portNumber":"x","portNumber":1,"portNumber":2)"));
    EXPECT_EQ(preset->portNumber(), 2);
    const QByteArray wrongLast = text.chopped(1) + R"(,"portNumber":"x"})";
    EXPECT_THROW((void)decodePreset(wrongLast), DecodingError);
}

TEST(ForeignDocuments, UnknownKindsAndProtocolsReadAsTheFirst)
{
    for (const QByteArray kind : {"youtube", "Custom", "", " HLS"}) {
        const auto preset = decodeAs<HLSVantlePreset>(presetText(kind).text());
        ASSERT_TRUE(preset) << kind.toStdString();
        EXPECT_EQ(preset->type(), StreamingType::hls);
        EXPECT_TRUE(preset->encoded(document::Format::compact).startsWith(R"({"type":"HLS")"));
    }
    const auto preset =
        decodeAs<RTMPVantlePreset>(presetText("RTMP").with("streamingProtocol", R"("rtmps")").text());
    EXPECT_EQ(preset->streamingProtocol(), RTMPVantlePreset::StreamingProtocol::rtmp);
}

TEST(ForeignDocuments, AnIdentifierIsTakenWhenItIsOne)
{
    const QUuid id(u"01234567-89ab-cdef-0123-456789abcdef"_s);
    const auto read = [](const QByteArray &id) {
        return decodePreset(presetText("HLS").with("id", id).text())->uuid();
    };
    EXPECT_EQ(read(R"("01234567-89AB-CDEF-0123-456789abcdef")"), id);
    EXPECT_EQ(read(R"("00000000-0000-0000-0000-000000000000")"), QUuid());
    for (const char *bad :
         {R"("{01234567-89ab-cdef-0123-456789abcdef}")", R"("0123456789abcdef0123456789abcdef")",
          R"("01234567-89ab-cdef-0123-456789abcdeg")", "5", "null", "{}"}) {
        EXPECT_NE(read(bad), id) << bad;
        EXPECT_NE(read(bad), read(bad)) << "a new one with every reading";
    }
}

TEST(ForeignDocuments, KeysThatTheKindDoesntReadMayBeMissingOrWrong)
{
    const ObjectText rtmp =
        presetText("RTMP").without("streamKey").with("application", "1").without("isBackup");
    EXPECT_TRUE(decodePreset(rtmp.text()));
    const ObjectText srt = presetText("SRT").without("streamingProtocol").with("authenticationLogin", "1");
    EXPECT_TRUE(decodePreset(srt.text()));
    const ObjectText hls = presetText("HLS").with("portNumber", "{}").without("authenticate");
    EXPECT_TRUE(decodePreset(hls.text()));
}

} // namespace
} // namespace vantle::test
