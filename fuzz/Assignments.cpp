// SPDX-License-Identifier: MIT
#include "fuzz/FuzzTarget.h"

#include "VantlePresets/model/Assignment.h"
#include "VantlePresets/model/PresetFactory.h"
#include "apps/vantlectl/PresetView.h"

#include <algorithm>

// The first byte chooses a kind of preset, and whether it is a new one or comes from a file; each line that
// follows is an assignment.

namespace vantle::fuzz {
namespace {

using namespace Qt::StringLiterals;
std::shared_ptr<VantlePreset> presetFor(uchar choice)
{
    const auto types = streamingTypes().values();
    const auto preset = makePreset(types[choice % types.size()], QStringLiteral("A"));
    const bool isFromFile = choice / types.size() % 2 == 1;
    return isFromFile ? decodePreset(preset->encoded(document::Format::compact)) : preset;
}

void checkPreset(const VantlePreset &preset)
{
    const QByteArray document = preset.encoded(document::Format::compact);
    require(decodePreset(document)->encoded(document::Format::compact) == document,
            "the preset still writes and reads back");
    const auto &tracks = preset.audioSettings();
    require(std::count_if(tracks.begin(), tracks.end(), [](const auto &t) { return t->isDefault(); }) <= 1,
            "there is at most one default track");
    require(!ctl::presetAsText(preset, true).isEmpty() && !ctl::presetAsJson(preset, true).isEmpty(),
            "the preset can be shown");
}

void assign(const QString &text, VantlePreset &preset)
{
    const auto assignment = Assignment::parse(text);
    if (!assignment)
        return;
    require(text.startsWith(assignment->path()), "an assignment begins with its path");
    const QByteArray before = preset.encoded(document::Format::compact);
    try {
        assignment->apply(preset);
        static_cast<void>(assignment->limitation(preset));
    } catch (const AssignmentError &error) {
        require(QString::fromUtf8(error.what()).startsWith(assignment->path() + QStringLiteral(": ")),
                "an error names the path");
        require(preset.encoded(document::Format::compact) == before, "what is refused changes nothing");
    }
    checkPreset(preset);
}

void run(QByteArrayView input)
{
    constexpr qsizetype kMostLines = 64; // each line costs a reading of the whole preset
    if (input.isEmpty())
        return;
    const auto preset = presetFor(static_cast<uchar>(input.front()));
    for (const QString &line : QString::fromUtf8(input.sliced(1)).split(u'\n').mid(0, kMostLines))
        assign(line, *preset);
}

} // namespace
} // namespace vantle::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    vantle::fuzz::run({reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)});
    return 0;
}
