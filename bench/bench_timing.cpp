// Live playback timing: a private dummy JACK server at a short period (96 kHz, 32 frames), the
// player sending 2,000 steps to a JACK MIDI port, and a receiving client that stamps every note-on
// with its JACK frame time (converted to microseconds on JACK's monotonic clock). Each onset is
// compared with the ideal schedule start + k x interval, the start being the median offset of the
// first 100 onsets. The send side (the player's own clock) is reported beside it.
// Targets: 99th percentile of the onset error at most 1 ms, drift after 2,000 steps at most 1 ms.

#include "player/PartPlayer.h"
#include "midi/MidiPortList.h"
#include "midi/SystemMidiPortList.h"
#include "part/Part.h"

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
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kSteps = 2000;
constexpr int kBpm = 3000;
constexpr int kTpb = 4; // 5 ms steps

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
        m_onsets.assign(kSteps + 256, 0);
        m_wakes.assign(kSteps + 256, 0);
        jack_set_process_callback(m_client, &Receiver::process, this);
        return m_port != nullptr && jack_activate(m_client) == 0;
    }
    ~Receiver()
    {
        if (m_client != nullptr)
            jack_client_close(m_client);
    }
    /** Microseconds on JACK's clock of the note-ons received so far. */
    std::vector<jack_time_t> onsets() const
    {
        return {m_onsets.begin(), m_onsets.begin() + std::min<int>(m_count.load(), kSteps)};
    }
    int count() const { return m_count.load(); }
    std::vector<jack_time_t> wakes() const
    {
        return {m_wakes.begin(), m_wakes.begin() + std::min<int>(m_count.load(), kSteps)};
    }

private:
    static int process(jack_nframes_t frames, void* arg)
    {
        auto* self = static_cast<Receiver*>(arg);
        void* buffer = jack_port_get_buffer(self->m_port, frames);
        const jack_nframes_t cycleStart = jack_last_frame_time(self->m_client);
        const std::uint32_t events = jack_midi_get_event_count(buffer);
        for (std::uint32_t i = 0; i < events; ++i) {
            jack_midi_event_t event;
            if (jack_midi_event_get(&event, buffer, i) != 0 || event.size < 3)
                continue;
            if ((event.buffer[0] & 0xF0) != 0x90 || event.buffer[2] == 0)
                continue;
            const int index = self->m_count.load();
            if (index < static_cast<int>(self->m_onsets.size())) {
                self->m_onsets[static_cast<std::size_t>(index)] =
                    jack_frames_to_time(self->m_client, cycleStart + event.time);
                self->m_wakes[static_cast<std::size_t>(index)] = jack_get_time();
                self->m_count.store(index + 1);
            }
        }
        return 0;
    }

    jack_client_t* m_client = nullptr;
    jack_port_t* m_port = nullptr;
    std::vector<jack_time_t> m_onsets;
    std::vector<jack_time_t> m_wakes; // the system clock when the receiving cycle ran
    std::atomic<int> m_count{0};
};

void ignoreJack(const char*)
{}

