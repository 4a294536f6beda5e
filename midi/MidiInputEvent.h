#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace midi {

/** One message from a MIDI input port that the program acts on; everything else is dropped. */
struct MidiInputEvent
{
    enum class Kind : std::uint8_t
    {
        NoteOn,      // a key went down (a note-on with velocity 0 counts as NoteOff)
        NoteOff,     // a key came up
        Pedal,       // the sustain pedal, controller 64: `value` 64..127 down, 0..63 up
        AllNotesOff, // controllers 120 (all sound off) and 123 (all notes off)
    };

    Kind kind = Kind::NoteOn;
    std::uint8_t channel = 0; // 0..15
    std::uint8_t note = 0;    // 0..127, for NoteOn and NoteOff
    std::uint8_t value = 0;   // the velocity, or the pedal's controller value

    /** Reads one complete message, status byte first; nothing for any other message. */
    static std::optional<MidiInputEvent> fromBytes(const std::uint8_t* bytes, std::size_t size);

    friend bool operator==(const MidiInputEvent&, const MidiInputEvent&) = default;
};

} // namespace midi
