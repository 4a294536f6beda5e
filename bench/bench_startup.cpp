// Start-up: from starting the process to its window on the screen, for the program's main window
// and for a bare Qt window built for this benchmark (bare_window.cpp), measured the same way in
// the same run. Both are started in turn, ten of each per repetition after one of each to warm
// the file cache; the medians and their ratios are reported.
//
// Each window signals on stdout (TM_EXIT_AFTER_FIRST_PAINT) when it is mapped, i.e. first exposed
// on the screen ("mapped": *_mapped_ms, mapped_ratio; goal: at most 1.5x the bare window), and
// when its first frame is painted ("first paint": program_ms, bare_window_ms, ratio); the times
// run from fork() to those lines. The program completes its start right after that frame (the
// desktop theme's icons, the window icon) and says "ready" before it ends: that time is reported
// too (program_ready_ms). Under a display (DISPLAY set, as with xvfb-run) both use it, else Qt's
// offscreen platform. The settings live in a temporary folder.
// The program is the Release build beside the benchmarks, else TM_BENCH_APP, else
// build/package/bin/tonalmancer, else build/dev/bin/tonalmancer (a debug build: slower).

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int kRuns = 10;

fs::path programPath()
{
    if (const char* chosen = std::getenv("TM_BENCH_APP"))
        return chosen;
    for (const fs::path& candidate :
         {fs::path(TM_BENCH_BIN_DIR) / "tonalmancer",
          fs::path(TM_BENCH_SOURCE_DIR) / "build/package/bin/tonalmancer",
          fs::path(TM_BENCH_SOURCE_DIR) / "build/dev/bin/tonalmancer"}) {
        if (fs::exists(candidate))
            return candidate;
    }
    return {};
}

struct Start
{
    double mappedMs = -1;     // negative: the window never said it
    double firstPaintMs = -1; // negative: the window never said it
    double readyMs = -1;      // negative: never said (the bare window has no such line)
};

/** Milliseconds from fork() to the "first paint" line and to the "ready" line. */
Start startToFirstPaint(const fs::path& program, const fs::path& settings)
{
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0)
        return {};
    const Clock::time_point started = Clock::now();
    const pid_t child = fork();
    if (child == 0) {
        dup2(pipeEnds[1], STDOUT_FILENO);
        close(pipeEnds[0]);
        close(pipeEnds[1]);
        setenv("TM_EXIT_AFTER_FIRST_PAINT", "1", 1);
        setenv("XDG_CONFIG_HOME", settings.c_str(), 1);
        if (std::getenv("DISPLAY") == nullptr)
            setenv("QT_QPA_PLATFORM", "offscreen", 1);
        execl(program.c_str(), program.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    close(pipeEnds[1]);
    const auto elapsedMs = [started] {
        return std::chrono::duration<double, std::milli>(Clock::now() - started).count();
    };
    Start start;
    std::string said;
    char buffer[256];
    for (ssize_t n; (n = read(pipeEnds[0], buffer, sizeof buffer)) > 0;) {
        said.append(buffer, static_cast<std::size_t>(n));
        if (start.mappedMs < 0 && said.find("mapped") != std::string::npos)
            start.mappedMs = elapsedMs();
        if (start.firstPaintMs < 0 && said.find("first paint") != std::string::npos)
            start.firstPaintMs = elapsedMs();
        if (said.find("ready") != std::string::npos) {
            start.readyMs = elapsedMs();
            break;
        }
    }
    close(pipeEnds[0]);
    waitpid(child, nullptr, 0);
    return start;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void BM_StartToFirstPaint(benchmark::State& state)
{
    const fs::path program = programPath();
    const fs::path bare = fs::path(TM_BENCH_BIN_DIR) / "tm_bare_window";
    if (program.empty() || !fs::exists(bare)) {
        state.SkipWithError("the program or the bare window is not built");
        return;
    }
    const fs::path settings = fs::temp_directory_path() / "tm-bench-startup-settings";
    fs::create_directories(settings);
    for (auto _ : state) {
        startToFirstPaint(bare, settings);
        startToFirstPaint(program, settings);
        std::vector<double> programMs;
        std::vector<double> readyMs;
        std::vector<double> bareMs;
        std::vector<double> programMappedMs;
        std::vector<double> bareMappedMs;
        for (int i = 0; i < kRuns; ++i) {
            const Start bareStart = startToFirstPaint(bare, settings);
            bareMs.push_back(bareStart.firstPaintMs);
            bareMappedMs.push_back(bareStart.mappedMs);
            const Start started = startToFirstPaint(program, settings);
            programMs.push_back(started.firstPaintMs);
            programMappedMs.push_back(started.mappedMs);
            readyMs.push_back(started.readyMs);
        }
        if (*std::min_element(programMappedMs.begin(), programMappedMs.end()) < 0 ||
            *std::min_element(bareMappedMs.begin(), bareMappedMs.end()) < 0 ||
            *std::min_element(programMs.begin(), programMs.end()) < 0 ||
            *std::min_element(readyMs.begin(), readyMs.end()) < 0 ||
            *std::min_element(bareMs.begin(), bareMs.end()) < 0) {
            state.SkipWithError("a window did not report its first paint or being ready");
            break;
        }
        state.counters["program_ms"] = median(programMs);
        state.counters["program_ready_ms"] = median(readyMs);
        state.counters["bare_window_ms"] = median(bareMs);
        state.counters["ratio"] = median(programMs) / median(bareMs);
        state.counters["program_mapped_ms"] = median(programMappedMs);
        state.counters["bare_window_mapped_ms"] = median(bareMappedMs);
        state.counters["mapped_ratio"] = median(programMappedMs) / median(bareMappedMs);
    }
    fs::remove_all(settings);
}

} // namespace

BENCHMARK(BM_StartToFirstPaint)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

BENCHMARK_MAIN();
