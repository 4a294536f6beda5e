#pragma once

#include "midi/MidiInPort.h"
#include "music/Result.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace midi {

/**
 * An input port of one of the MIDI systems that RtMidi reaches here (ALSA and JACK on Linux,
 * WinMM on Windows, CoreMIDI on macOS), named as the output ports are: "API: port name" without
 * ALSA's volatile client and port numbers.
 *
 * The system's thread only copies each message into a queue; a thread of the port's own takes
 * them out and calls the handlers, so a slow handler never holds up the system (JACK calls from
 * its real-time thread). The same thread checks every kWatchInterval that the device is still
 * there: a JACK server that shuts down or a JACK port that goes away, an ALSA port that
 * disappears (the device is unplugged), or an error RtMidi reports ends input with a message.
 * Nothing is printed.
 */
class RtMidiInPort : public MidiInPort
{
public:
    static constexpr std::chrono::milliseconds kWatchInterval{100};

    ~RtMidiInPort() override;
    RtMidiInPort(const RtMidiInPort&) = delete;
    RtMidiInPort& operator=(const RtMidiInPort&) = delete;

    /** The names of every input port of every running MIDI system. */
    static std::vector<std::string> portNames();
    /** Opens the port called `name` (as listed by portNames); see MidiInPortList::open. */
    static music::Result open(const std::string& name, Handlers handlers,
                              std::unique_ptr<RtMidiInPort>& port);

    const std::string& name() const override;

    /** The ALSA client and port numbers at the end of RtMidi's port name ("Keys:Keys 1 20:0"). */
    static std::optional<std::pair<int, int>> alsaAddress(std::string_view portName);

private:
    struct Impl;
    explicit RtMidiInPort(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> m_impl;
};

} // namespace midi
