// SPDX-License-Identifier: MIT
#include "tests/support/FinishedProcess.h"
#include "tests/support/QtPrinters.h"

#include <gtest/gtest.h>

namespace vantle::test {
namespace {

TEST(Example, PrintsWhatAnEncoderNeeds)
{
    const Finished run = runProcess({ENCODER_SETTINGS, VANTLE_SAMPLES "/Remote Contribution.json"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.output.startsWith("Remote Contribution (SRT)\n"
                                      "video  3840 x 2160  AVVideoCodecTypeHEVC  "
                                      "kVTProfileLevel_HEVC_Main10_AutoLevel  25000 kbit/s  59.94 fps\n"))
        << run.output.toStdString();
    EXPECT_TRUE(run.output.contains("audio  0x61616320  48000 Hz  256 kbit/s  en  default\n"));
    EXPECT_EQ(runProcess({ENCODER_SETTINGS, "/dev/null"}).exitCode, 1);
}

} // namespace
} // namespace vantle::test
