#pragma once

#include "midi/MidiOutPort.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace midi {

/**
 * An output port of one of the MIDI systems that RtMidi reaches here (ALSA and JACK on Linux,
 * WinMM on Windows, CoreMIDI on macOS). Ports are named "API: port name", with the volatile
 * client and port numbers that ALSA appends removed, so a name survives a restart.
 *
 * Nothing is printed: systems that are not running (no JACK server, no ALSA sequencer) are
 * skipped before RtMidi is asked, and RtMidi's errors come back as exceptions.
 */
class RtMidiOutPort : public MidiOutPort
{
public:
    ~RtMidiOutPort() override;
    RtMidiOutPort(const RtMidiOutPort&) = delete;
    RtMidiOutPort& operator=(const RtMidiOutPort&) = delete;

    /** The names of every output port of every running MIDI system, in a fixed API order. */
    static std::vector<std::string> portNames();
    /** Opens the port called `name` (as listed by portNames); nothing when that fails. */
    static std::unique_ptr<RtMidiOutPort> open(const std::string& name);

    /** "API: port name" from RtMidi's port name; ALSA's trailing "client:port" numbers go. */
    static std::string stableName(std::string_view api, std::string_view portName);

    /** Throws CMIDIOutException with RtMidi's text, or the JACK server's reason for leaving. */
    void sendMessage(const std::vector<std::uint8_t>& bytes) override;
    /** Sends at once, without copying the bytes; the due time is not used. */
    void sendShort(const std::uint8_t* bytes, std::size_t size, std::int64_t dueNs) override;

private:
    struct Impl;
    explicit RtMidiOutPort(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> m_impl;
};

} // namespace midi
