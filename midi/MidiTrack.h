#pragma once

#include "midi/MidiEvent.h"

#include <cstdint>
#include <vector>

namespace midi {

/** One "MTrk" chunk: its events in file order. The chunk length is worked out when written. */
class MidiTrack
{
public:
    static constexpr std::uint32_t kChunkId = 0x4D54726B; // "MTrk"

    void addEvent(MidiEvent event) { m_events.push_back(std::move(event)); }
    const std::vector<MidiEvent>& events() const { return m_events; }
    std::uint32_t eventCount() const { return static_cast<std::uint32_t>(m_events.size()); }

    /** Appends the encoded events, without the chunk header. */
    void appendEventsTo(std::vector<std::uint8_t>& out) const;

private:
    std::vector<MidiEvent> m_events;
};

} // namespace midi
