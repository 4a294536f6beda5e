#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace midi {

/**
 * One opened output port of the system (or the built-in synth). Destroying it closes the port.
 * Used by one thread at a time; CMIDIOutDevice serialises its sending threads.
 *
 * Due times are nanoseconds on std::chrono::steady_clock. A port without a lookahead sends at
 * once and ignores them; a port with one (native JACK) keeps every message until its due time and
 * places it there exactly, provided it is handed over at least `lookaheadNs()` before.
 */
class MidiOutPort
{
public:
    /** A due time that means "as soon as possible". */
    static constexpr std::int64_t kNow = 0;

    virtual ~MidiOutPort() = default;

    /**
     * Sends one complete message, status byte first (a short message or a system-exclusive
     * block). Throws CMIDIOutException with the system's error text when the port fails,
     * including a port or server that has gone away.
     */
    virtual void sendMessage(const std::vector<std::uint8_t>& bytes) = 0;

    /**
     * Sends a short message (1 to 3 bytes) due at `dueNs`. Throws as sendMessage. Ports with a
     * lookahead take these from one thread at a time without a lock or an allocation, beside
     * long messages from another thread.
     */
    virtual void sendShort(const std::uint8_t* bytes, std::size_t size, std::int64_t dueNs)
    {
        (void)dueNs;
        sendMessage(std::vector<std::uint8_t>(bytes, bytes + size));
    }

    /** How long before its due time a message must be handed over; 0 for immediate ports. */
    virtual std::int64_t lookaheadNs() const { return 0; }
};

} // namespace midi
