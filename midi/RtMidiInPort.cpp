#include "midi/RtMidiInPort.h"

#include "midi/JackWatch.h"
#include "midi/RtMidiSystems.h"

#include <RtMidi.h>

#include <array>
#include <charconv>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

#ifdef TM_HAVE_ALSA
#include <alsa/asoundlib.h>
#endif

namespace midi {

namespace {

constexpr const char* kClientName = "Tonalmancer input";
constexpr const char* kInputPortName = "midi_in";
constexpr std::size_t kQueueSize = 1024; // far more than hands play between two wake-ups

/** Notices an ALSA port that disappears, as it does when its device is unplugged. */
class AlsaWatch
{
public:
#ifdef TM_HAVE_ALSA
    AlsaWatch(int client, int port) : m_client(client), m_port(port)
    {
        if (snd_seq_open(&m_sequencer, "default", SND_SEQ_OPEN_DUPLEX, SND_SEQ_NONBLOCK) < 0)
            m_sequencer = nullptr;
    }
    ~AlsaWatch()
    {
        if (m_sequencer != nullptr)
            snd_seq_close(m_sequencer);
    }
    bool portGone() const
    {
        if (m_sequencer == nullptr)
            return false;
        snd_seq_port_info_t* info = nullptr;
        snd_seq_port_info_alloca(&info);
        return snd_seq_get_any_port_info(m_sequencer, m_client, m_port, info) < 0;
    }

private:
    snd_seq_t* m_sequencer = nullptr;
    int m_client;
    int m_port;
#else
    AlsaWatch(int, int)
    {}
    bool portGone() const
    {
        return false;
    }
#endif
    AlsaWatch(const AlsaWatch&) = delete;
    AlsaWatch& operator=(const AlsaWatch&) = delete;
};

void ignoreErrors(RtMidiError::Type, const std::string&, void*)
{}

} // namespace

struct RtMidiInPort::Impl
{
    std::string name;
    Handlers handlers;
    std::unique_ptr<RtMidiIn> in;
    std::unique_ptr<JackWatch> jackWatch;
    std::unique_ptr<AlsaWatch> alsaWatch;
    std::thread thread;

    std::mutex mutex; // guards what follows, shared with the system's thread
    std::condition_variable wake;
    std::array<MidiInputEvent, kQueueSize> queue{};
    std::size_t head = 0;
    std::size_t count = 0;
    std::string systemError;
    bool stopping = false;

    Impl() = default;
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;
    /** The system's thread stops before the queue and its lock go. */
    ~Impl()
    {
        try {
            in.reset();
        } catch (...) {
        }
    }

    /** On the system's thread: keep the message, wake the port's thread. */
    static void onMessage(double, std::vector<unsigned char>* message, void* arg)
    {
        if (message == nullptr)
            return;
        const auto event = MidiInputEvent::fromBytes(message->data(), message->size());
        if (!event)
            return;
        auto* self = static_cast<Impl*>(arg);
        {
            const std::lock_guard<std::mutex> lock(self->mutex);
            if (self->count == kQueueSize)
                return;
            self->queue[(self->head + self->count) % kQueueSize] = *event;
            ++self->count;
        }
        self->wake.notify_one();
    }

    static void onError(RtMidiError::Type type, const std::string& text, void* arg)
    {
        if (type == RtMidiError::WARNING || type == RtMidiError::DEBUG_WARNING)
            return;
        auto* self = static_cast<Impl*>(arg);
        {
            const std::lock_guard<std::mutex> lock(self->mutex);
            if (self->systemError.empty())
                self->systemError = text.empty() ? "The MIDI input failed." : text;
        }
        self->wake.notify_one();
    }

    /** Why the device can no longer be used; nothing while it is there. */
    std::optional<std::string> failure()
    {
        if (jackWatch) {
            if (std::optional<std::string> gone = jackWatch->failure())
                return gone;
        }
        if (alsaWatch && alsaWatch->portGone())
            return "The MIDI input device \"" + name + "\" has gone away.";
        return std::nullopt;
    }

