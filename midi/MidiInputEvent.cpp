#include "midi/MidiInputEvent.h"

namespace midi {

std::optional<MidiInputEvent> MidiInputEvent::fromBytes(const std::uint8_t* bytes, std::size_t size)
{
    if (bytes == nullptr || size != 3 || bytes[0] < 0x80 || bytes[1] > 0x7F || bytes[2] > 0x7F)
        return std::nullopt;
    MidiInputEvent event;
    event.channel = static_cast<std::uint8_t>(bytes[0] & 0x0F);
    switch (bytes[0] & 0xF0) {
    case 0x90:
        event.kind = bytes[2] == 0 ? Kind::NoteOff : Kind::NoteOn;
        event.note = bytes[1];
        event.value = bytes[2];
        return event;
    case 0x80:
        event.kind = Kind::NoteOff;
        event.note = bytes[1];
        event.value = bytes[2];
        return event;
    case 0xB0:
        if (bytes[1] == 64) {
            event.kind = Kind::Pedal;
            event.value = bytes[2];
            return event;
        }
        if (bytes[1] == 120 || bytes[1] == 123) {
            event.kind = Kind::AllNotesOff;
            return event;
        }
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

} // namespace midi
