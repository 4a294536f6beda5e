#include "midi/JackMidiOutPort.h"

#if defined(TM_HAVE_NATIVE_JACK) && defined(__linux__)

#include "midi/CMIDIOutException.h"
#include "midi/FrameClock.h"
#include "midi/JackWatch.h"
#include "midi/SpscRing.h"

#include <jack/jack.h>
#include <jack/midiport.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <optional>
#include <thread>

namespace midi {

namespace {

constexpr const char* kClientName = "Tonalmancer";
constexpr const char* kOutputPortName = "midi_out";
/** Longest wait for JACK to take what is queued: a full ring, or the last messages at close. */
constexpr auto kDrainTimeout = std::chrono::milliseconds(500);

/** A short message and the microsecond on JACK's clock it is due at (0: at once). */
struct TimedMessage
{
    jack_time_t dueUs = 0;
    std::array<std::uint8_t, 3> bytes{};
    std::uint8_t size = 0;
};

/** A system-exclusive message; the program sends none, so a few small slots are plenty. */
struct LongMessage
{
    std::uint16_t size = 0;
    std::array<std::uint8_t, 1024> bytes{};
};

std::int64_t steadyMicroseconds()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace

struct JackMidiOutPort::Impl
{
    jack_client_t* client = nullptr;
    jack_port_t* port = nullptr;
    std::unique_ptr<JackWatch> watch; // the server and the target port
    /** JACK's clock minus steady_clock, in microseconds (JACK 2 keeps an origin of its own). */
    std::int64_t clockOffsetUs = 0;
    std::atomic<std::int64_t> periodNs{0};
    FrameClock frameClock;                  // the process callback's own, set up at open
    std::atomic<bool> flushing{false};      // deliver everything at once, due or not
    std::atomic<bool> shutDown{false};      // our client was thrown out by the server
    std::atomic<bool> overrun{false};       // the server reported a late cycle: relearn the frames
    std::atomic<jack_nframes_t> newRate{0}; // a sample rate the server changed to, not yet taken
    bool active = false;                    // the process callback runs
    std::atomic<std::uint64_t> cycles{0};
    SpscRing<TimedMessage, 4096> messages; // the sending thread to the process callback
    SpscRing<LongMessage, 8> longMessages; // the device's worker to the process callback

    static int process(jack_nframes_t frames, void* arg)
    {
        static_cast<Impl*>(arg)->writeCycle(frames);
        return 0;
    }

    /** JACK's real-time thread: no lock, no allocation, nothing that waits. */
    void writeCycle(jack_nframes_t frames)
    {
        void* buffer = jack_port_get_buffer(port, frames);
        jack_midi_clear_buffer(buffer);
        // Where the frames stand against JACK's clock, from this cycle's first frame and the
        // moment this thread woke (JACK's own period estimate wanders by frames after an overrun).
        if (const jack_nframes_t rate = newRate.exchange(0, std::memory_order_acq_rel))
            frameClock.setSampleRate(rate);
        if (overrun.exchange(false, std::memory_order_acq_rel))
            frameClock.forget();
        frameClock.observeCycle(jack_last_frame_time(client),
                                static_cast<std::int64_t>(jack_get_time()));
        const bool now = flushing.load(std::memory_order_acquire);
        while (const LongMessage* m = longMessages.front()) {
            if (jack_midi_event_write(buffer, 0, m->bytes.data(), m->size) != 0)
                break; // the buffer is full: the rest goes in the next cycle
            longMessages.pop();
        }
        jack_nframes_t offset = 0; // events of a cycle must not go back in time
        while (const TimedMessage* m = messages.front()) {
            if (!now && m->dueUs != 0) {
                const std::int64_t ahead =
                    frameClock.framesFromCycleStart(static_cast<std::int64_t>(m->dueUs));
                if (ahead >= static_cast<std::int64_t>(frames))
                    break; // due in a later cycle, and so is everything behind it
                if (ahead > static_cast<std::int64_t>(offset))
                    offset = static_cast<jack_nframes_t>(ahead);
            }
            if (jack_midi_event_write(buffer, offset, m->bytes.data(), m->size) != 0)
                break;
            messages.pop();
        }
        cycles.fetch_add(1, std::memory_order_release);
    }

    static int onBufferSize(jack_nframes_t frames, void* arg)
    {
        auto* self = static_cast<Impl*>(arg);
        const jack_nframes_t rate = jack_get_sample_rate(self->client);
        if (rate != 0)
            self->periodNs = static_cast<std::int64_t>(frames) * 1'000'000'000 / rate;
        return 0;
    }

    static int onSampleRate(jack_nframes_t rate, void* arg)
    {
        auto* self = static_cast<Impl*>(arg);
        self->newRate.store(rate, std::memory_order_release);
        onBufferSize(jack_get_buffer_size(self->client), arg);
        return 0;
    }

    static int onXrun(void* arg)
    {
        static_cast<Impl*>(arg)->overrun.store(true, std::memory_order_release);
        return 0;
    }

    static void onShutdown(jack_status_t, const char*, void* arg)
    {
        static_cast<Impl*>(arg)->shutDown = true;
    }

    /** The watch is asked from the sending thread only (JackWatch is not shared). */
    void throwIfGone(bool askWatch)
    {
        if (askWatch) {
            if (const std::optional<std::string> failure = watch->failure())
                throw CMIDIOutException(*failure);
        }
        if (shutDown.load())
            throw CMIDIOutException("The JACK server has shut down.");
    }

