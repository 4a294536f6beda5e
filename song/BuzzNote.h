#pragma once

#include <cstdint>

namespace song {

/**
 * The one-byte value of a tracker note parameter: octave * 16 + pitch class + 1, 0 for no note.
 * 255 is the tracker's note-off (pitch class 14, octave 15).
 */
class BuzzNote
{
public:
    static constexpr std::uint8_t kNoNote = 0;
    static constexpr std::uint8_t kNoteOff = 255;
    /** The part model's marker for an empty pitch class or octave ("x"). */
    static constexpr int kEmptyMarker = 120;
    /** What decoding 0 gives: the part model's "no note" pair. */
    static constexpr int kNoPitchClass = 12;
    static constexpr int kNoOctave = 10;

    /** Encodes pitch class 0..11 in octave 0..9; either being 120 gives 0. */
    static std::uint8_t encode(int pitchClass, int octave);

    struct Decoded
    {
        int pitchClass = kNoPitchClass;
        int octave = kNoOctave;
    };
    /** Decodes a note byte; values whose low four bits exceed 12 go through the same arithmetic. */
    static Decoded decode(std::uint8_t value);
};

} // namespace song
