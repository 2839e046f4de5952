// SPDX-License-Identifier: MIT
#include "VantlePresets/model/HLSVantlePreset.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;

std::vector<bool> flags(const VantlePreset &preset)
{
    std::vector<bool> result;
    for (const auto &track : preset.audioSettings())
        result.push_back(track->isDefault());
    return result;
}

std::shared_ptr<VantlePreset> presetWithThreeTracks()
{
    auto preset = makePreset(StreamingType::srt, u"Show"_s);
    preset->newAudioSettings();
    preset->newAudioSettings();
    return preset;
}

QByteArray documentWithDefaults(const std::vector<bool> &defaults)
{
    std::vector<ObjectText> tracks;
    for (const bool isDefault : defaults)
        tracks.push_back(audioText(isDefault).with("pid", QByteArray::number(100 + tracks.size())));
    return presetText("HLS").with("audioSettings", list(tracks)).text();
}

TEST(DefaultTrack, AFlagClearsTheOthersThroughThePreset)
{
    const auto preset = presetWithThreeTracks();
    const auto &tracks = preset->audioSettings();
    EXPECT_EQ(preset->defaultAudioSettings(), tracks[0]);
    EXPECT_EQ(flags(*preset), (std::vector{true, false, false}));
    tracks[1]->setIsDefault(true);
    EXPECT_EQ(flags(*preset), (std::vector{false, true, false}));
    EXPECT_EQ(preset->defaultAudioSettings(), tracks[1]);
    tracks[1]->setIsDefault(false);
    EXPECT_EQ(flags(*preset), (std::vector{false, false, false}));
    EXPECT_EQ(preset->defaultAudioSettings(), tracks[1]) << "clearing a flag leaves the reference";
}

TEST(DefaultTrack, UpdatingATrackCountsAsAnAssignment)
{
    const auto preset = presetWithThreeTracks();
    const auto source = AudioSettings::create();
    source->setIsDefault(true);
    preset->audioSettings()[2]->update(*source);
    EXPECT_EQ(flags(*preset), (std::vector{false, false, true}));
    EXPECT_EQ(preset->defaultAudioSettings(), preset->audioSettings()[2]);
}

TEST(DefaultTrack, RemovingItLeavesTheReference)
{
    const auto preset = presetWithThreeTracks();
    const auto removed = preset->audioSettings()[0];
    preset->removeAudioSettings(*removed);
    EXPECT_EQ(preset->audioSettings().size(), 2);
    EXPECT_EQ(preset->defaultAudioSettings(), removed);
    preset->removeAudioSettings(*removed);
    EXPECT_EQ(preset->audioSettings().size(), 2);
}

struct CountingDelegate : AudioSettingsDelegate
{
    void audioSettingsDidChangeDefault(const std::shared_ptr<AudioSettings> &, bool isDefault) override
    {
        told.push_back(isDefault);
    }
    std::vector<bool> told;
};

TEST(DefaultTrack, TheDelegateHearsOfRealChangesOnly)
{
    const auto track = AudioSettings::create();
    auto delegate = std::make_shared<CountingDelegate>();
    track->setDelegate(delegate);
    track->setIsDefault(true);
    track->setIsDefault(true);
    track->setPid(1);
    track->setIsDefault(false);
    EXPECT_EQ(delegate->told, (std::vector{true, false}));
    delegate.reset();
    EXPECT_FALSE(track->delegate()) << "held weakly";
    track->setIsDefault(true);
}

TEST(DefaultTrack, OfAFileIsTheLastFlagged)
{
    const TemporaryFolder folder;
    struct Row
    {
        std::vector<bool> flags;
        std::optional<int> pid;
    };
    for (const Row &row :
         {Row{{true, true, true}, 102}, {{false, true, false}, 101}, {{false, false}, {}}, {{}, {}}}) {
        const QByteArray text = documentWithDefaults(row.flags);
        folder.write("Show.json", text);
        // The readers of the classes pick a listed track, the factory an equal one of the first reading.
        const auto ofClass = HLSVantlePreset::withFileAtPath(folder.pathText("Show.json"));
        const auto ofFactory = decodePreset(text);
        for (const auto &preset : {std::shared_ptr<VantlePreset>(ofClass), ofFactory}) {
            EXPECT_EQ(flags(*preset), row.flags) << "reading changes no flag";
            const auto track = preset->defaultAudioSettings();
            EXPECT_EQ(track ? std::optional<int>(track->pid()) : std::nullopt, row.pid);
        }
        if (!row.pid)
            continue;
        EXPECT_TRUE(ofClass->audioSettings().contains(ofClass->defaultAudioSettings()));
        EXPECT_FALSE(ofFactory->audioSettings().contains(ofFactory->defaultAudioSettings()));
    }
}

TEST(DefaultTrack, TracksOfTheFactoryHaveNoDelegateOthersDo)
{
    const TemporaryFolder folder;
    folder.write("Show.json", documentWithDefaults({true, false}));
    const auto fromFactory = readPresetFile(folder.path("Show.json"));
    const auto fromClass = HLSVantlePreset::withFileAtPath(folder.pathText("Show.json"));
    fromFactory->newAudioSettings();
    EXPECT_FALSE(fromFactory->audioSettings()[0]->delegate());
    EXPECT_EQ(fromFactory->audioSettings()[2]->delegate(), fromFactory);
    EXPECT_EQ(fromClass->audioSettings()[0]->delegate(), fromClass);
    fromFactory->audioSettings()[1]->setIsDefault(true);
    EXPECT_EQ(flags(*fromFactory), (std::vector{true, true, false})) << "nobody was told";
    fromFactory->audioSettings()[2]->setIsDefault(true);
    EXPECT_EQ(flags(*fromFactory), (std::vector{false, false, true}));
}

} // namespace
} // namespace vantle::test
