#pragma once

#include "midi/MidiOutPort.h"

#include <memory>
#include <string>
#include <vector>

namespace midi {

/**
 * The output devices of the system as one numbered list. Device numbers index the list of the
 * latest enumeration; names are stable across restarts so that the settings file can check that
 * a stored number still means the same device.
 *
 * The process-wide list (the built-in synth and the ports of every MIDI system) is shared by the
 * devices and the settings; tests give devices a list of their own.
 */
class MidiPortList
{
public:
    virtual ~MidiPortList() = default;

    /** Enumerates the devices anew and returns their names in device-number order. */
    virtual std::vector<std::string> deviceNames() = 0;

    /**
     * Opens device `number` of a fresh enumeration; nothing when there is no such device or the
     * system refuses it. Never throws.
     */
    virtual std::unique_ptr<MidiOutPort> openPort(unsigned number) = 0;

    /** The process-wide list; a SystemMidiPortList without a data folder until one is set. */
    static std::shared_ptr<MidiPortList> systemList();
    /** Replaces the process-wide list (at start-up, once the data folder is known). */
    static void setSystemList(std::shared_ptr<MidiPortList> list);
};

} // namespace midi
