#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace midi {

/**
 * The MIDI systems that RtMidi reaches here and that are running now. Systems that are not
 * running (no JACK server, no ALSA sequencer) are found out before RtMidi is asked, so that
 * nothing is printed. Shared by the output and input ports; internal to the midi library.
 */
class RtMidiSystems
{
public:
    struct System
    {
        int api;           // an RtMidi::Api value
        std::string label; // "ALSA", "JACK", "WinMM", "CoreMIDI"
    };

    /** The running systems in RtMidi's fixed order of compiled APIs. */
    static std::vector<System> running();

    /** "API: port name" from RtMidi's port name; ALSA's trailing "client:port" numbers go. */
    static std::string stableName(std::string_view label, std::string_view portName);
};

} // namespace midi