    /** Waits (not on a real-time thread) until `done` or the timeout; false on the timeout. */
    template <typename Done> bool waitFor(Done done)
    {
        const auto until = std::chrono::steady_clock::now() + kDrainTimeout;
        while (!done()) {
            if (shutDown.load() || std::chrono::steady_clock::now() >= until)
                return false;
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
        return true;
    }
};

JackMidiOutPort::JackMidiOutPort(std::unique_ptr<Impl> impl) : m_impl(std::move(impl))
{}

JackMidiOutPort::~JackMidiOutPort()
{
    Impl& d = *m_impl;
    // Everything still queued goes out in the next cycle; one more cycle lets the receiver run.
    d.flushing = true;
    if (d.active && d.waitFor([&d] { return d.messages.empty() && d.longMessages.empty(); })) {
        const std::uint64_t seen = d.cycles.load();
        d.waitFor([&d, seen] { return d.cycles.load() > seen; });
    }
    jack_client_close(d.client);
}

std::unique_ptr<JackMidiOutPort> JackMidiOutPort::open(const std::string& portName)
{
    if (!JackWatch::serverRunning()) // also keeps libjack quiet
        return nullptr;
    auto impl = std::make_unique<Impl>();
    jack_status_t status{};
    impl->client = jack_client_open(kClientName, JackNoStartServer, &status);
    if (impl->client == nullptr)
        return nullptr;
    std::unique_ptr<JackMidiOutPort> result(new JackMidiOutPort(std::move(impl)));
    Impl& d = *result->m_impl;
    d.port =
        jack_port_register(d.client, kOutputPortName, JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
    jack_port_t* target = jack_port_by_name(d.client, portName.c_str());
    if (d.port == nullptr || target == nullptr ||
        (jack_port_flags(target) & JackPortIsInput) == 0 ||
        std::strcmp(jack_port_type(target), JACK_DEFAULT_MIDI_TYPE) != 0) {
        return nullptr; // the destructor closes the client
    }
    d.frameClock.setSampleRate(jack_get_sample_rate(d.client));
    Impl::onBufferSize(jack_get_buffer_size(d.client), &d);
    // Both clocks are read back to back a few times; the closest pair gives the offset.
    std::int64_t bestGap = INT64_MAX;
    for (int i = 0; i < 5; ++i) {
        const std::int64_t before = steadyMicroseconds();
        const auto jackNow = static_cast<std::int64_t>(jack_get_time());
        const std::int64_t after = steadyMicroseconds();
        if (after - before < bestGap) {
            bestGap = after - before;
            d.clockOffsetUs = jackNow - (before + after) / 2;
        }
    }
    jack_set_process_callback(d.client, &Impl::process, &d);
    jack_set_buffer_size_callback(d.client, &Impl::onBufferSize, &d);
    jack_set_sample_rate_callback(d.client, &Impl::onSampleRate, &d);
    jack_set_xrun_callback(d.client, &Impl::onXrun, &d);
    jack_on_info_shutdown(d.client, &Impl::onShutdown, &d);
    if (jack_activate(d.client) != 0)
        return nullptr;
    d.active = true;
    const int connected = jack_connect(d.client, jack_port_name(d.port), portName.c_str());
    if (connected != 0 && connected != EEXIST)
        return nullptr;
    d.watch = std::make_unique<JackWatch>(portName);
    return result;
}

void JackMidiOutPort::sendMessage(const std::vector<std::uint8_t>& bytes)
{
    if (bytes.size() <= 3) {
        sendShort(bytes.data(), bytes.size(), kNow);
        return;
    }
    Impl& d = *m_impl;
    d.throwIfGone(false);
    LongMessage message;
    if (bytes.size() > message.bytes.size())
        throw CMIDIOutException("The message is too long for a JACK MIDI port.");
    message.size = static_cast<std::uint16_t>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), message.bytes.begin());
    if (!d.waitFor([&] { return d.longMessages.push(message); }))
        throw CMIDIOutException("The JACK server does not take the messages in time.");
}

void JackMidiOutPort::sendShort(const std::uint8_t* bytes, std::size_t size, std::int64_t dueNs)
{
    Impl& d = *m_impl;
    d.throwIfGone(true);
    TimedMessage message;
    if (dueNs != kNow)
        message.dueUs =
            static_cast<jack_time_t>(std::max<std::int64_t>(1, dueNs / 1000 + d.clockOffsetUs));
    message.size = static_cast<std::uint8_t>(std::min<std::size_t>(size, message.bytes.size()));
    std::copy(bytes, bytes + message.size, message.bytes.begin());
    if (d.messages.push(message))
        return;
    // Full: only when the server has stopped taking messages for a while.
    if (!d.waitFor([&] { return d.messages.push(message); }))
        throw CMIDIOutException("The JACK server does not take the messages in time.");
}

std::int64_t JackMidiOutPort::lookaheadNs() const
{
    return m_impl->periodNs.load() + kScheduleMarginNs;
}

} // namespace midi

#else

namespace midi {

struct JackMidiOutPort::Impl
{};

JackMidiOutPort::JackMidiOutPort(std::unique_ptr<Impl> impl) : m_impl(std::move(impl))
{}

JackMidiOutPort::~JackMidiOutPort() = default;

std::unique_ptr<JackMidiOutPort> JackMidiOutPort::open(const std::string&)
{
    return nullptr;
}

void JackMidiOutPort::sendMessage(const std::vector<std::uint8_t>&)
{}

void JackMidiOutPort::sendShort(const std::uint8_t*, std::size_t, std::int64_t)
{}

std::int64_t JackMidiOutPort::lookaheadNs() const
{
    return 0;
}

} // namespace midi

#endif
