#pragma once

#include "midi/MidiInPort.h"
#include "music/Result.h"

#include <memory>
#include <string>
#include <vector>

namespace midi {

/**
 * The MIDI input devices of the system, by stable names that survive a restart so that the
 * settings file can keep the chosen one by name: "JACK: client:port", "ALSA: client:port" (the
 * volatile client and port numbers that ALSA appends are left out).
 *
 * The process-wide list is the system's; tests and the window's tests set one of their own.
 */
class MidiInPortList
{
public:
    virtual ~MidiInPortList() = default;

    /** Enumerates the input devices anew; their names in a fixed order of systems. */
    virtual std::vector<std::string> inputNames() = 0;

    /**
     * Opens the input device called `name` (as inputNames() lists it) and starts delivering its
     * events to `handlers`. Fails with a message naming the device when there is no such device
     * or the system refuses it. Never throws.
     */
    virtual music::Result open(const std::string& name, MidiInPort::Handlers handlers,
                               std::unique_ptr<MidiInPort>& port) = 0;

    /** The process-wide list; a SystemMidiInPortList until another is set. */
    static std::shared_ptr<MidiInPortList> systemList();
    static void setSystemList(std::shared_ptr<MidiInPortList> list);
};

} // namespace midi
