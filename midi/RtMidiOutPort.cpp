#include "midi/RtMidiOutPort.h"

#include "midi/CMIDIOutException.h"

#include <RtMidi.h>

#include <atomic>
#include <cctype>
#include <mutex>
#include <optional>

#ifdef TM_HAVE_JACK
#include <jack/jack.h>
#endif
#ifdef TM_HAVE_ALSA
#include <alsa/asoundlib.h>
#endif

namespace midi {

namespace {

constexpr const char* kClientName = "Tonalmancer";
constexpr const char* kOutputPortName = "midi_out";

#ifdef TM_HAVE_JACK
void ignoreJackText(const char*)
{}

/** libjack prints every failed connection attempt; the program reports failures itself. */
void silenceJack()
{
    static std::once_flag once;
    std::call_once(once, [] {
        jack_set_error_function(ignoreJackText);
        jack_set_info_function(ignoreJackText);
    });
}

bool jackServerRunning()
{
    silenceJack();
    jack_status_t status{};
    jack_client_t* client = jack_client_open("Tonalmancer probe", JackNoStartServer, &status);
    if (client == nullptr)
        return false;
    jack_client_close(client);
    return true;
}

/**
 * Watches the JACK server and the destination port while a JACK port is open: RtMidi keeps
 * accepting messages after the server has gone, so without this nobody would notice.
 */
class JackWatch
{
public:
    explicit JackWatch(std::string destination) : m_destination(std::move(destination))
    {
        jack_status_t status{};
        m_client = jack_client_open("Tonalmancer monitor", JackNoStartServer, &status);
        if (m_client == nullptr)
            return;
        jack_on_info_shutdown(m_client, &JackWatch::onShutdown, this);
        jack_set_port_registration_callback(m_client, &JackWatch::onPortRegistration, this);
        jack_activate(m_client);
    }
    ~JackWatch()
    {
        if (m_client != nullptr)
            jack_client_close(m_client);
    }
    JackWatch(const JackWatch&) = delete;
    JackWatch& operator=(const JackWatch&) = delete;

    /** The reason the port can no longer be used; nothing while all is well. */
    std::optional<std::string> failure()
    {
        if (m_client == nullptr)
            return std::nullopt;
        if (m_serverGone.load()) {
            const std::lock_guard<std::mutex> lock(m_mutex);
            return m_reason.empty() ? std::string("The JACK server has shut down.") : m_reason;
        }
        if (m_portsChanged.exchange(false) &&
            jack_port_by_name(m_client, m_destination.c_str()) == nullptr) {
            m_portGone = true;
        }
        if (m_portGone)
            return "The JACK port " + m_destination + " has gone away.";
        return std::nullopt;
    }

private:
    static void onShutdown(jack_status_t, const char* reason, void* arg)
    {
        auto* self = static_cast<JackWatch*>(arg);
        {
            const std::lock_guard<std::mutex> lock(self->m_mutex);
            self->m_reason = reason != nullptr ? reason : "";
        }
        self->m_serverGone = true;
    }
    static void onPortRegistration(jack_port_id_t, int registered, void* arg)
    {
        if (registered == 0)
            static_cast<JackWatch*>(arg)->m_portsChanged = true;
    }

    std::string m_destination;
    jack_client_t* m_client = nullptr;
    std::atomic<bool> m_serverGone{false};
    std::atomic<bool> m_portsChanged{false};
    bool m_portGone = false;
    std::mutex m_mutex; // guards m_reason, written on JACK's notification thread
    std::string m_reason;
};
#endif

#ifdef TM_HAVE_ALSA
void ignoreAlsaText(const char*, int, const char*, int, const char*, ...)
{}

bool alsaSequencerAvailable()
{
    snd_lib_error_set_handler(ignoreAlsaText);
    snd_seq_t* sequencer = nullptr;
    if (snd_seq_open(&sequencer, "default", SND_SEQ_OPEN_OUTPUT, 0) < 0)
        return false;
    snd_seq_close(sequencer);
    return true;
}
#endif

const char* apiLabel(RtMidi::Api api)
{
    switch (api) {
    case RtMidi::LINUX_ALSA:
        return "ALSA";
    case RtMidi::UNIX_JACK:
        return "JACK";
    case RtMidi::WINDOWS_MM:
        return "WinMM";
    case RtMidi::MACOSX_CORE:
        return "CoreMIDI";
    default:
        return nullptr;
    }
}

/** The APIs worth asking now: compiled in, not the dummy, and with their system running. */
std::vector<RtMidi::Api> runningApis()
{
    std::vector<RtMidi::Api> compiled;
    RtMidi::getCompiledApi(compiled);
    std::vector<RtMidi::Api> running;
    for (const RtMidi::Api api : compiled) {
        if (apiLabel(api) == nullptr)
            continue;
#ifdef TM_HAVE_ALSA
        if (api == RtMidi::LINUX_ALSA && !alsaSequencerAvailable())
            continue;
#endif
#ifdef TM_HAVE_JACK
        if (api == RtMidi::UNIX_JACK && !jackServerRunning())
            continue;
#endif
        running.push_back(api);
    }
    return running;
}

void recordError(RtMidiError::Type type, const std::string& text, void* userData);

/** An RtMidi output of one API whose errors are collected instead of thrown or printed. */
struct QuietOutput
{
    std::unique_ptr<RtMidiOut> out;
    std::string error;

