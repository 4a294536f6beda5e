#pragma once

#include "part/Part.h"
#include "part/Pattern.h"
#include "part/PatternRecipe.h"
#include "part/RenderOptions.h"

#include <vector>

namespace part {

inline constexpr const char* kUndoGeneratePattern = "Generate pattern";

/** A rectangle of a pattern: tracks firstTrack..lastTrack and rows firstRow..lastRow. */
struct PatternBlock
{
    int firstTrack = 0;
    int lastTrack = kTrackCount - 1;
    int firstRow = 0;
    int lastRow = kRowCount - 1;

    /** The whole pattern. */
    static PatternBlock whole() { return {}; }
    /** Within the pattern and with first <= last (swapped when given the other way). */
    PatternBlock clamped() const;
    int trackCount() const { return lastTrack - firstTrack + 1; }
    int rowCount() const { return lastRow - firstRow + 1; }

    friend bool operator==(const PatternBlock&, const PatternBlock&) = default;
};

/**
 * How many chord notes a recipe may address in a pattern without a cell falling silent.
 * `chordNotes` is the fewest notes a chord rendered through the pattern has: what "all notes"
 * means to a recipe. `usableNotes` is how many indices every such chord plays under the
 * renderer's index option: under "start again one octave higher" a chord is extended to five
 * notes, so indices 0..4 always sound; under the other options only the chord's own notes do.
 */
struct NoteBudget
{
    int chordNotes = 3;  // 1..7
    int usableNotes = 3; // 1..7
    friend bool operator==(const NoteBudget&, const NoteBudget&) = default;
};

/**
 * The budget of pattern `patternIndex` of a part: its chords' fewest notes (chords without
 * notes don't count; when no chord uses the pattern, all chords of the part count, and a triad
 * is assumed for a part without chords).
 */
NoteBudget noteBudgetOf(const Part& part, int patternIndex, IndexOption option);

/**
 * Fills the block of `pattern` from the recipe and returns the new pattern; cells outside the
 * block stay as they were, cells inside are cleared first. Track octave settings of the block's
 * tracks change only when the recipe asks (an arpeggio over more than one octave, `spread`).
 *
 * Which tracks and rows (relative to the block; a block too small cuts the figure off):
 * - arpeggio: the walk of `order` over notes x octaves, one note every `step` rows on the
 *   first track (octave k on track k, set to B + k; no more octaves than the block has tracks);
 * - block: track k plays note k on every hit, for as many notes as there are tracks;
 * - strum: as block, track k entering `every` * k rows after the hit; order=down starts with
 *   the highest note;
 * - euclid: E(pulses, steps) with one step every `step` rows, track k rotated by rotate[k];
 *   track k plays note k, or with play=arpeggio the first track walks `order` on the hits;
 * - random: every `step`-th row of every track gets a note with `density` percent, the note
 *   drawn from the notes used, `chance` percent of them as chance cells.
 * Every note gets an off-event `length` rows later when the track has no note before then.
 *
 * The recipe's `notes` (0: budget.chordNotes) is held to budget.usableNotes, so no generated
 * cell addresses a note that a chord of the pattern would leave silent, unless the recipe says
 * silent=allow. Random choices come from the recipe's seed alone: the same recipe gives the
 * same pattern on every platform.
 */
Pattern generatePattern(const Pattern& pattern, const PatternRecipe& recipe, PatternBlock block,
                        NoteBudget budget);

/** Positions 0.. of the notes x octaves walk that `order` visits, one period long (Random: the
 * ascending positions). Position p is note p % notes in octave p / notes. */
std::vector<int> walkOf(NoteOrder order, int positions);

/** The steps 0..steps-1 at which E(pulses, steps) rotated by `rotation` has a hit. */
std::vector<int> euclideanHits(int pulses, int steps, int rotation);

} // namespace part
