// Reading and writing a large song (tens of MB of wave data, hundreds of patterns) against a
// plain copy of the same file.
//
//   bench_song                          the benchmarks
//   bench_song --make-song FILE         writes the benchmark's song to FILE
//   bench_song --read-write IN OUT      reads IN and writes it to OUT once, then prints the peak
//                                       resident memory (for comparing with the file size)
//
// BM_SongCopyPeakMemory runs the command-line program's song-copy on the song (a data folder of
// its own describes the two machines) and reports its peak resident memory beside the file size;
// the goal is at most 2 x the file size + 20 MB.

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "song/MachineDatabase.h"
#include "song/MemoryMachineCatalog.h"
#include "song/SongReader.h"
#include "song/SongWriter.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>

#ifndef _WIN32
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kWaveBytes = 40u << 20;
constexpr std::size_t kGenerators = 4;
constexpr std::size_t kPatternsPerMachine = 100;
constexpr std::uint16_t kRows = 64;
constexpr std::uint16_t kTracks = 8;

song::MachineDatabaseEntry generatorEntry()
{
    song::MachineDatabaseEntry e;
    e.dllName = "BenchGen";
    e.type = 1;
    e.minTracks = 1;
    e.maxTracks = 16;
    e.parameters = {{"Cutoff", 1, 'g', 2, 0xFF, 0x40},
                    {"Glide", 2, 'g', 3, 0xFFFF, 0x100},
                    {"Note", 1, 't', 0, 0, 0},
                    {"Velocity", 1, 't', 2, 0xFF, 0x80}};
    e.globalParameterCount = 2;
    e.trackParameterCount = 2;
    e.totalParameterCount = 4;
    e.globalRowSize = 3;
    e.trackRowSize = 2;
    return e;
}

song::MachineDatabaseEntry masterEntry()
{
    song::MachineDatabaseEntry e;
    e.dllName = "Master";
    e.type = 0;
    e.maxTracks = 256;
    e.parameters = {
        {"Volume", 2, 'g', 3, 0, 0}, {"Bpm", 2, 'g', 3, 120, 120}, {"Tpb", 1, 'g', 2, 4, 4}};
    e.globalParameterCount = 3;
    e.totalParameterCount = 3;
    e.globalRowSize = 5;
    return e;
}

song::MemoryMachineCatalog catalog()
{
    return song::MemoryMachineCatalog({masterEntry(), generatorEntry()});
}

song::BuzzSong makeSong()
{
    song::BuzzSong song;
    song::SongMachine master;
    master.name = "Master";
    master.type = 0;
    master.description = masterEntry();
    master.globalRowSize = 5;
    master.globalState.assign(5, 0);
    song.machines().push_back(master);
    song.patternBlocks().push_back({});
    for (std::size_t g = 0; g < kGenerators; ++g) {
        song::SongMachine m;
        m.name = "Gen" + std::to_string(g);
        m.type = 1;
        m.dllName = "BenchGen";
        m.description = generatorEntry();
        m.databaseIndex = 1;
        m.globalRowSize = 3;
        m.trackRowSize = 2;
        m.globalState = {0x40, 0x00, 0x01};
        song.machines().push_back(m);
        song.patternBlocks().push_back({});
        song.connections().push_back({static_cast<std::uint16_t>(g + 1), 0, 0x4000, 0x4000});
    }
    std::mt19937 random(7);
    for (std::size_t g = 1; g <= kGenerators; ++g) {
        song.setTrackCount(g, kTracks);
        const std::size_t s = song.addSequence(g);
        for (std::size_t p = 0; p < kPatternsPerMachine; ++p) {
            song.createPattern(g, "p" + std::to_string(p), kRows);
            for (std::size_t row = 0; row < kRows; row += 2) {
                song.setCellValue(g, p, row, random() % kTracks, 2,
                                  static_cast<int>(1 + random() % 120));
            }
            song.sequences()[s].events.push_back(
                {static_cast<std::uint16_t>(p * kRows), static_cast<std::uint16_t>(16 + p)});
        }
    }
    song.createPattern(0, "m", kRows);
    std::vector<std::uint8_t> waves(kWaveBytes);
    for (std::size_t i = 0; i < waves.size(); ++i)
        waves[i] = static_cast<std::uint8_t>(i * 31 + (i >> 9));
    song.setWaveData(std::move(waves));
    return song;
}

/** The benchmark's song on disk, made once per run. */
const fs::path& songFile()
{
    static const fs::path path = [] {
        const fs::path p = fs::temp_directory_path() / "tm-bench-song.bmx";
        if (!song::SongWriter::write(makeSong(), p))
            std::fprintf(stderr, "cannot write %s\n", p.string().c_str());
        return p;
    }();
    return path;
}

fs::path outputFile()
{
    return fs::temp_directory_path() / "tm-bench-song-out.bmx";
}

void BM_CopyFile(benchmark::State& state)
{
    const fs::path& in = songFile();
    for (auto _ : state) {
        fs::copy_file(in, outputFile(), fs::copy_options::overwrite_existing);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * fs::file_size(in)));
}

