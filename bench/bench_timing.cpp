// Live playback timing at a JACK receiver, RtMidi and the native JACK output side by side in one
// run. A private dummy JACK server (48 kHz, 64 frames a period: 1.33 ms) runs under a name of its
// own; the player sends 2,000 steps of 5 ms to a JACK MIDI port, once through RtMidi and once
// through the native output, and a receiving client notes every note-on's frame (the cycle's
// first frame plus the event's offset) and, for every cycle, its first frame and the moment its
// thread woke. Each onset is compared with the ideal schedule start + k x interval on two clocks:
// - the monotonic clock (*_clock_*): the onset frame's time, from where the receiver's frames
//   stood against the clock (FrameTimeline: the earliest wake-ups around it, with hindsight; not
//   JACK's own period estimate, which wanders by several frames after an overrun). The schedule is
//   anchored on the median offset of the first 100 onsets.
// - JACK's frame clock (*_frame_*): the onset frame against k x 240 frames. At each server
//   overrun the dummy backend restarts its timer without the frames it missed, so its frame
//   counter falls back against the clock; the schedule is anchored anew after each such jump
//   (*_frame_jumps counts them), and *_frame_raw_p99_ms is the error with one anchor for the run.
// p99 is the 99th percentile of the absolute error, drift the mean error of the last 100 onsets;
// each onset is matched to its nearest step on the monotonic clock, and steps the server dropped
// count as *_lost_onsets. *_server_xruns counts the cycles the server reported late meanwhile.
// The argument loaded:1 runs a busy loop on every core meanwhile (started and stopped here).
// TM_BENCH_JACK_RATE and TM_BENCH_JACK_PERIOD choose another server setting (96000 and 32 make
// 3,000 cycles a second, more than a loaded two-core machine keeps up with).
// Target for the native output: p99 and drift at most 0.05 ms in every repetition, loaded or not.

#include "midi/JackMidiOutPort.h"
#include "midi/MidiPortList.h"
#include "midi/RtMidiOutPort.h"
#include "part/Part.h"
#include "player/PartPlayer.h"

#include <benchmark/benchmark.h>
#include <jack/jack.h>
#include <jack/midiport.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kSteps = 2000;
constexpr int kBpm = 3000;
constexpr int kTpb = 4;                           // 5 ms steps
constexpr const char* kServer = "tmbench-timing"; // fixed: JACK reclaims its registry entry
constexpr const char* kReceiverPort = "tmbench:in";
/** Every row of every chord plays a note on track 0, so every step has a note-on. */
part::Part makeDensePart()
{
    part::Part p = part::Part::makeNew();
    part::Pattern& pattern = p.patterns().pattern(0);
    for (int row = 0; row < part::kRowCount; ++row)
        pattern.setCell(0, row, {part::CellKind::ChordNote, static_cast<std::uint8_t>(row % 3), 0});
    const int chords = (kSteps + part::kRowCount - 1) / part::kRowCount + 1;
    for (int i = 0; i < chords; ++i) {
        part::PartChord chord;
        chord.name = "C";
        chord.setNotes({0, 4, 7});
        chord.length = part::kRowCount;
        p.append(chord);
    }
    return p;
}

/** A JACK client with one MIDI input that notes every cycle and every note-on as it arrives. */
class Receiver
{
public:
    /** A process cycle: its first frame and the moment this client's thread woke (JACK's clock). */
    struct Cycle
    {
        jack_nframes_t start = 0;
        jack_time_t wokeUs = 0;
    };
    /** A note-on: the cycle it came in (an index into cycles()) and its frame. */
    struct Onset
    {
        std::size_t cycle = 0;
        jack_nframes_t frame = 0;
    };

