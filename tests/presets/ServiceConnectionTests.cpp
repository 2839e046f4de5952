// SPDX-License-Identifier: MIT
#include "VantlePresets/advice/Advice.h"
#include "VantlePresets/advice/ServiceConnection.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "tests/support/QtPrinters.h"

#include <gtest/gtest.h>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;

TEST(ServiceConnection, ServicesGetTheirConnectionAndRelaysKeepTheirs)
{
    struct Row
    {
        StreamingType type;
        QString url, application;
        bool isBackup;
        QString wantedUrl, wantedApplication;
    };
    const QString backup = u"live2?backup=1"_s;
    for (const Row &row : {
             Row{StreamingType::youTube, u""_s, u""_s, false, u"a.rtmps.youtube.com"_s, u"live2"_s},
             {StreamingType::youTube, u"a.rtmp.youtube.com"_s, u"live2"_s, false, u"a.rtmps.youtube.com"_s,
              u"live2"_s},
             {StreamingType::youTube, u"a.rtmp.youtube.com"_s, u"live2"_s, true, u"b.rtmps.youtube.com"_s,
              backup},
             {StreamingType::youTube, u"B.RTMP.youtube.com"_s, backup, false, u"b.rtmps.youtube.com"_s,
              backup},
             {StreamingType::youTube, u"rtmp://me:x@a.rtmp.youtube.com:1935/live2/key"_s, u""_s, false,
              u"rtmps://me:x@a.rtmps.youtube.com/live2/key"_s, u""_s},
             {StreamingType::youTube, u"relay.example.com:19350"_s, u"in"_s, false,
              u"relay.example.com:19350"_s, u"in"_s},
             {StreamingType::youTube, u"a.rtmp.youtube.com"_s, u"mine"_s, false, u"a.rtmps.youtube.com"_s,
              u"mine"_s},
             {StreamingType::youTube, u"no address"_s, u""_s, false, u"no address"_s, u""_s},
             {StreamingType::facebook, u"rtmp-api.facebook.com"_s, u"rtmp"_s, true,
              u"live-api-s.facebook.com"_s, u"rtmp"_s},
         }) {
        const auto preset = RTMPVantlePreset::withType(row.type, u"A"_s, row.isBackup, {});
        preset->setStreamingURL(row.url);
        preset->setApplication(row.application);
        EXPECT_TRUE(setServiceConnection(*preset));
        EXPECT_EQ(preset->streamingURL(), row.wantedUrl);
        EXPECT_EQ(preset->application(), row.wantedApplication);
        EXPECT_EQ(preset->streamingProtocol(), RTMPVantlePreset::StreamingProtocol::rtmps);
        EXPECT_EQ(preset->portNumber(), 443);
    }
}

TEST(ServiceConnection, NewPresetsOfServicesLackOnlyTheKeyOnceTheyHaveTheirConnection)
{
    for (const StreamingType type : streamingTypes().values()) {
        const auto preset = makePreset(type, u"A"_s);
        const QByteArray before = preset->encoded(document::Format::compact);
        if (!setServiceConnection(*preset)) {
            EXPECT_EQ(preset->encoded(document::Format::compact), before);
            continue;
        }
        const auto advice = adviceFor(*preset);
        ASSERT_EQ(advice.size(), 1);
        EXPECT_EQ(advice[0].place, u"streamKey"_s);
    }
}

} // namespace
} // namespace vantle::test