/** The same bytes through the program's own file paths: one block read, a safe (synced) save. */
void BM_CopyFileSafely(benchmark::State& state)
{
    const fs::path& in = songFile();
    for (auto _ : state) {
        const std::optional<std::string> bytes = music::readFileBytes(in);
        if (!bytes || !music::writeFileSafely(outputFile(), *bytes))
            state.SkipWithError("copy failed");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * fs::file_size(in)));
}

void BM_ReadSong(benchmark::State& state)
{
    const fs::path& in = songFile();
    song::MemoryMachineCatalog machines = catalog();
    for (auto _ : state) {
        song::BuzzSong song;
        if (!song::SongReader(machines, nullptr).read(in, song))
            state.SkipWithError("read failed");
        benchmark::DoNotOptimize(song);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * fs::file_size(in)));
}

void BM_WriteSong(benchmark::State& state)
{
    song::MemoryMachineCatalog machines = catalog();
    song::BuzzSong song;
    song::SongReader(machines, nullptr).read(songFile(), song);
    for (auto _ : state) {
        if (!song::SongWriter::write(song, outputFile()))
            state.SkipWithError("write failed");
    }
    state.SetBytesProcessed(
        static_cast<std::int64_t>(state.iterations() * fs::file_size(songFile())));
}

void BM_ReadAndWriteSong(benchmark::State& state)
{
    const fs::path& in = songFile();
    song::MemoryMachineCatalog machines = catalog();
    for (auto _ : state) {
        song::BuzzSong song;
        if (!song::SongReader(machines, nullptr).read(in, song) ||
            !song::SongWriter::write(song, outputFile()))
            state.SkipWithError("read or write failed");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * fs::file_size(in)));
}

#ifndef _WIN32
/** Runs the command-line program's song-copy on the song; its peak resident memory. */
void BM_SongCopyPeakMemory(benchmark::State& state)
{
    const fs::path cli = fs::path(TM_BENCH_BIN_DIR) / "tonalmancer-cli";
    if (!fs::exists(cli)) {
        state.SkipWithError("tonalmancer-cli is not built");
        return;
    }
    const fs::path data = fs::temp_directory_path() / "tm-bench-song-data";
    fs::create_directories(data);
    std::ofstream(data / "machines.ini", std::ios::binary)
        << "2\n"
        << song::MachineDatabase::formatEntry(masterEntry())
        << song::MachineDatabase::formatEntry(generatorEntry());
    const std::string in = songFile().string();
    const std::string out = outputFile().string();
    const std::string dataArgument = data.string();
    double peakMb = 0;
    for (auto _ : state) {
        const pid_t child = fork();
        if (child == 0) {
            std::freopen("/dev/null", "w", stdout);
            execl(cli.c_str(), "tonalmancer-cli", "song-copy", in.c_str(), out.c_str(), "--data",
                  dataArgument.c_str(), static_cast<char*>(nullptr));
            _exit(127);
        }
        int status = 0;
        rusage usage{};
        wait4(child, &status, 0, &usage);
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
            state.SkipWithError("song-copy failed");
            break;
        }
        peakMb = static_cast<double>(usage.ru_maxrss) / 1024.0;
    }
    const double fileMb = static_cast<double>(fs::file_size(songFile())) / 1048576.0;
    state.counters["file_mb"] = fileMb;
    state.counters["peak_resident_mb"] = peakMb;
    state.counters["limit_mb"] = 2 * fileMb + 20;
    fs::remove_all(data);
}
BENCHMARK(BM_SongCopyPeakMemory)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);
#endif

BENCHMARK(BM_CopyFile)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_CopyFileSafely)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ReadSong)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_WriteSong)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ReadAndWriteSong)->Unit(benchmark::kMillisecond)->UseRealTime();

long peakResidentKilobytes()
{
#ifndef _WIN32
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
#else
    return 0;
#endif
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--make-song") == 0) {
        const music::Result r = song::SongWriter::write(makeSong(), argv[2]);
        std::printf("%s: %s, %llu bytes\n", argv[2], r ? "written" : "failed",
                    r ? static_cast<unsigned long long>(fs::file_size(argv[2])) : 0ULL);
        return r ? 0 : 1;
    }
    if (argc == 4 && std::strcmp(argv[1], "--read-write") == 0) {
        song::MemoryMachineCatalog machines = catalog();
        song::BuzzSong song;
        const music::Result read = song::SongReader(machines, nullptr).read(argv[2], song);
        const music::Result written = read ? song::SongWriter::write(song, argv[3]) : read;
        const auto size = fs::file_size(argv[2]);
        std::printf("file %.1f MB, peak resident %.1f MB (limit 2 x file + 20 MB = %.1f MB): %s\n",
                    static_cast<double>(size) / 1048576.0,
                    static_cast<double>(peakResidentKilobytes()) / 1024.0,
                    2.0 * static_cast<double>(size) / 1048576.0 + 20.0, written ? "ok" : "failed");
        return written ? 0 : 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    fs::remove(outputFile());
    return 0;
}
