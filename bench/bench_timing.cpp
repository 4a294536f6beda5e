// Live playback timing at a JACK receiver, RtMidi and the native JACK output side by side in one
// run. A private dummy JACK server (48 kHz, 64 frames a period: 1.33 ms) runs under a name of its
// own; the player sends 2,000 steps of 5 ms to a JACK MIDI port, once through RtMidi and once
// through the native output, and a receiving client stamps every note-on with its frame (the
// cycle's first frame plus the event's offset). Each onset is compared with the ideal schedule
// start + k x interval, the start being the median offset of the first 100 onsets, on two clocks:
// - JACK's frame clock: the onset frame against k x 240 frames (counters *_frame_*);
// - the monotonic clock: the cycle's start on JACK's clock plus the event's offset at the
//   nominal rate (*_clock_*).
// p99 is the 99th percentile of the absolute error, drift the mean error of the last 100 onsets;
// each onset is matched to its nearest step, and steps the server dropped count as *_lost_onsets.
// *_server_xruns counts the cycles the server reported late meanwhile: the dummy backend drops
// frames at each, so its frame clock falls behind the monotonic clock that the player follows.
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

/** A JACK client with one MIDI input that stamps every note-on as it arrives. */
class Receiver
{
public:
    bool open()
    {
        m_client = jack_client_open("tmbench", JackNoStartServer, nullptr);
        if (m_client == nullptr)
            return false;
        m_port = jack_port_register(m_client, "in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
        m_frames.assign(kSteps + 256, 0);
        m_times.assign(kSteps + 256, 0);
        m_cycleTimes.assign(kSteps + 256, 0);
        jack_set_process_callback(m_client, &Receiver::process, this);
        jack_set_xrun_callback(m_client, &Receiver::xrun, this);
        return m_port != nullptr && jack_activate(m_client) == 0;
    }
    ~Receiver()
    {
        if (m_client != nullptr)
            jack_client_close(m_client);
    }
    void reset()
    {
        m_count = 0;
        m_xruns = 0;
    }
    /** Cycles the server reported late since the last reset. */
    int xruns() const { return m_xruns.load(); }
    int count() const { return m_count.load(); }
    jack_nframes_t sampleRate() const { return jack_get_sample_rate(m_client); }
    /** Onset frames and their times in microseconds (JACK's conversion), kSteps of each. */
    std::vector<jack_nframes_t> frames() const
    {
        return {m_frames.begin(), m_frames.begin() + kSteps};
    }
    std::vector<jack_time_t> times() const { return {m_times.begin(), m_times.begin() + kSteps}; }
    std::vector<double> cycleTimes() const
    {
        return {m_cycleTimes.begin(), m_cycleTimes.begin() + kSteps};
    }

private:
    static int process(jack_nframes_t frames, void* arg)
    {
        auto* self = static_cast<Receiver*>(arg);
        void* buffer = jack_port_get_buffer(self->m_port, frames);
        jack_nframes_t cycleStart = 0;
        jack_time_t cycleUs = 0;
        jack_time_t nextUs = 0;
        float periodUs = 0;
        jack_get_cycle_times(self->m_client, &cycleStart, &cycleUs, &nextUs, &periodUs);
        const double rate = jack_get_sample_rate(self->m_client);
        const std::uint32_t events = jack_midi_get_event_count(buffer);
        for (std::uint32_t i = 0; i < events; ++i) {
            jack_midi_event_t event;
            if (jack_midi_event_get(&event, buffer, i) != 0 || event.size < 3)
                continue;
            if ((event.buffer[0] & 0xF0) != 0x90 || event.buffer[2] == 0)
                continue;
            const int index = self->m_count.load();
            if (index < static_cast<int>(self->m_frames.size())) {
                const jack_nframes_t frame = cycleStart + event.time;
                self->m_frames[static_cast<std::size_t>(index)] = frame;
                self->m_times[static_cast<std::size_t>(index)] =
                    jack_frames_to_time(self->m_client, frame);
                self->m_cycleTimes[static_cast<std::size_t>(index)] =
                    static_cast<double>(cycleUs) + event.time * 1e6 / rate;
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
    std::vector<jack_nframes_t> m_frames;
    std::vector<jack_time_t> m_times;
    std::vector<double> m_cycleTimes;
    std::atomic<int> m_count{0};
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
 * Onsets (in `unit`s from the first) against k x `interval`. Each onset belongs to the step
 * nearest to it, so that an event the server dropped (JACK loses the MIDI of an overrun cycle)
 * counts as lost rather than shifting every later onset by a step; the schedule is anchored on
 * the median offset of the first 100 onsets.
 */
Errors errorsAgainstSchedule(const std::vector<double>& onsets, double interval, double unitsPerMs)
{
    std::vector<double> steps;
    for (const double onset : onsets)
        steps.push_back(std::round((onset - onsets.front()) / interval));
    std::vector<double> offsets;
    for (std::size_t k = 0; k < 100; ++k)
        offsets.push_back(onsets[k] - steps[k] * interval);
    std::nth_element(offsets.begin(), offsets.begin() + 50, offsets.end());
    const double start = offsets[50];
    std::vector<double> absolute;
    double tail = 0;
    for (std::size_t k = 0; k < onsets.size(); ++k) {
        const double error = (onsets[k] - start - steps[k] * interval) / unitsPerMs;
        absolute.push_back(std::abs(error));
        if (k + 100 >= onsets.size())
            tail += error;
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
            const std::vector<jack_nframes_t> frames = receiver.frames();
            const std::vector<jack_time_t> times = receiver.times();
            std::vector<double> frameOnsets;
            std::vector<double> timeOnsets;
            for (int k = 0; k < kSteps; ++k) {
                const auto i = static_cast<std::size_t>(k);
                frameOnsets.push_back(
                    static_cast<double>(static_cast<std::int32_t>(frames[i] - frames[0])));
                timeOnsets.push_back(static_cast<double>(times[i] - times[0]));
            }
            if (const char* dump = std::getenv("TM_BENCH_TIMING_DUMP")) {
                // One line per onset: frame and microsecond from the first (for a closer look).
                const std::string file =
                    std::string(dump) + "-" + path + (loaded ? "-loaded" : "") + ".txt";
                if (std::FILE* out = std::fopen(file.c_str(), "w")) {
                    for (int k = 0; k < kSteps; ++k)
                        std::fprintf(out, "%d %.0f %.0f %.1f\n", k,
                                     frameOnsets[static_cast<std::size_t>(k)],
                                     timeOnsets[static_cast<std::size_t>(k)],
                                     receiver.cycleTimes()[static_cast<std::size_t>(k)] -
                                         receiver.cycleTimes()[0]);
                    std::fclose(out);
                }
            }
            const Errors onFrames =
                errorsAgainstSchedule(frameOnsets, intervalMs * rate / 1000.0, rate / 1000.0);
            const Errors onClock = errorsAgainstSchedule(timeOnsets, intervalMs * 1000.0, 1000.0);
            state.counters[path + "_frame_p99_ms"] = onFrames.p99Ms;
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