    /** The port's own thread: hands the events on and watches the device. */
    void run()
    {
        std::array<MidiInputEvent, kQueueSize> batch{};
        auto nextCheck = std::chrono::steady_clock::now() + kWatchInterval;
        for (;;) {
            std::size_t taken = 0;
            std::string error;
            {
                std::unique_lock<std::mutex> lock(mutex);
                wake.wait_until(lock, nextCheck,
                                [this] { return stopping || count > 0 || !systemError.empty(); });
                if (stopping)
                    return;
                for (; count > 0; --count, head = (head + 1) % kQueueSize)
                    batch[taken++] = queue[head];
                error = systemError;
            }
            for (std::size_t i = 0; i < taken; ++i) {
                if (handlers.event)
                    handlers.event(batch[i]);
            }
            const auto now = std::chrono::steady_clock::now();
            if (error.empty() && now >= nextCheck) {
                error = failure().value_or("");
                nextCheck = now + kWatchInterval;
            }
            if (!error.empty()) {
                if (handlers.ended)
                    handlers.ended(error);
                return;
            }
        }
    }
};

RtMidiInPort::RtMidiInPort(std::unique_ptr<Impl> impl) : m_impl(std::move(impl))
{}

RtMidiInPort::~RtMidiInPort()
{
    // The system's thread first, so that nothing is queued any more; then the port's own.
    try {
        m_impl->in.reset();
    } catch (...) {
    }
    {
        const std::lock_guard<std::mutex> lock(m_impl->mutex);
        m_impl->stopping = true;
    }
    m_impl->wake.notify_all();
    if (m_impl->thread.joinable())
        m_impl->thread.join();
}

const std::string& RtMidiInPort::name() const
{
    return m_impl->name;
}

std::optional<std::pair<int, int>> RtMidiInPort::alsaAddress(std::string_view portName)
{
    const std::size_t blank = portName.find_last_of(' ');
    if (blank == std::string_view::npos)
        return std::nullopt;
    const std::string_view tail = portName.substr(blank + 1);
    const std::size_t colon = tail.find(':');
    if (colon == std::string_view::npos || colon == 0 || colon + 1 == tail.size())
        return std::nullopt;
    int client = 0;
    int port = 0;
    const char* end = tail.data() + tail.size();
    const auto [afterClient, e1] = std::from_chars(tail.data(), tail.data() + colon, client);
    const auto [afterPort, e2] = std::from_chars(tail.data() + colon + 1, end, port);
    if (e1 != std::errc() || e2 != std::errc() || afterClient != tail.data() + colon ||
        afterPort != end)
        return std::nullopt;
    return std::make_pair(client, port);
}

std::vector<std::string> RtMidiInPort::portNames()
{
    std::vector<std::string> names;
    for (const RtMidiSystems::System& system : RtMidiSystems::running()) {
        try {
            RtMidiIn in(static_cast<RtMidi::Api>(system.api), kClientName);
            in.setErrorCallback(ignoreErrors, nullptr);
            const unsigned count = in.getPortCount();
            for (unsigned i = 0; i < count; ++i) {
                const std::string portName = in.getPortName(i);
                if (!portName.empty())
                    names.push_back(RtMidiSystems::stableName(system.label, portName));
            }
        } catch (...) {
            // A system that fails while listing contributes no ports.
        }
    }
    return names;
}

music::Result RtMidiInPort::open(const std::string& name, Handlers handlers,
                                 std::unique_ptr<RtMidiInPort>& port)
{
    const auto refused = [&name](const std::string& why) {
        return music::Result::failure("Unable to open the MIDI input device \"" + name +
                                      "\": " + why);
    };
    for (const RtMidiSystems::System& system : RtMidiSystems::running()) {
        if (name.compare(0, system.label.size() + 2, system.label + ": ") != 0)
            continue;
        const auto api = static_cast<RtMidi::Api>(system.api);
        auto impl = std::make_unique<Impl>();
        impl->name = name;
        impl->handlers = std::move(handlers);
        try {
            impl->in = std::make_unique<RtMidiIn>(api, kClientName);
            impl->in->setErrorCallback(&Impl::onError, impl.get());
            const unsigned count = impl->in->getPortCount();
            unsigned index = count;
            std::string portName;
            for (unsigned i = 0; i < count && index == count; ++i) {
                portName = impl->in->getPortName(i);
                if (RtMidiSystems::stableName(system.label, portName) == name)
                    index = i;
            }
            if (index == count)
                break;
            impl->in->ignoreTypes(true, true, true);
            impl->in->setCallback(&Impl::onMessage, impl.get());
            impl->in->openPort(index, kInputPortName);
            {
                const std::lock_guard<std::mutex> lock(impl->mutex);
                if (!impl->systemError.empty())
                    return refused(impl->systemError);
            }
            if (!impl->in->isPortOpen())
                return refused("the system did not open it.");
            if (api == RtMidi::UNIX_JACK)
                impl->jackWatch = std::make_unique<JackWatch>(portName);
            if (const auto address = alsaAddress(portName); address && api == RtMidi::LINUX_ALSA)
                impl->alsaWatch = std::make_unique<AlsaWatch>(address->first, address->second);
        } catch (const RtMidiError& error) {
            return refused(error.getMessage());
        } catch (const std::exception& error) {
            return refused(error.what());
        }
        Impl* running = impl.get();
        try {
            running->thread = std::thread([running] { running->run(); });
        } catch (const std::system_error& error) {
            return refused(error.what());
        }
        port.reset(new RtMidiInPort(std::move(impl)));
        return music::Result::success();
    }
    return music::Result::failure("No MIDI input device is called \"" + name + "\".");
}

} // namespace midi
