// The music model's hot paths: generating a chord list, loading and saving a large chord
// database, and one chord search over it. The goals: loading a ".crd" costs at most twice reading
// the same file line by line, and one search over 100,000 chords takes under 5 ms.

#include "music/ChordCollection.h"
#include "music/ChordSearch.h"
#include "music/ChordTypeList.h"
#include "music/IntervalTable.h"
#include "music/TextLineReader.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

namespace {

constexpr int kChordTypes = 255;
constexpr int kChords = 100000;

/** 255 chord types of three to five intervals, drawn from the interval table. */
music::ChordTypeList makeTypes()
{
    music::ChordTypeList types;
    for (int i = 0; i < kChordTypes; ++i) {
        std::string construction = "1;";
        const int intervals = 2 + i % 4;
        for (int k = 1; k < intervals; ++k)
            construction +=
                std::string(music::IntervalTable::symbol(1 + (i * 7 + k * 5) % 21)) + ";";
        types.add("type" + std::to_string(i), construction);
    }
    return types;
}

/** A database of exactly 100,000 chords: 100 sections of 10 subsections of 100 chords. */
const music::ChordCollection& bigCollection()
{
    static const music::ChordCollection collection = [] {
        music::ChordCollection c;
        c.addBaseGroup("Big");
        int made = 0;
        for (int s = 0; s < 100; ++s) {
            music::ChordSection section{"section " + std::to_string(s), s % 2 == 1, {}, {}};
            if (section.scaleFlag)
                section.notes = {0, 2, 4, 5, 7, 9, 11};
            for (int u = 0; u < 10; ++u) {
                music::ChordSubsection subsection{"sub " + std::to_string(u), {}};
                for (int k = 0; k < 100; ++k, ++made) {
                    const int base = made % 12;
                    subsection.chords.push_back(music::Chord::fromNotes(
                        std::string(music::noteName(base)) + "chord" + std::to_string(made % 997),
                        {base + 24, base + 28 + made % 2, base + 31, base + 34 + made % 3,
                         base + 38}));
                }
                section.subsections.push_back(std::move(subsection));
            }
            c.baseGroups()[0].sections.push_back(std::move(section));
        }
        return c;
    }();
    return collection;
}

const std::string& bigFileBytes()
{
    static const std::string bytes = bigCollection().toBytes();
    return bytes;
}

void GenerateListFrom255Types(benchmark::State& state)
{
    const music::ChordTypeList types = makeTypes();
    for (auto _ : state) {
        music::ChordCollection collection;
        collection.generateList(types);
        benchmark::DoNotOptimize(collection);
    }
}
BENCHMARK(GenerateListFrom255Types)->Unit(benchmark::kMillisecond);

void ReadCrdLineByLine(benchmark::State& state)
{
    const std::string& bytes = bigFileBytes();
    for (auto _ : state) {
        music::TextLineReader reader(bytes);
        std::size_t total = 0;
        while (!reader.atEnd())
            total += reader.readLine().size();
        benchmark::DoNotOptimize(total);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(ReadCrdLineByLine)->Unit(benchmark::kMillisecond);

void LoadCrd100kChords(benchmark::State& state)
{
    const std::string& bytes = bigFileBytes();
    for (auto _ : state) {
        music::ChordCollection collection;
        const music::Result result = collection.read(bytes);
        benchmark::DoNotOptimize(result);
        if (collection.chordCount() != static_cast<std::size_t>(kChords))
            state.SkipWithError("the database did not read back whole");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(LoadCrd100kChords)->Unit(benchmark::kMillisecond);

void LoadCrd100kChordsFromFile(benchmark::State& state)
{
    const auto path = std::filesystem::temp_directory_path() / "tm-bench-music-load.crd";
    bigCollection().save(path);
    for (auto _ : state) {
        music::ChordCollection collection;
        benchmark::DoNotOptimize(collection.load(path));
    }
    std::filesystem::remove(path);
}
BENCHMARK(LoadCrd100kChordsFromFile)->Unit(benchmark::kMillisecond);

void SaveCrd100kChords(benchmark::State& state)
{
    const auto path = std::filesystem::temp_directory_path() / "tm-bench-music-save.crd";
    for (auto _ : state)
        benchmark::DoNotOptimize(bigCollection().save(path));
    std::filesystem::remove(path);
}
BENCHMARK(SaveCrd100kChords)->Unit(benchmark::kMillisecond);

void SerializeCrd100kChords(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(bigCollection().toBytes());
}
BENCHMARK(SerializeCrd100kChords)->Unit(benchmark::kMillisecond);

/** The worst case of one search: notes and texts given, and no chord matches, so all are seen. */
void SearchChord100kNoHit(benchmark::State& state)
{
    const music::ChordCollection& collection = bigCollection();
    music::SearchCriteria::Ticks ticks{};
    ticks[1] = ticks[2] = true; // no chord of the database holds both C# and D
    const auto criteria = music::SearchCriteria::forChords(ticks, "CHORD", "chord9");
    for (auto _ : state) {
        const auto hit = music::ChordSearch::firstHit(collection, criteria, std::nullopt);
        if (hit)
            state.SkipWithError("the search was meant to find nothing");
        benchmark::DoNotOptimize(hit);
    }
}
BENCHMARK(SearchChord100kNoHit)->Unit(benchmark::kMillisecond);

/** Only texts, every name tested: lower-casing dominates. */
void SearchChord100kTextOnly(benchmark::State& state)
{
    const music::ChordCollection& collection = bigCollection();
    const auto criteria = music::SearchCriteria::forChords({}, "zzz", "");
    for (auto _ : state) {
        const auto hit = music::ChordSearch::firstHit(collection, criteria, std::nullopt);
        if (hit)
            state.SkipWithError("the search was meant to find nothing");
        benchmark::DoNotOptimize(hit);
    }
}
BENCHMARK(SearchChord100kTextOnly)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
