#pragma once

#include "music/Note.h"
#include "part/PartChord.h"

#include <array>
#include <cstdint>

namespace part {

/** One way to play a chord: its notes from low to high. A plain value, cheap to copy. */
struct Voicing
{
    /** Stored chord-note values, ascending; only the first `count` are meaningful. */
    std::array<music::NoteValue, PartChord::kMaxNotes> notes{};
    std::uint8_t count = 0;
    /**
     * The close-position inversion it was built from: 0 stacks from the root, 1 from the next
     * tone up, and so on. The style may then have moved another note to the bottom.
     */
    std::uint8_t inversion = 0;

    int lowest() const { return count == 0 ? 0 : notes[0]; }
    int highest() const { return count == 0 ? 0 : notes[count - 1u]; }

    /** Same notes (the inversion it came from is not compared). */
    bool sameNotes(const Voicing& other) const
    {
        return count == other.count && notes == other.notes;
    }
};

} // namespace part
