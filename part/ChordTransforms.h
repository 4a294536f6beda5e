#pragma once

#include "music/Note.h"
#include "music/Result.h"
#include "part/Part.h"

#include <vector>

namespace part {

/**
 * Note transformations of a part's chords. Each takes the part and the chords to change and
 * returns the changed part; the caller records an undo point under the label below and then
 * takes the result, so the window can also show it as a preview first.
 *
 * Registers. A chord note is stored as octave * 12 + pitch class, where the octave is a carry
 * above the part's base octave B: the renderers play note value v in octave B + v / 12 (before
 * the track's octave setting). So "the base octave" of a chord note means values 0..11, and the
 * stored range is 0..119 (120 marks an empty slot). The transformations work on stored values
 * and never change the part's base octave or the patterns.
 *
 * Note order. Pattern cells address chord notes by their position, so no transformation moves a
 * note to another position: index 0 stays the same chord tone (the root of a chord from the
 * chord database) and only its octave or pitch changes. A pattern therefore keeps playing the
 * same voices after an inversion; only the register changes.
 */
inline constexpr const char* kUndoTranspose = "Transpose";
inline constexpr const char* kUndoNormalize = "Normalize";
inline constexpr const char* kUndoInvert = "Invert";
inline constexpr const char* kUndoMirror = "Mirror";
inline constexpr const char* kUndoNoteLimits = "Note limits";

/** The lowest and highest stored note value a transformation may produce ("C0" and "B9"). */
inline constexpr int kLowestNote = 0;
inline constexpr int kHighestNote = 119;

/**
 * The chords an edit applies to, as indices into the part. Indices outside the part are skipped
 * and an index given twice counts once, so a stale selection is harmless.
 */
using ChordSelection = std::vector<int>;

/** Every chord of the part. */
ChordSelection allChords(const Part& part);
/** The chords first..last inclusive (either order). */
ChordSelection chordRange(int first, int last);
/** The part's own selected range; empty when it has no selection. */
ChordSelection selectedChords(const Part& part);

/** What an edit of chord notes gives: the new part, or a refusal that changed nothing. */
struct ChordEdit
{
    Part part;            // the edited part; the input unchanged when the edit was refused
    music::Result result; // the message tells the user why the edit was refused
    /** Refused: the chords whose notes would have left kLowestNote..kHighestNote. */
    std::vector<int> outOfRange;
    /** Transpose: the chords whose names had no root to respell and were marked instead. */
    std::vector<int> markedNames;

    explicit operator bool() const { return result.ok(); }
};

/**
 * Transpose: moves every note of the selected chords by `halfNotes` (negative: down) and
 * respells their names (ChordName::transposed). Notes are never wrapped: when any note would
 * leave 0..119 the whole edit is refused and those chords are listed.
 */
ChordEdit transposeChords(const Part& part, const ChordSelection& selection, int halfNotes);

/**
 * Normalize: each selected chord in close position with its lowest note in the base octave.
 * The lowest sounding note stays the lowest (an inversion stays that inversion) and moves to
 * its pitch class in 0..11; every other note goes to the first note of its pitch class above
 * it, so the chord fits in one octave. A pitch class that occurs twice keeps its second note an
 * octave higher rather than collapsing into a unison. C4-E4-G4 becomes C-E-G (0, 4, 7).
 */
Part normalizeChords(const Part& part, const ChordSelection& selection);

/**
 * Invert: the next inversion of each selected chord, its lowest note (the first of equal ones)
 * an octave up. Repeatable: a triad inverted three times is its root position an octave up.
 * Refused when a note would pass 119.
 */
ChordEdit invertChords(const Part& part, const ChordSelection& selection);

/**
 * The axis of a mirror: the pitch class `note`, or, with `halfStepAbove`, the point halfway
 * between it and the note a half-step higher (D# and E: the axis that turns C major into C
 * minor).
 */
struct MirrorAxis
{
    music::PitchClass note = 0;
    bool halfStepAbove = false;

    friend bool operator==(const MirrorAxis&, const MirrorAxis&) = default;
};

/**
 * Mirror: every interval of the selected chords turned upside down around the axis, so a note
 * k half-notes above the axis goes k half-notes below it: C-E-G around E gives C#-E-G#, around
 * C gives F-G#-C (F minor). The mirrored chord is then moved by whole octaves so that its lowest
 * note lies in the octave of the original's lowest note; the axis's own octave thus plays no
 * part, and mirroring twice around the same axis gives the chord back. Names are kept: a
 * mirrored chord is usually another kind of chord, and the part holds no chord database to name
 * it. Refused when a note would pass 119.
 */
ChordEdit mirrorChords(const Part& part, const ChordSelection& selection, MirrorAxis axis);

/**
 * Note limits: every note of the selected chords below `low` or above `high` (stored values)
 * moves by whole octaves into low..high; notes inside stay, and no pitch class ever changes.
 * Refused unless 0 <= low <= high <= 119 and the range spans at least an octave (high - low of
 * 11 or more), since otherwise some pitch classes have no place in it.
 */
ChordEdit limitChordNotes(const Part& part, const ChordSelection& selection, int low, int high);

} // namespace part
