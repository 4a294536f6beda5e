// The native JACK output against a receiving client on a private dummy JACK server: every event
// lands on the frame of its due time, in order; late events come at once; closing delivers what
// is still queued; a server that goes away makes the next send fail with JACK's reason.

#ifdef TM_TEST_HAVE_JACK

#include "midi/JackMidiOutPort.h"
#include "midi/CMIDIOutException.h"

#include <gtest/gtest.h>
#include <jack/jack.h>
#include <jack/midiport.h>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

std::int64_t nowNs()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch())
        .count();
}

/** Asks `done` every 5 ms for up to two seconds; whether it said yes. */
template <typename Done> bool waitFor(Done done)
{
    for (int i = 0; i < 400; ++i, std::this_thread::sleep_for(std::chrono::milliseconds(5))) {
        if (done())
            return true;
    }
    return false;
}

/** A client "tmrecv" with one MIDI input that keeps every event with its time on JACK's clock. */
class Receiver
{
public:
    struct Event
    {
        std::array<std::uint8_t, 3> bytes{};
        jack_nframes_t frame = 0;
        jack_time_t timeUs = 0; // the event's frame, converted by JACK in the same cycle
    };

    bool open()
    {
        m_client = jack_client_open("tmrecv", JackNoStartServer, nullptr);
        if (m_client == nullptr)
            return false;
        m_port = jack_port_register(m_client, "in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
        jack_set_process_callback(m_client, &Receiver::process, this);
        jack_set_xrun_callback(m_client, &Receiver::xrun, this);
        if (m_port != nullptr && jack_activate(m_client) == 0 &&
            std::string(jack_get_client_name(m_client)) == "tmrecv")
            return true;
        jack_client_close(m_client); // a server still starting: the next try starts afresh
        m_client = nullptr;
        return false;
    }
    ~Receiver()
    {
        if (m_client != nullptr)
            jack_client_close(m_client);
    }
    int count() const { return m_count.load(); }
    /** Cycles the server reported late (its frame counter falls back at each). */
    int xruns() const { return m_xruns.load(); }
    std::vector<Event> events() const { return {m_events.begin(), m_events.begin() + count()}; }
    jack_nframes_t sampleRate() const { return jack_get_sample_rate(m_client); }

private:
    static int process(jack_nframes_t frames, void* arg)
    {
        auto* self = static_cast<Receiver*>(arg);
        void* buffer = jack_port_get_buffer(self->m_port, frames);
        const jack_nframes_t cycleStart = jack_last_frame_time(self->m_client);
        for (std::uint32_t i = 0; i < jack_midi_get_event_count(buffer); ++i) {
            jack_midi_event_t event;
            const int index = self->m_count.load();
            if (jack_midi_event_get(&event, buffer, i) != 0 || index >= kCapacity)
                continue;
            Event& out = self->m_events[static_cast<std::size_t>(index)];
            for (std::size_t b = 0; b < event.size && b < out.bytes.size(); ++b)
                out.bytes[b] = event.buffer[b];
            out.frame = cycleStart + event.time;
            out.timeUs = jack_frames_to_time(self->m_client, out.frame);
            self->m_count.store(index + 1);
        }
        return 0;
    }

    static int xrun(void* arg)
    {
        ++static_cast<Receiver*>(arg)->m_xruns;
        return 0;
    }

    static constexpr int kCapacity = 256;
    jack_client_t* m_client = nullptr;
    jack_port_t* m_port = nullptr;
    std::array<Event, kCapacity> m_events{};
    std::atomic<int> m_count{0};
    std::atomic<int> m_xruns{0};
};

void ignoreJackText(const char*)
{}

class JackMidiOutPortEndToEnd : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (std::system("command -v jackd >/dev/null 2>&1") != 0)
            GTEST_SKIP() << "jackd is not installed";
        jack_set_error_function(ignoreJackText);
        jack_set_info_function(ignoreJackText);
        const char* prefix = std::getenv("TM_JACK_SERVER_PREFIX");
        // One server per test process: the runner starts the tests of this suite side by side.
        m_server = std::string(prefix != nullptr ? prefix : "tmtest") + "-native-" +
                   std::to_string(getpid());
        setenv("JACK_DEFAULT_SERVER", m_server.c_str(), 1);
        setenv("JACK_NO_AUDIO_RESERVATION", "1", 1);
        // Real-time first where allowed: a loaded machine makes a server without it miss cycles.
        for (const char* mode : {"--realtime", "--no-realtime"}) {
            m_jackd = fork();
            if (m_jackd == 0) {
                std::freopen("/dev/null", "w", stdout);
                std::freopen("/dev/null", "w", stderr);
                execlp("jackd", "jackd", mode, "-n", m_server.c_str(), "-d", "dummy", "-r", "48000",
                       "-p", "256", static_cast<char*>(nullptr));
                _exit(127);
            }
            if (waitFor([this] { return m_receiver.open() || !serverAlive(); }) && serverAlive())
                break;
            stopServer();
        }
        ASSERT_GT(m_jackd, 0) << "the dummy JACK server did not start";
    }
    void TearDown() override
    {
        stopServer();
        unsetenv("JACK_DEFAULT_SERVER");
    }

    bool serverAlive() const { return m_jackd > 0 && waitpid(m_jackd, nullptr, WNOHANG) == 0; }
    void stopServer()
    {
        if (m_jackd > 0) {
            kill(m_jackd, SIGTERM);
            waitpid(m_jackd, nullptr, 0);
        }
        m_jackd = -1;
    }

    std::string m_server;
    pid_t m_jackd = -1;
    Receiver m_receiver;
};

