#pragma once

#include "midi/MidiEvent.h"

#include <cstdint>
#include <vector>

namespace midi {

/**
 * One "MTrk" chunk. Events are encoded as they are added, straight into one byte buffer (no
 * object is kept per event), so the chunk's bytes are ready when the file is written; the chunk
 * length is worked out then.
 */
class MidiTrack
{
public:
    static constexpr std::uint32_t kChunkId = 0x4D54726B; // "MTrk"

    /** Appends any event, encoded as MidiEvent::appendTo does it. */
    void addEvent(const MidiEvent& event);
    /**
     * Appends a channel event without making a MidiEvent: the same bytes as addEvent of an event
     * with this delta, status and data bytes 1 and 2.
     */
    void addChannelEvent(std::uint32_t delta, std::uint8_t status, std::uint8_t data1,
                         std::uint8_t data2);

    std::uint32_t eventCount() const { return m_eventCount; }
    /** The encoded events, without the chunk header. */
    const std::vector<std::uint8_t>& bytes() const { return m_bytes; }

    /** Appends the encoded events, without the chunk header. */
    void appendEventsTo(std::vector<std::uint8_t>& out) const;

private:
    std::vector<std::uint8_t> m_bytes;
    std::uint32_t m_eventCount = 0;
};

} // namespace midi