    bool open()
    {
        m_client = jack_client_open("tmbench", JackNoStartServer, nullptr);
        if (m_client == nullptr)
            return false;
        m_port = jack_port_register(m_client, "in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
        m_onsets.resize(kSteps + 256);
        m_cycles.resize(200'000); // 40 s of 64-frame cycles at 96 kHz
        jack_set_process_callback(m_client, &Receiver::process, this);
        jack_set_xrun_callback(m_client, &Receiver::xrun, this);
        return m_port != nullptr && jack_activate(m_client) == 0;
    }
    ~Receiver()
    {
        if (m_client != nullptr)
            jack_client_close(m_client);
    }
    /** Starts noting afresh (the callback only reads the counts, so this is safe meanwhile). */
    void reset()
    {
        m_count = 0;
        m_cycleCount = 0;
        m_xruns = 0;
    }
    /** Cycles the server reported late since the last reset. */
    int xruns() const { return m_xruns.load(); }
    int count() const { return m_count.load(); }
    jack_nframes_t sampleRate() const { return jack_get_sample_rate(m_client); }
    std::vector<Onset> onsets() const
    {
        return {m_onsets.begin(), m_onsets.begin() + std::min(count(), kSteps)};
    }
    std::vector<Cycle> cycles() const
    {
        return {m_cycles.begin(), m_cycles.begin() + m_cycleCount.load()};
    }

private:
    static int process(jack_nframes_t frames, void* arg)
    {
        auto* self = static_cast<Receiver*>(arg);
        const jack_time_t woke = jack_get_time();
        const jack_nframes_t cycleStart = jack_last_frame_time(self->m_client);
        const std::size_t cycle = self->m_cycleCount.load();
        if (cycle >= self->m_cycles.size())
            return 0;
        self->m_cycles[cycle] = {cycleStart, woke};
        self->m_cycleCount.store(cycle + 1);
        void* buffer = jack_port_get_buffer(self->m_port, frames);
        const std::uint32_t events = jack_midi_get_event_count(buffer);
        for (std::uint32_t i = 0; i < events; ++i) {
            jack_midi_event_t event;
            if (jack_midi_event_get(&event, buffer, i) != 0 || event.size < 3)
                continue;
            if ((event.buffer[0] & 0xF0) != 0x90 || event.buffer[2] == 0)
                continue;
            const int index = self->m_count.load();
            if (index < static_cast<int>(self->m_onsets.size())) {
                self->m_onsets[static_cast<std::size_t>(index)] = {cycle, cycleStart + event.time};
                self->m_count.store(index + 1);
            }
        }
        return 0;
    }

    static int xrun(void* arg)
    {
        ++static_cast<Receiver*>(arg)->m_xruns;
        return 0;
    }

    jack_client_t* m_client = nullptr;
    jack_port_t* m_port = nullptr;
    std::atomic<int> m_xruns{0};
    std::vector<Onset> m_onsets;
    std::vector<Cycle> m_cycles;
    std::atomic<std::size_t> m_cycleCount{0};
    std::atomic<int> m_count{0};
};

/**
 * The receiver's cycles read after the run, with hindsight: where its frames stood against the
 * monotonic clock. A cycle's thread wakes some time after the cycle's true start, so "frames minus
 * elapsed time" is highest for the earliest wake-ups; its highest value within kWindow cycles
 * either side tells where the frames stand. At a server overrun the frame counter falls back
 * against the clock: the earliest wake-up of the kEdge cycles after a point lies more than
 * kJumpFrames below that of the kEdge cycles before it. Such a point starts a new stretch.
 */
class FrameTimeline
{
public:
    FrameTimeline(const std::vector<Receiver::Cycle>& cycles, double rate)
        : m_rate(rate), m_stretch(cycles.size(), 0), m_level(cycles.size(), 0)
    {
        if (cycles.empty())
            return;
        m_originUs = static_cast<double>(cycles.front().wokeUs);
        std::vector<double> levels;
        std::int64_t frames = 0;
        for (std::size_t j = 0; j < cycles.size(); ++j) {
            if (j > 0)
                frames += static_cast<std::uint32_t>(cycles[j].start - cycles[j - 1].start);
            m_frames.push_back(frames);
            levels.push_back(static_cast<double>(frames) -
                             (static_cast<double>(cycles[j].wokeUs) - m_originUs) * rate / 1e6);
        }
        const auto highest = [&levels](std::size_t from, std::size_t to) { // [from, to)
            return *std::max_element(levels.begin() + static_cast<std::ptrdiff_t>(from),
                                     levels.begin() + static_cast<std::ptrdiff_t>(to));
        };
        bool falling = false;
        for (std::size_t j = kEdge; j + kEdge <= levels.size(); ++j) {
            const bool fell = highest(j, j + kEdge) < highest(j - kEdge, j) - kJumpFrames;
            m_stretch[j] = m_stretch[j - 1] + (fell && !falling ? 1 : 0);
            falling = fell;
        }
        for (std::size_t j = levels.size() - kEdge + 1; j < levels.size(); ++j)
            m_stretch[j] = m_stretch[j - 1];
        for (std::size_t j = 0; j < levels.size(); ++j) {
            std::size_t from = j > kWindow ? j - kWindow : 0;
            std::size_t to = std::min(levels.size(), j + kWindow + 1);
            while (m_stretch[from] != m_stretch[j])
                ++from;
            while (m_stretch[to - 1] != m_stretch[j])
                --to;
            m_level[j] = highest(from, to);
        }
    }

    /** The stretch of unbroken frame clock that cycle `cycle` belongs to (0, 1, ...). */
    int stretch(std::size_t cycle) const { return m_stretch[cycle]; }
    /** When `frame` (of cycle `cycle`) played, in microseconds on the monotonic clock. */
    double timeUs(std::size_t cycle, jack_nframes_t frame, jack_nframes_t cycleStart) const
    {
        const double fromStart = static_cast<double>(static_cast<std::int32_t>(frame - cycleStart));
        return m_originUs +
               (static_cast<double>(m_frames[cycle]) + fromStart - m_level[cycle]) * 1e6 / m_rate;
    }

private:
    static constexpr std::size_t kEdge = 16;
    static constexpr std::size_t kWindow = 300;
    static constexpr double kJumpFrames = 4;
    double m_rate;
    double m_originUs = 0;
    std::vector<int> m_stretch;
    std::vector<double> m_level;
    std::vector<std::int64_t> m_frames;
};

/** The receiving port alone, opened through RtMidi or through the native JACK output. */
class OnePortList : public midi::MidiPortList
{
public:
    explicit OnePortList(bool native) : m_native(native) {}
    std::vector<std::string> deviceNames() override
    {
        return {std::string("JACK: ") + kReceiverPort};
    }
    std::unique_ptr<midi::MidiOutPort> openPort(unsigned number) override
    {
        if (number != 0)
            return nullptr;
        if (m_native)
            return midi::JackMidiOutPort::open(kReceiverPort);
        return midi::RtMidiOutPort::open(std::string("JACK: ") + kReceiverPort);
    }

private:
    bool m_native;
};

/** A busy loop on every core until stopped, and at most for `limit` (so it always ends). */
class CpuLoad
{
public:
    explicit CpuLoad(std::chrono::seconds limit)
    {
        const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
        const auto until = std::chrono::steady_clock::now() + limit;
        for (unsigned i = 0; i < cores; ++i) {
            m_threads.emplace_back([this, until] {
                volatile std::uint64_t sink = 0;
                while (!m_stop.load(std::memory_order_relaxed) &&
                       std::chrono::steady_clock::now() < until) {
                    for (int k = 0; k < 10000; ++k)
                        sink = sink * 6364136223846793005u + 1442695040888963407u;
                }
            });
        }
    }
    ~CpuLoad()
    {
        m_stop = true;
        for (std::thread& t : m_threads)
            t.join();
    }

private:
    std::atomic<bool> m_stop{false};
    std::vector<std::thread> m_threads;
};

struct Errors
{
    double p99Ms = 0;
    double maxMs = 0;
    double driftMs = 0;
    double lost = 0; // steps without an onset (or, when negative, extra onsets)
};

/**
 * The step each onset (in microseconds from the first) belongs to: the nearest one, so that an
 * event the server dropped (JACK loses the MIDI of an overrun cycle) counts as lost rather than
 * shifting every later onset by a step.
 */
std::vector<double> nearestSteps(const std::vector<double>& onsetsUs, double intervalUs)
{
    std::vector<double> steps;
    for (const double onset : onsetsUs)
        steps.push_back(std::round((onset - onsetsUs.front()) / intervalUs));
    return steps;
}

/**
 * Onsets (in `unit`s) against their steps x `interval`. The schedule is anchored anew in every
 * stretch (`stretches` numbers them, rising), on the median offset of the stretch's first 100
 * onsets.
 */
Errors errorsAgainstSchedule(const std::vector<double>& onsets, const std::vector<double>& steps,
                             const std::vector<int>& stretches, double interval, double unitsPerMs)
{
    std::vector<double> absolute;
    std::vector<double> errors;
    for (std::size_t first = 0; first < onsets.size();) {
        std::size_t last = first;
        while (last < onsets.size() && stretches[last] == stretches[first])
            ++last;
        std::vector<double> offsets;
        for (std::size_t k = first; k < std::min(last, first + 100); ++k)
            offsets.push_back(onsets[k] - steps[k] * interval);
        const auto middle = offsets.begin() + static_cast<std::ptrdiff_t>(offsets.size() / 2);
        std::nth_element(offsets.begin(), middle, offsets.end());
        for (std::size_t k = first; k < last; ++k)
            errors.push_back((onsets[k] - *middle - steps[k] * interval) / unitsPerMs);
        first = last;
    }
    double tail = 0;
    for (std::size_t k = 0; k < errors.size(); ++k) {
        absolute.push_back(std::abs(errors[k]));
        if (k + 100 >= errors.size())
            tail += errors[k];
    }
    std::sort(absolute.begin(), absolute.end());
    const double lost = steps.back() + 1 - static_cast<double>(onsets.size());
    return {absolute[static_cast<std::size_t>(0.99 * static_cast<double>(absolute.size() - 1))],
            absolute.back(), tail / 100, lost};
}

/** Plays kSteps steps through `ports`; an empty text, or why it could not. */
std::string playSteps(const std::shared_ptr<midi::MidiPortList>& ports, Receiver& receiver,
                      bool& realtime)
{
    receiver.reset();
    midi::MidiSettings settings;
    settings.setDeviceNumber(0);
    player::PartPlayer player(ports);
    player.setSettings(settings);
    player.setTempo(kBpm, kTpb);
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (receiver.count() >= kSteps)
            loop.quit();
    });
    QObject::connect(&player, &player::PartPlayer::finished, &loop, &QEventLoop::quit);
    poll.start(50);
    if (player.playPart(makeDensePart(), part::kNoIndex) !=
        player::PartPlayer::StartResult::Started)
        return "playback did not start";
    loop.exec();
    realtime = player.isRealtime();
    player.stop();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    if (receiver.count() < kSteps)
        return "not every step arrived";
    return {};
}