void BM_LivePlaybackOnsetTiming(benchmark::State& state)
{
    if (std::system("command -v jackd >/dev/null 2>&1") != 0) {
        state.SkipWithError("jackd is not installed");
        return;
    }
    jack_set_error_function(ignoreJack);
    jack_set_info_function(ignoreJack);
    const std::string server = "tmbench-server"; // fixed: JACK reclaims its registry entry
    setenv("JACK_DEFAULT_SERVER", server.c_str(), 1);
    // Real-time scheduling where the system allows it: without it a 32-frame period cannot keep
    // up on a loaded machine and the server's own clock falls behind.
    const auto startServer = [&server](bool realtime) {
        const pid_t pid = fork();
        if (pid == 0) {
            std::freopen("/dev/null", "w", stdout);
            std::freopen("/dev/null", "w", stderr);
            execlp("jackd", "jackd", realtime ? "--realtime" : "--no-realtime", "-n",
                   server.c_str(), "-d", "dummy", "-r", "96000", "-p", "32",
                   static_cast<char*>(nullptr));
            _exit(127);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(700));
        return pid;
    };
    bool realtime = true;
    pid_t jackd = startServer(true);
    if (waitpid(jackd, nullptr, WNOHANG) == jackd) {
        realtime = false;
        jackd = startServer(false);
    }
    state.counters["realtime_server"] = realtime ? 1 : 0;
    const auto stopServer = [jackd] {
        kill(jackd, SIGTERM);
        waitpid(jackd, nullptr, 0);
    };

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
        auto ports = std::make_shared<midi::SystemMidiPortList>(std::filesystem::path());
        const std::vector<std::string> names = ports->deviceNames();
        const auto device = std::find(names.begin(), names.end(), "JACK: tmbench:in");
        if (device == names.end()) {
            std::string listed;
            for (const std::string& n : names)
                listed += " [" + n + "]";
            static std::string message;
            message = "the receiving port is not listed:" + listed;
            state.SkipWithError(message.c_str());
            break;
        }
        midi::MidiSettings settings;
        settings.setDeviceNumber(static_cast<std::uint16_t>(device - names.begin()));
        player::PartPlayer player(ports);
        player.setSettings(settings);
        player.setTempo(kBpm, kTpb);
        QEventLoop loop;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
            if (receiver.count() >= kSteps) {
                player.stop();
                loop.quit();
            }
        });
        QObject::connect(&player, &player::PartPlayer::finished, &loop, &QEventLoop::quit);
        // The send side on the monotonic clock, to tell the player's timing from JACK's.
        std::vector<jack_time_t> sent;
        sent.reserve(kSteps + 256);
        QObject::connect(&player, &player::PartPlayer::messageSent, [&sent](quint32 packed) {
            if ((packed & 0xF0) == 0x90)
                sent.push_back(jack_get_time());
        });
        poll.start(50);
        if (player.playPart(makeDensePart(), part::kNoIndex) !=
            player::PartPlayer::StartResult::Started) {
            state.SkipWithError("playback did not start");
            break;
        }
        loop.exec();
        player.stop();
        std::this_thread::sleep_for(std::chrono::milliseconds(50));

        const std::vector<jack_time_t> onsets = receiver.onsets();
        if (static_cast<int>(onsets.size()) < kSteps) {
            state.SkipWithError("not every step arrived");
            break;
        }
        const double intervalUs = 1000.0 * player::PartPlayer::intervalFor(kBpm, kTpb);
        // The schedule's start is anchored where the first 100 onsets sit (their median offset
        // from k x interval), so that JACK's constant period latency is not counted as error
        // and one early or late first onset does not skew every other one.
        std::vector<double> offsets;
        for (int k = 0; k < 100; ++k)
            offsets.push_back(static_cast<double>(onsets[static_cast<std::size_t>(k)]) -
                              k * intervalUs);
        std::nth_element(offsets.begin(), offsets.begin() + 50, offsets.end());
        const double start = offsets[50];
        std::vector<double> errorsMs;
        for (int k = 0; k < kSteps; ++k) {
            const double ideal = start + k * intervalUs;
            errorsMs.push_back((static_cast<double>(onsets[static_cast<std::size_t>(k)]) - ideal) /
                               1000.0);
        }
        state.counters["first_onset_offset_ms"] = (static_cast<double>(onsets[0]) - start) / 1000.0;
        std::vector<double> absolute(errorsMs.size());
        std::transform(errorsMs.begin(), errorsMs.end(), absolute.begin(),
                       [](double e) { return std::abs(e); });
        std::sort(absolute.begin(), absolute.end());
        const auto percentile = [&absolute](double p) {
            return absolute[static_cast<std::size_t>(p * static_cast<double>(absolute.size() - 1))];
        };
        // Drift: where the last 100 onsets sit on average, against the ideal schedule.
        double tail = 0;
        for (int k = kSteps - 100; k < kSteps; ++k)
            tail += errorsMs[static_cast<std::size_t>(k)];
        {
            std::vector<double> sendErrors;
            for (int k = 0; k < kSteps && k < static_cast<int>(sent.size()); ++k) {
                const double ideal = static_cast<double>(sent[0]) + k * intervalUs;
                sendErrors.push_back(
                    std::abs(static_cast<double>(sent[static_cast<std::size_t>(k)]) - ideal) /
                    1000.0);
            }
            std::sort(sendErrors.begin(), sendErrors.end());
            if (!sendErrors.empty()) {
                state.counters["send_p99_error_ms"] = sendErrors[static_cast<std::size_t>(
                    0.99 * static_cast<double>(sendErrors.size() - 1))];
                state.counters["send_last_error_ms"] =
                    (static_cast<double>(sent[sendErrors.size() - 1]) -
                     (static_cast<double>(sent[0]) +
                      static_cast<double>(sendErrors.size() - 1) * intervalUs)) /
                    1000.0;
            }
        }
        {
            // The same onsets on the system's monotonic clock (when the receiving cycle ran):
            // tells the dummy backend's frame clock, which runs a little off, from the player.
            const std::vector<jack_time_t> wakes = receiver.wakes();
            std::vector<double> wakeOffsets;
            for (int k = 0; k < 100; ++k)
                wakeOffsets.push_back(static_cast<double>(wakes[static_cast<std::size_t>(k)]) -
                                      k * intervalUs);
            std::nth_element(wakeOffsets.begin(), wakeOffsets.begin() + 50, wakeOffsets.end());
            std::vector<double> wakeErrors;
            double tailWake = 0;
            for (int k = 0; k < kSteps; ++k) {
                const double error = (static_cast<double>(wakes[static_cast<std::size_t>(k)]) -
                                      wakeOffsets[50] - k * intervalUs) /
                                     1000.0;
                wakeErrors.push_back(std::abs(error));
                if (k >= kSteps - 100)
                    tailWake += error;
            }
            std::sort(wakeErrors.begin(), wakeErrors.end());
            state.counters["clock_p99_onset_error_ms"] =
                wakeErrors[static_cast<std::size_t>(0.99 * (kSteps - 1))];
            state.counters["clock_drift_ms"] = tailWake / 100.0;
            // Send to arrival, message by message, on the same clock: JACK's share of the error.
            std::vector<double> latencies;
            for (int k = 0; k < kSteps && k < static_cast<int>(sent.size()); ++k)
                latencies.push_back((static_cast<double>(wakes[static_cast<std::size_t>(k)]) -
                                     static_cast<double>(sent[static_cast<std::size_t>(k)])) /
                                    1000.0);
            std::sort(latencies.begin(), latencies.end());
            if (!latencies.empty()) {
                state.counters["latency_p50_ms"] = latencies[latencies.size() / 2];
                state.counters["latency_p99_ms"] = latencies[static_cast<std::size_t>(
                    0.99 * static_cast<double>(latencies.size() - 1))];
            }
        }
        state.counters["p50_onset_error_ms"] = percentile(0.50);
        state.counters["p99_onset_error_ms"] = percentile(0.99);
        state.counters["max_onset_error_ms"] = absolute.back();
        state.counters["drift_ms"] = tail / 100.0;
        state.counters["steps"] = kSteps;
        state.counters["interval_ms"] = intervalUs / 1000.0;
    }
    stopServer();
    unsetenv("JACK_DEFAULT_SERVER");
}

} // namespace

BENCHMARK(BM_LivePlaybackOnsetTiming)->Iterations(1)->Unit(benchmark::kSecond);

BENCHMARK_MAIN();