void sendNote(midi::JackMidiOutPort& port, std::uint8_t status, std::uint8_t note,
              std::int64_t dueNs)
{
    const std::array<std::uint8_t, 3> bytes = {status, note, 100};
    port.sendShort(bytes.data(), bytes.size(), dueNs);
}

} // namespace

TEST_F(JackMidiOutPortEndToEnd, EveryEventLandsOnTheFrameOfItsDueTimeInOrder)
{
    EXPECT_EQ(midi::JackMidiOutPort::open("tmrecv:nothing"), nullptr);
    std::unique_ptr<midi::JackMidiOutPort> port = midi::JackMidiOutPort::open("tmrecv:in");
    ASSERT_NE(port, nullptr);
    // One period of 256 frames at 48 kHz (5.3 ms) and the margin for the sending thread.
    EXPECT_EQ(port->lookaheadNs(),
              256 * 1'000'000'000LL / 48000 + midi::JackMidiOutPort::kScheduleMarginNs);

    // The port learns where the frames stand from its first cycles, as it does while a player
    // sends its program changes; some twenty periods of that first.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    // Due times 1.7 ms apart, so they fall anywhere inside the periods; then one already late.
    const std::int64_t start = nowNs() + port->lookaheadNs();
    const int xrunsBefore = m_receiver.xruns();
    constexpr int kTimed = 24;
    for (int k = 0; k < kTimed; ++k)
        sendNote(*port, 0x90, static_cast<std::uint8_t>(40 + k), start + k * 1'700'000);
    ASSERT_TRUE(waitFor([this] { return m_receiver.count() == kTimed; }));
    // An overrun sets the frame counter back: then the frames cannot be judged (a busy machine).
    const bool steady = m_receiver.xruns() == xrunsBefore;
    sendNote(*port, 0x80, 99, nowNs() - 20'000'000);
    ASSERT_TRUE(waitFor([this] { return m_receiver.count() == kTimed + 1; }));

    const std::vector<Receiver::Event> got = m_receiver.events();
    const double rate = m_receiver.sampleRate();
    // JACK's clock may run apart from steady_clock by a constant (JACK 2 keeps its own origin):
    // measured here as the port does it, to within the microsecond of two reads.
    const double before = static_cast<double>(nowNs()) / 1000.0;
    const auto jackNow = static_cast<double>(jack_get_time());
    const double offsetUs = jackNow - (before + static_cast<double>(nowNs()) / 1000.0) / 2.0;
    // Between each other the events stand as their due times: each onset is rounded to a frame,
    // and the port's clock keeps learning meanwhile (its level sinks by up to 100 ppm and rises
    // with an earlier wake-up); the clock places each within two frames, their spacing is judged
    // to three (a scheduling fault is off by up to a period, 256 frames). Against JACK's own time
    // of a frame they may all be early or late by the clients' wake-up delay and JACK's period
    // estimate, well under a millisecond.
    for (int k = 0; k < kTimed; ++k) {
        const Receiver::Event& e = got[static_cast<std::size_t>(k)];
        EXPECT_EQ(e.bytes, (std::array<std::uint8_t, 3>{0x90, std::uint8_t(40 + k), 100}));
        const double dueUs = static_cast<double>(start + k * 1'700'000) / 1000.0 + offsetUs;
        EXPECT_NEAR(static_cast<double>(e.timeUs), dueUs, 1000.0) << "event " << k;
        const auto frames = static_cast<double>(static_cast<std::int32_t>(e.frame - got[0].frame));
        if (steady) {
            EXPECT_NEAR(frames, k * 1.7 * rate / 1000.0, 3.0) << "event " << k;
        }
    }
    if (!steady)
        std::printf("note: the server overran meanwhile; the events' frames were not judged\n");
    EXPECT_EQ(got.back().bytes, (std::array<std::uint8_t, 3>{0x80, 99, 100}));
    EXPECT_GE(got.back().timeUs, got[kTimed - 1].timeUs);
}

TEST_F(JackMidiOutPortEndToEnd, ClosingDeliversWhatIsQueuedAtOnceAndALostServerIsReported)
{
    {
        std::unique_ptr<midi::JackMidiOutPort> port = midi::JackMidiOutPort::open("tmrecv:in");
        ASSERT_NE(port, nullptr);
        // Due in ten seconds: only the close brings them out, in the order they were sent.
        const std::int64_t later = nowNs() + 10'000'000'000;
        sendNote(*port, 0x90, 60, later);
        sendNote(*port, 0x80, 60, later + 1'000'000);
        const std::vector<std::uint8_t> sysex = {0xF0, 0x7E, 0x7F, 0x09, 0x01, 0xF7};
        port->sendMessage(sysex);
        const auto closing = Clock::now();
        port.reset();
        EXPECT_LT(Clock::now() - closing, std::chrono::seconds(2));
    }
    ASSERT_EQ(m_receiver.count(), 3);
    const std::vector<Receiver::Event> got = m_receiver.events();
    EXPECT_EQ(got[0].bytes[0], 0xF0); // a long message goes out at the start of the cycle
    EXPECT_EQ(got[1].bytes, (std::array<std::uint8_t, 3>{0x90, 60, 100}));
    EXPECT_EQ(got[2].bytes, (std::array<std::uint8_t, 3>{0x80, 60, 100}));

    std::unique_ptr<midi::JackMidiOutPort> port = midi::JackMidiOutPort::open("tmrecv:in");
    ASSERT_NE(port, nullptr);
    stopServer();
    std::string error;
    waitFor([&] {
        try {
            sendNote(*port, 0x90, 61, midi::MidiOutPort::kNow);
        } catch (const midi::CMIDIOutException& e) {
            error = e.what();
        }
        return !error.empty();
    });
    EXPECT_NE(error.find("JACK"), std::string::npos) << error;
    port.reset(); // does not wait for a server that is gone
}

#endif
