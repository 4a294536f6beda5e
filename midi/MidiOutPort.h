#pragma once

#include <cstdint>
#include <vector>

namespace midi {

/**
 * One opened output port of the system (or the built-in synth). Destroying it closes the port.
 * Used by one thread at a time; CMIDIOutDevice serialises its sending threads.
 */
class MidiOutPort
{
public:
    virtual ~MidiOutPort() = default;

    /**
     * Sends one complete message, status byte first (a short message or a system-exclusive
     * block). Throws CMIDIOutException with the system's error text when the port fails,
     * including a port or server that has gone away.
     */
    virtual void sendMessage(const std::vector<std::uint8_t>& bytes) = 0;
};

} // namespace midi
