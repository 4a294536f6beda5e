// Writing a 1,000-chord part into a machine of a song, against a plain buffered write of as many
// bytes as the new patterns hold. The ratio of the two times says how much the cell-by-cell
// rendering costs over just putting the bytes down.

#include "part/Part.h"
#include "song/BuzzSong.h"
#include "song/PartWriter.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr int kChords = 1000;

song::MachineDatabaseEntry synthEntry()
{
    song::MachineDatabaseEntry e;
    e.dllName = "BenchSynth";
    e.type = 1;
    e.minTracks = 1;
    e.maxTracks = 8;
    const auto add = [&](const char* name, int type, char scope, int noValue) {
        song::MachineParameter p;
        p.name = name;
        p.type = type;
        p.width = type == 3 ? 2 : 1;
        p.scope = scope;
        p.noValue = noValue;
        (scope == 'g' ? e.globalRowSize : e.trackRowSize) += p.width;
        ++(scope == 'g' ? e.globalParameterCount : e.trackParameterCount);
        e.parameters.push_back(p);
    };
    add("Cutoff", 2, 'g', 0xFF);
    add("Glide", 3, 'g', 0xFFFF);
    add("Note", 0, 't', 0);
    add("Wave", 2, 't', 0);
    add("Volume", 2, 't', 0xFF);
    add("Attack", 3, 't', 0xFFFF);
    e.totalParameterCount = static_cast<std::uint16_t>(e.parameters.size());
    return e;
}

/** A master and one generator fed into it. */
song::BuzzSong benchSong()
{
    song::BuzzSong s;
    song::SongMachine master;
    master.name = "Master";
    master.type = 0;
    song::SongMachine synth;
    synth.name = "Synth";
    synth.description = synthEntry();
    synth.dllName = synth.description.dllName;
    synth.globalRowSize = synth.description.globalRowSize;
    synth.trackRowSize = synth.description.trackRowSize;
    synth.globalState.assign(synth.globalRowSize, 0);
    synth.trackCount = 1;
    synth.trackState.assign(synth.trackRowSize, 0);
    s.machines() = {master, synth};
    s.patternBlocks() = {{0, {}}, {1, {}}};
    s.connections() = {{1, 0, 0x4000, 0x4000}};
    return s;
}

/** 1,000 chords of 32 rows over three patterns that play four to six tracks. */
part::Part benchPart()
{
    part::Part p;
    for (int k = 0; k < 3; ++k) {
        part::Pattern pattern;
        for (int t = 0; t < 4 + k; ++t) {
            for (int r = t; r < part::kRowCount; r += 2 + k) {
                const auto kind =
                    r % 7 == 0 ? part::CellKind::ChanceChordNote
                               : (r % 5 == 0 ? part::CellKind::Off : part::CellKind::ChordNote);
                pattern.setCell(t, r, {kind, static_cast<std::uint8_t>((t + r) % 6), 0});
            }
            pattern.setTrackOctave(t, static_cast<std::uint8_t>(t % 2 == 0 ? 0 : 10));
        }
        p.patterns().append(pattern);
    }
    const char* const names[] = {"C", "Am", "F", "G", "Dm7", "G7", "Cmaj7"};
    for (int c = 0; c < kChords; ++c) {
        part::PartChord chord;
        chord.name = names[c % 7];
        chord.setNotes({static_cast<music::NoteValue>(c % 12),
                        static_cast<music::NoteValue>(c % 12 + 4),
                        static_cast<music::NoteValue>(c % 12 + 7)});
        chord.pattern = static_cast<std::uint16_t>(c % 3);
        chord.length = 32;
        p.append(chord);
    }
    return p;
}

/** The bytes that the part's new patterns take in the song. */
std::size_t writtenBytes()
{
    song::BuzzSong s = benchSong();
    song::PartWriter::write(s, 1, benchPart(), {});
    std::size_t bytes = 0;
    for (const song::SongPattern& p : s.patternBlocks()[1].patterns) {
        bytes += p.name.size() + 1 + 2 + p.globalRows.size() + p.trackRows.size();
        for (const auto& input : p.inputs)
            bytes += input.size();
    }
    return bytes;
}

void BM_WritePartIntoSong(benchmark::State& state)
{
    const song::BuzzSong song = benchSong();
    const part::Part part = benchPart();
    song::PartWriteOptions options;
    options.makeSequence = true;
    song::BuzzSong copy;
    for (auto _ : state) {
        state.PauseTiming();
        copy = song; // the previous copy is freed here, outside the timing
        state.ResumeTiming();
        const song::PartWriteResult result = song::PartWriter::write(copy, 1, part, options);
        benchmark::DoNotOptimize(result.status);
        benchmark::ClobberMemory();
    }
    const auto bytes = static_cast<std::int64_t>(writtenBytes());
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK(BM_WritePartIntoSong)->Unit(benchmark::kMillisecond);

void BM_PlainBufferedWrite(benchmark::State& state)
{
    const std::size_t bytes = writtenBytes();
    const std::vector<char> data(bytes, 'x');
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / "tm-bench-part-writer.bin";
    for (auto _ : state) {
        std::FILE* file = std::fopen(path.string().c_str(), "wb");
        if (file == nullptr) {
            state.SkipWithError("cannot create the temporary file");
            break;
        }
        // One row-sized piece at a time, the way a file writer would hand them over.
        for (std::size_t at = 0; at < bytes; at += 64)
            std::fwrite(data.data() + at, 1, std::min<std::size_t>(64, bytes - at), file);
        std::fclose(file);
    }
    std::filesystem::remove(path);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
    state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK(BM_PlainBufferedWrite)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
