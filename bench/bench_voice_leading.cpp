// Voice leading of a part in the drop-2 style over a three-octave range (C1..C4), for 100, 1,000
// and 10,000 chords. The 1,000-chord run must stay under 50 ms; the time should grow linearly
// with the chord count (the solver looks at every pair of candidates of neighbouring chords).
// Run with --benchmark_repetitions=5 (the default here) for medians of five.

#include "part/PartChord.h"
#include "part/VoiceLeading.h"

#include <benchmark/benchmark.h>

#include <array>
#include <random>
#include <string>
#include <vector>

namespace {

/** A seeded progression of triads and seventh chords on random roots, in root position. */
std::vector<part::PartChord> progression(int count)
{
    struct Quality
    {
        const char* suffix;
        std::vector<int> intervals;
    };
    const std::array<Quality, 6> qualities = {{{"", {0, 4, 7}},
                                               {"m", {0, 3, 7}},
                                               {"7", {0, 4, 7, 10}},
                                               {"m7", {0, 3, 7, 10}},
                                               {"maj7", {0, 4, 7, 11}},
                                               {"m7b5", {0, 3, 6, 10}}}};
    std::mt19937 random(1234);
    std::vector<part::PartChord> chords;
    for (int i = 0; i < count; ++i) {
        const int root = static_cast<int>(random() % 12);
        const Quality& q = qualities[random() % qualities.size()];
        part::PartChord chord;
        chord.name = std::string(music::noteName(root)) + q.suffix;
        for (int interval : q.intervals)
            chord.notes[chord.noteCount++] = static_cast<music::NoteValue>(root + interval);
        chords.push_back(chord);
    }
    return chords;
}

void BM_VoiceLeadingDrop2(benchmark::State& state)
{
    const std::vector<part::PartChord> chords = progression(static_cast<int>(state.range(0)));
    part::VoicingOptions options;
    options.style = part::VoicingStyle::Drop2;
    options.low = 12;  // C1
    options.high = 48; // C4
    std::vector<part::PartChord> led;
    for (auto _ : state) {
        const music::Result result = part::VoiceLeading::lead(chords, options, false, led);
        if (!result)
            state.SkipWithError(result.message().c_str());
        benchmark::DoNotOptimize(led.data());
    }
    state.SetComplexityN(state.range(0));
    state.counters["movement"] = part::VoiceLeading::runCost(led).movement;
}

BENCHMARK(BM_VoiceLeadingDrop2)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Complexity(benchmark::oN);

} // namespace

BENCHMARK_MAIN();
