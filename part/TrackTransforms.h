#pragma once

#include "part/Pattern.h"

namespace part {

/**
 * Edits of a pattern's tracks (0..7). Each returns the changed pattern; the caller records an
 * undo point under the label below first. A track index outside 0..7 gives the pattern back
 * unchanged. An entry is a cell whose kind is not Nothing (off-events count).
 */
inline constexpr const char* kUndoMergeTracks = "Merge tracks";
inline constexpr const char* kUndoMoveTracks = "Move tracks";

/**
 * Merge tracks: the entries of `source` join those of `target`; on a row where both have one,
 * the later track's entry (the higher track number) wins. `source` is left empty with octave
 * setting 0 and `target` keeps its own octave setting, so merged notes play in the target
 * track's octave. Merging a track into itself changes nothing.
 */
Pattern mergeTracks(const Pattern& pattern, int target, int source);

/** The rows on which merging would drop an entry (both tracks have one), for a warning. */
int mergeConflicts(const Pattern& pattern, int target, int source);

/**
 * Move tracks: track `from`, with its octave setting, taken out and put in at position `to`;
 * the tracks between close up (moving track 0 to 2 gives the order 1 2 0 3 4 5 6 7).
 */
Pattern moveTrack(const Pattern& pattern, int from, int to);

/** Swap two tracks with their octave settings. */
Pattern swapTracks(const Pattern& pattern, int a, int b);

} // namespace part
