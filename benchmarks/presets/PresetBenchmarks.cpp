// SPDX-License-Identifier: MIT
#include "benchmarks/presets/BareDocument.h"
#include "benchmarks/presets/CountedMemory.h"

#include "VantlePresets/model/PresetFactory.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace vantle;
using vantle::bench::BareDocument;

/// A preset of the kind with the most keys, and one with as many renditions and tracks as a ladder has.
QByteArray documentOf(int renditions)
{
    const auto preset = makePreset(StreamingType::youTube, QStringLiteral("Show"));
    for (int i = 1; i < renditions; ++i)
        preset->newVideoSettings();
    if (renditions > 1)
        preset->newAudioSettings();
    for (const auto &video : preset->videoSettings())
        video->setFrameRate(29.97);
    return preset->encoded(document::Format::compact);
}

std::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

void decodeBare(benchmark::State &state)
{
    const QByteArray text = documentOf(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const BareDocument document(viewOf(text));
        benchmark::DoNotOptimize(&document);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * text.size());
}

void decodePresets(benchmark::State &state)
{
    const QByteArray text = documentOf(static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(decodePreset(text));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * text.size());
}

void encodeBare(benchmark::State &state)
{
    const QByteArray text = documentOf(static_cast<int>(state.range(0)));
    const BareDocument document(viewOf(text));
    for (auto _ : state)
        benchmark::DoNotOptimize(document.write());
}

void encodePresets(benchmark::State &state)
{
    const auto preset = decodePreset(documentOf(static_cast<int>(state.range(0))));
    for (auto _ : state)
        benchmark::DoNotOptimize(preset->encoded(document::Format::compact));
}

BENCHMARK(decodeBare)->Arg(1)->Arg(5);
BENCHMARK(decodePresets)->Arg(1)->Arg(5);
BENCHMARK(encodeBare)->Arg(1)->Arg(5);
BENCHMARK(encodePresets)->Arg(1)->Arg(5);

/// Shows the usual table and keeps each benchmark's best time for the comparison at the end: of several
/// repetitions the best one is the least disturbed by whatever else the machine does.
class Comparison : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            if (run.run_type != Run::RT_Iteration)
                continue;
            const std::string name = run.run_name.function_name + '/' + run.run_name.args;
            const auto [best, isNew] = m_best.try_emplace(name, run.GetAdjustedCPUTime());
            if (!isNew)
                best->second = std::min(best->second, run.GetAdjustedCPUTime());
        }
        ConsoleReporter::ReportRuns(runs);
    }

    /// False when the figure is above its target. A benchmark that was filtered out is not compared.
    bool print(const char *what, const char *name, const char *baseline, double target) const
    {
        bool isGood = true;
        for (const char *size : {"/1", "/5"}) {
            const auto measured = m_best.find(name + std::string(size));
            const auto bare = m_best.find(baseline + std::string(size));
            if (measured == m_best.end() || bare == m_best.end())
                continue;
            const double ratio = measured->second / bare->second;
            std::printf("%s, %s rendition(s): %.2f times the bare JSON library, target %.1f: %s\n", what,
                        size + 1, ratio, target, ratio <= target ? "ok" : "MISSED");
            isGood = isGood && ratio <= target;
        }
        return isGood;
    }

private:
    std::map<std::string, double> m_best;
};

/// The heap that each of many decoded presets takes.
bool printMemory()
{
    constexpr std::size_t kCount = 10'000;
    constexpr std::size_t kTarget = 4096;
    const QByteArray text = documentOf(1);
    std::vector<std::shared_ptr<VantlePreset>> presets;
    presets.reserve(kCount);
    presets.push_back(decodePreset(text)); // what is made once only
    const std::size_t before = bench::heapInUse();
    while (presets.size() < kCount)
        presets.push_back(decodePreset(text));
    const std::size_t each = (bench::heapInUse() - before) / (kCount - 1);
    std::printf("memory of a preset with one rendition and one track: %zu bytes, target %zu: %s\n", each,
                kTarget, each <= kTarget ? "ok" : "MISSED");
    return each <= kTarget;
}

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    Comparison comparison;
    benchmark::RunSpecifiedBenchmarks(&comparison);
    bool isGood = comparison.print("decoding", "decodePresets", "decodeBare", 2.3);
    isGood = comparison.print("encoding", "encodePresets", "encodeBare", 3) && isGood;
    isGood = printMemory() && isGood;
    return isGood ? 0 : 1;
}
