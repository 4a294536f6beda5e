#include "midi/MidiTrack.h"

namespace midi {

void MidiTrack::appendEventsTo(std::vector<std::uint8_t>& out) const
{
    for (const MidiEvent& event : m_events)
        event.appendTo(out);
}

} // namespace midi