    static std::unique_ptr<QuietOutput> create(RtMidi::Api api)
    {
        auto result = std::make_unique<QuietOutput>();
        try {
            result->out = std::make_unique<RtMidiOut>(api, kClientName);
            result->out->setErrorCallback(recordError, result.get());
        } catch (...) {
            return nullptr;
        }
        return result;
    }
};

void recordError(RtMidiError::Type type, const std::string& text, void* userData)
{
    if (type == RtMidiError::DEBUG_WARNING)
        return;
    auto* output = static_cast<QuietOutput*>(userData);
    if (output->error.empty())
        output->error = text;
}

} // namespace

struct RtMidiOutPort::Impl
{
    std::unique_ptr<QuietOutput> output;
#ifdef TM_HAVE_JACK
    std::unique_ptr<JackWatch> jackWatch;
#endif
};

RtMidiOutPort::RtMidiOutPort(std::unique_ptr<Impl> impl) : m_impl(std::move(impl))
{}

RtMidiOutPort::~RtMidiOutPort()
{
    if (m_impl && m_impl->output && m_impl->output->out) {
        try {
            m_impl->output->out->closePort();
        } catch (...) {
        }
    }
}

std::string RtMidiOutPort::stableName(std::string_view api, std::string_view portName)
{
    std::string name(portName);
    if (api == "ALSA") {
        // "Midi Through:Midi Through Port-0 14:0": the numbers change with every start.
        const std::size_t blank = name.find_last_of(' ');
        if (blank != std::string::npos) {
            const std::string_view tail = std::string_view(name).substr(blank + 1);
            const std::size_t colon = tail.find(':');
            const auto allDigits = [](std::string_view text) {
                if (text.empty())
                    return false;
                for (const char c : text) {
                    if (std::isdigit(static_cast<unsigned char>(c)) == 0)
                        return false;
                }
                return true;
            };
            if (colon != std::string_view::npos && allDigits(tail.substr(0, colon)) &&
                allDigits(tail.substr(colon + 1))) {
                name.erase(blank);
            }
        }
    }
    return std::string(api) + ": " + name;
}

std::vector<std::string> RtMidiOutPort::portNames()
{
    std::vector<std::string> names;
    for (const RtMidi::Api api : runningApis()) {
        const std::unique_ptr<QuietOutput> output = QuietOutput::create(api);
        if (!output)
            continue;
        try {
            const unsigned count = output->out->getPortCount();
            for (unsigned i = 0; i < count; ++i) {
                const std::string portName = output->out->getPortName(i);
                if (!portName.empty())
                    names.push_back(stableName(apiLabel(api), portName));
            }
        } catch (...) {
            // A system that fails while listing contributes no ports.
        }
    }
    return names;
}

std::unique_ptr<RtMidiOutPort> RtMidiOutPort::open(const std::string& name)
{
    for (const RtMidi::Api api : runningApis()) {
        const std::string prefix = std::string(apiLabel(api)) + ": ";
        if (name.compare(0, prefix.size(), prefix) != 0)
            continue;
        std::unique_ptr<QuietOutput> output = QuietOutput::create(api);
        if (!output)
            return nullptr;
        try {
            const unsigned count = output->out->getPortCount();
            for (unsigned i = 0; i < count; ++i) {
                const std::string portName = output->out->getPortName(i);
                if (stableName(apiLabel(api), portName) != name)
                    continue;
                output->error.clear();
                output->out->openPort(i, kOutputPortName);
                if (!output->out->isPortOpen() || !output->error.empty())
                    return nullptr;
                auto impl = std::make_unique<Impl>();
#ifdef TM_HAVE_JACK
                if (api == RtMidi::UNIX_JACK)
                    impl->jackWatch = std::make_unique<JackWatch>(portName);
#endif
                impl->output = std::move(output);
                return std::unique_ptr<RtMidiOutPort>(new RtMidiOutPort(std::move(impl)));
            }
        } catch (...) {
            return nullptr;
        }
        return nullptr;
    }
    return nullptr;
}

void RtMidiOutPort::sendMessage(const std::vector<std::uint8_t>& bytes)
{
#ifdef TM_HAVE_JACK
    if (m_impl->jackWatch) {
        if (const std::optional<std::string> failure = m_impl->jackWatch->failure())
            throw CMIDIOutException(*failure);
    }
#endif
    QuietOutput& output = *m_impl->output;
    output.error.clear();
    try {
        output.out->sendMessage(bytes.data(), bytes.size());
    } catch (const RtMidiError& error) {
        throw CMIDIOutException(error.getMessage());
    }
    if (!output.error.empty())
        throw CMIDIOutException(output.error);
}

} // namespace midi
