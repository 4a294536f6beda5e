#pragma once

#include "midi/MidiPortList.h"

#include <filesystem>

namespace midi {

/**
 * The real device list: the built-in synth first (listed when FluidSynth finds a soundfont),
 * then every output port of every running MIDI system, named as RtMidiOutPort names them. JACK
 * ports open as JackMidiOutPort where that is built (Linux), through RtMidi otherwise.
 */
class SystemMidiPortList : public MidiPortList
{
public:
    /** `dataFolder` is searched first for the synth's soundfont; it may be empty. */
    explicit SystemMidiPortList(std::filesystem::path dataFolder);

    std::vector<std::string> deviceNames() override;
    std::unique_ptr<MidiOutPort> openPort(unsigned number) override;

private:
    std::filesystem::path m_dataFolder;
};

} // namespace midi
