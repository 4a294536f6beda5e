// Writing the MIDI file of a 1,000-chord part (144 KB), against writing the same number of bytes
// with a plain buffered write. Two ratios are worth watching:
// - the file writer, "save / plain": the built file (events already encoded into its tracks'
//   bytes) saved through the safe writer (temporary file, fsync, rename); target at most 3x;
// - the whole command, "export / plain": rendering all 16,000 rows through the step engine,
//   encoding and saving.
// Both are also shown against a plain write that syncs and renames as the safe writer does.
#include "midi/MidiFile.h"
#include "midi/MidiFileExporter.h"
#include "music/RandomSource.h"
#include "part/Part.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#ifndef _WIN32
#include <unistd.h>
#endif

namespace {

constexpr int kChords = 1000;

/** 1,000 chords of 16 rows on an arpeggio pattern with a bass note: 2-6 messages a row. */
const part::Part& thousandChordPart()
{
    static const part::Part part = [] {
        part::Part p = part::Part::makeNew();
        part::Pattern& pattern = p.patterns().pattern(0);
        for (int row = 0; row < 16; ++row) {
            pattern.setCell(row % 4, row, {part::CellKind::ChordNote, std::uint8_t(row % 4), 0});
            if (row % 4 == 0)
                pattern.setCell(7, row, {part::CellKind::FixedNote, 0, 3});
            if (row % 8 == 7)
                pattern.setCell(row % 4, row, {part::CellKind::Off, 0, 0});
        }
        for (int i = 0; i < kChords; ++i) {
            part::PartChord chord;
            chord.name = "chord";
            const auto root = static_cast<music::NoteValue>(i % 12);
            chord.setNotes({root, static_cast<music::NoteValue>(root + 4),
                            static_cast<music::NoteValue>(root + 7)});
            chord.length = 16;
            p.append(chord);
        }
        return p;
    }();
    return part;
}

midi::MidiExportOptions exportOptions()
{
    midi::MidiExportOptions options;
    options.ticksPerBeat = 4;
    options.beatsPerMinute = 126;
    options.writeBpm = true;
    return options;
}

std::filesystem::path benchFile(const char* name)
{
    return std::filesystem::temp_directory_path() / name;
}

std::size_t exportedSize()
{
    midi::MidiFile file;
    midi::MidiFileExporter(exportOptions()).build(thousandChordPart(), file);
    return file.toBytes().size();
}

void BM_ExportMidiFile(benchmark::State& state)
{
    const auto path = benchFile("tm-bench-export.mid");
    for (auto _ : state) {
        music::RandomSource::seed(1);
        midi::MidiFileExporter exporter(exportOptions());
        if (!exporter.write(thousandChordPart(), path).ok())
            state.SkipWithError("the export failed");
    }
    const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(path));
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["file_bytes"] = static_cast<double>(bytes);
    std::filesystem::remove(path);
}

void BM_BuildMidiFileInMemory(benchmark::State& state)
{
    for (auto _ : state) {
        music::RandomSource::seed(1);
        midi::MidiFile file;
        midi::MidiFileExporter(exportOptions()).build(thousandChordPart(), file);
        benchmark::DoNotOptimize(file.toBytes());
    }
}

void BM_SaveBuiltMidiFile(benchmark::State& state)
{
    music::RandomSource::seed(1);
    midi::MidiFile file;
    midi::MidiFileExporter(exportOptions()).build(thousandChordPart(), file);
    const auto path = benchFile("tm-bench-save.mid");
    for (auto _ : state) {
        if (!file.save(path).ok())
            state.SkipWithError("the save failed");
    }
    std::filesystem::remove(path);
}

void plainWrite(benchmark::State& state, bool syncAndRename)
{
    const std::vector<char> bytes(exportedSize(), 'x');
    const auto path = benchFile("tm-bench-plain.bin");
    const auto temporary = benchFile("tm-bench-plain.bin.tmp");
    for (auto _ : state) {
        std::FILE* out = std::fopen((syncAndRename ? temporary : path).string().c_str(), "wb");
        if (out == nullptr) {
            state.SkipWithError("cannot open the file");
            break;
        }
        std::fwrite(bytes.data(), 1, bytes.size(), out);
        std::fflush(out);
#ifndef _WIN32
        if (syncAndRename)
            fsync(fileno(out));
#endif
        std::fclose(out);
        if (syncAndRename)
            std::filesystem::rename(temporary, path);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
    std::filesystem::remove(path);
}

void BM_PlainBufferedWrite(benchmark::State& state)
{
    plainWrite(state, false);
}

void BM_PlainWriteSyncedAndRenamed(benchmark::State& state)
{
    plainWrite(state, true);
}

} // namespace

BENCHMARK(BM_ExportMidiFile)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BuildMidiFileInMemory)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveBuiltMidiFile)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainBufferedWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainWriteSyncedAndRenamed)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
