#include "midi/MidiTrack.h"

#include "midi/VariableLengthQuantity.h"

#include <algorithm>
#include <array>

namespace midi {

void MidiTrack::addEvent(const MidiEvent& event)
{
    event.appendTo(m_bytes);
    ++m_eventCount;
}

void MidiTrack::addChannelEvent(std::uint32_t delta, std::uint8_t status, std::uint8_t data1,
                                std::uint8_t data2)
{
    if (status < 0x80 || status > 0xEF) {
        // Not a channel status after all (a channel byte above 15 wraps the note-on status):
        // the general encoder knows what such a status carries.
        MidiEvent event;
        event.setDeltaTime(delta);
        event.setStatus(status);
        event.setDataByte(1, data1);
        event.setDataByte(2, data2);
        addEvent(event);
        return;
    }
    // At most four bytes of delta, the status and two data bytes of seven bits each.
    std::array<std::uint8_t, VariableLengthQuantity::kMaximumSize + 3> bytes{};
    const VariableLengthQuantity::Encoded quantity = VariableLengthQuantity::encode(delta);
    std::copy_n(quantity.bytes.begin(), quantity.size, bytes.begin());
    std::size_t size = quantity.size;
    bytes[size++] = status;
    bytes[size++] = std::min<std::uint8_t>(data1, 0x7F);
    const std::uint8_t kind = status & 0xF0;
    if (kind != 0xC0 && kind != 0xD0)
        bytes[size++] = std::min<std::uint8_t>(data2, 0x7F);
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    ++m_eventCount;
}

void MidiTrack::appendEventsTo(std::vector<std::uint8_t>& out) const
{
    out.insert(out.end(), m_bytes.begin(), m_bytes.end());
}

} // namespace midi