pid_t startServer(bool realtime)
{
    const pid_t pid = fork();
    if (pid == 0) {
        std::freopen("/dev/null", "w", stdout);
        std::freopen("/dev/null", "w", stderr);
        const char* rate = std::getenv("TM_BENCH_JACK_RATE");
        const char* period = std::getenv("TM_BENCH_JACK_PERIOD");
        execlp("jackd", "jackd", realtime ? "--realtime" : "--no-realtime", "-n", kServer, "-d",
               "dummy", "-r", rate ? rate : "48000", "-p", period ? period : "64",
               static_cast<char*>(nullptr));
        _exit(127);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    return pid;
}

void ignoreJack(const char*)
{}

void BM_PlaybackOnsetsAtAJackReceiver(benchmark::State& state)
{
    const bool loaded = state.range(0) != 0;
    if (std::system("command -v jackd >/dev/null 2>&1") != 0) {
        state.SkipWithError("jackd is not installed");
        return;
    }
    jack_set_error_function(ignoreJack);
    jack_set_info_function(ignoreJack);
    setenv("JACK_DEFAULT_SERVER", kServer, 1);
    // Real-time scheduling where the system allows it: without it a 32-frame period cannot keep
    // up on a loaded machine and the server's own clock falls behind.
    bool realtimeServer = true;
    pid_t jackd = startServer(true);
    if (waitpid(jackd, nullptr, WNOHANG) == jackd) {
        realtimeServer = false;
        jackd = startServer(false);
    }
    state.counters["realtime_server"] = realtimeServer ? 1 : 0;

    static int argc = 1;
    static char name[] = "bench_timing";
    static char* argv[] = {name, nullptr};
    if (QCoreApplication::instance() == nullptr)
        new QCoreApplication(argc, argv);

    for (auto _ : state) {
        Receiver receiver;
        bool opened = false;
        for (int i = 0; i < 100 && !opened; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            opened = receiver.open();
        }
        if (!opened) {
            state.SkipWithError("the dummy JACK server did not start");
            break;
        }
        const double rate = receiver.sampleRate();
        const double intervalMs = player::PartPlayer::intervalFor(kBpm, kTpb);
        std::unique_ptr<CpuLoad> load;
        if (loaded)
            load = std::make_unique<CpuLoad>(std::chrono::seconds(120));
        for (const bool native : {false, true}) {
            const std::string path = native ? "native" : "rtmidi";
            bool realtime = false;
            const std::string failure =
                playSteps(std::make_shared<OnePortList>(native), receiver, realtime);
            if (!failure.empty()) {
                static std::string message;
                message = path + ": " + failure;
                state.SkipWithError(message.c_str());
                break;
            }
            const std::vector<Receiver::Cycle> cycles = receiver.cycles();
            const std::vector<Receiver::Onset> onsets = receiver.onsets();
            const FrameTimeline timeline(cycles, rate);
            std::vector<double> frameOnsets;
            std::vector<double> timeOnsets;
            std::vector<int> stretches;
            for (const Receiver::Onset& onset : onsets) {
                frameOnsets.push_back(static_cast<double>(
                    static_cast<std::int32_t>(onset.frame - onsets.front().frame)));
                timeOnsets.push_back(
                    timeline.timeUs(onset.cycle, onset.frame, cycles[onset.cycle].start));
                stretches.push_back(timeline.stretch(onset.cycle));
            }
            if (const char* dump = std::getenv("TM_BENCH_TIMING_DUMP")) {
                // One line per onset: frame and microsecond from the first, and its stretch.
                const std::string file =
                    std::string(dump) + "-" + path + (loaded ? "-loaded" : "") + ".txt";
                if (std::FILE* out = std::fopen(file.c_str(), "w")) {
                    for (std::size_t k = 0; k < onsets.size(); ++k)
                        std::fprintf(out, "%zu %.0f %.1f %d\n", k, frameOnsets[k],
                                     timeOnsets[k] - timeOnsets.front(), stretches[k]);
                    std::fclose(out);
                }
            }
            const std::vector<double> steps = nearestSteps(timeOnsets, intervalMs * 1000.0);
            const std::vector<int> oneStretch(stretches.size(), 0);
            const double frameInterval = intervalMs * rate / 1000.0;
            const Errors onFrames =
                errorsAgainstSchedule(frameOnsets, steps, stretches, frameInterval, rate / 1000.0);
            const Errors onRawFrames =
                errorsAgainstSchedule(frameOnsets, steps, oneStretch, frameInterval, rate / 1000.0);
            const Errors onClock =
                errorsAgainstSchedule(timeOnsets, steps, oneStretch, intervalMs * 1000.0, 1000.0);
            state.counters[path + "_frame_p99_ms"] = onFrames.p99Ms;
            state.counters[path + "_frame_raw_p99_ms"] = onRawFrames.p99Ms;
            state.counters[path + "_frame_jumps"] = stretches.back();
            state.counters[path + "_frame_max_ms"] = onFrames.maxMs;
            state.counters[path + "_frame_drift_ms"] = onFrames.driftMs;
            state.counters[path + "_clock_p99_ms"] = onClock.p99Ms;
            state.counters[path + "_clock_drift_ms"] = onClock.driftMs;
            state.counters[path + "_realtime_thread"] = realtime ? 1 : 0;
            state.counters[path + "_server_xruns"] = receiver.xruns();
            state.counters[path + "_lost_onsets"] = onClock.lost;
        }
    }
    kill(jackd, SIGTERM);
    waitpid(jackd, nullptr, 0);
    unsetenv("JACK_DEFAULT_SERVER");
}

} // namespace

BENCHMARK(BM_PlaybackOnsetsAtAJackReceiver)
    ->ArgName("loaded")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

BENCHMARK_MAIN();
