#include "midi/RtMidiOutPort.h"

#include "midi/CMIDIOutException.h"
#include "midi/JackWatch.h"
#include "midi/RtMidiSystems.h"

#include <RtMidi.h>

#include <optional>

namespace midi {

namespace {

constexpr const char* kClientName = "Tonalmancer";
constexpr const char* kOutputPortName = "midi_out";

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
    std::unique_ptr<JackWatch> jackWatch;
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
    return RtMidiSystems::stableName(api, portName);
}

std::vector<std::string> RtMidiOutPort::portNames()
{
    std::vector<std::string> names;
    for (const RtMidiSystems::System& system : RtMidiSystems::running()) {
        const std::unique_ptr<QuietOutput> output =
            QuietOutput::create(static_cast<RtMidi::Api>(system.api));
        if (!output)
            continue;
        try {
            const unsigned count = output->out->getPortCount();
            for (unsigned i = 0; i < count; ++i) {
                const std::string portName = output->out->getPortName(i);
                if (!portName.empty())
                    names.push_back(stableName(system.label, portName));
            }
        } catch (...) {
            // A system that fails while listing contributes no ports.
        }
    }
    return names;
}

std::unique_ptr<RtMidiOutPort> RtMidiOutPort::open(const std::string& name)
{
    for (const RtMidiSystems::System& system : RtMidiSystems::running()) {
        const std::string prefix = system.label + ": ";
        if (name.compare(0, prefix.size(), prefix) != 0)
            continue;
        const auto api = static_cast<RtMidi::Api>(system.api);
        std::unique_ptr<QuietOutput> output = QuietOutput::create(api);
        if (!output)
            return nullptr;
        try {
            const unsigned count = output->out->getPortCount();
            for (unsigned i = 0; i < count; ++i) {
                const std::string portName = output->out->getPortName(i);
                if (stableName(system.label, portName) != name)
                    continue;
                output->error.clear();
                output->out->openPort(i, kOutputPortName);
                if (!output->out->isPortOpen() || !output->error.empty())
                    return nullptr;
                auto impl = std::make_unique<Impl>();
                if (api == RtMidi::UNIX_JACK)
                    impl->jackWatch = std::make_unique<JackWatch>(portName);
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
    sendShort(bytes.data(), bytes.size(), kNow);
}

void RtMidiOutPort::sendShort(const std::uint8_t* bytes, std::size_t size, std::int64_t)
{
    if (m_impl->jackWatch) {
        if (const std::optional<std::string> failure = m_impl->jackWatch->failure())
            throw CMIDIOutException(*failure);
    }
    QuietOutput& output = *m_impl->output;
    output.error.clear();
    try {
        output.out->sendMessage(bytes, size);
    } catch (const RtMidiError& error) {
        throw CMIDIOutException(error.getMessage());
    }
    if (!output.error.empty())
        throw CMIDIOutException(output.error);
}

} // namespace midi
