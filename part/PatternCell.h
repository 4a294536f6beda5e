#pragma once

#include "part/CellKind.h"

#include <cstdint>

namespace part {

/** One step of one track: three bytes, saved as value, kind, octave byte (in that order). */
struct PatternCell
{
    CellKind kind = CellKind::Nothing;
    /** Chord-note index for ChordNote/ChanceChordNote; pitch class 0..11 for FixedNote. */
    std::uint8_t value = 0;
    /**
     * FixedNote: 0 = the track's octave, anything else an explicit octave.
     * ChordNote/ChanceChordNote: 1 = shift two half-notes down, 2 = two up, other values none.
     */
    std::uint8_t octave = 0;

    bool isEmpty() const { return kind == CellKind::Nothing && value == 0 && octave == 0; }
    friend bool operator==(const PatternCell&, const PatternCell&) = default;
};

/** The octave byte of a chord-note cell asking for a shift. */
inline constexpr std::uint8_t kShiftDown = 1;
inline constexpr std::uint8_t kShiftUp = 2;

} // namespace part
