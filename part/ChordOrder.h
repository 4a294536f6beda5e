#pragma once

#include "part/ChordTransforms.h"
#include "part/Part.h"

namespace part {

/** Reordering and thinning out the chords of a part; see ChordTransforms.h for selections. */
inline constexpr const char* kUndoSort = "Sort";
inline constexpr const char* kUndoRemoveDouble = "Remove double";

enum class ChordSortKey : std::uint8_t
{
    Name,  // alphabetical, ignoring the case of letters
    Notes, // by the chord's notes from the lowest up: the lower bass first, then the next note
};

/**
 * Sort: the selected chords put in order among their own positions; chords outside the
 * selection stay where they are. Each chord keeps its pattern and length. Stable: equal chords
 * keep their order, downwards too.
 */
Part sortChords(const Part& part, const ChordSelection& selection, ChordSortKey key,
                bool descending = false);

/**
 * Remove double: of neighbouring selected chords with the same notes in the same order, only
 * the first stays (names, patterns and lengths are not compared). The part's selected range
 * is moved to follow the chords that remain.
 */
Part removeDoubleChords(const Part& part, const ChordSelection& selection);

/** Same notes in the same order (what Remove double compares). */
bool sameNotes(const PartChord& a, const PartChord& b);

} // namespace part
