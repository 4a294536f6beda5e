#pragma once

#include <cstdint>

namespace part {

/**
 * What a pattern cell asks for. The underlying byte is kept as read from a file, so a cell may
 * hold a value outside the named ones; renderers treat such cells like Nothing and writers save
 * the byte unchanged.
 */
enum class CellKind : std::uint8_t
{
    Nothing = 0,
    ChordNote = 1,       // value = index of the note in the chord
    Off = 2,             // stops the track's sounding note
    FixedNote = 3,       // value = pitch class 0..11
    ChanceChordNote = 4, // a chord note that sounds with even odds
};

} // namespace part
