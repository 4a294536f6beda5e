#pragma once

#include "midi/MidiInPortList.h"

namespace midi {

/** The real input devices: every input port of every running MIDI system, through RtMidi. */
class SystemMidiInPortList : public MidiInPortList
{
public:
    std::vector<std::string> inputNames() override;
    music::Result open(const std::string& name, MidiInPort::Handlers handlers,
                       std::unique_ptr<MidiInPort>& port) override;
};

} // namespace midi
