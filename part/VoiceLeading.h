#pragma once

#include "music/Result.h"
#include "part/Part.h"
#include "part/PartChord.h"
#include "part/Voicing.h"
#include "part/VoicingOptions.h"

#include <string_view>
#include <vector>

namespace part {

/** How much the voices move from chord to chord, and the faults counted on the way. */
struct VoiceLeadingCost
{
    /** Half-notes, summed over all voices and chord changes. */
    int movement = 0;
    /** Pairs of voices moving in parallel fifths or octaves (unisons included). */
    int parallels = 0;
    /** Voices that move past the old note of a neighbouring voice. */
    int crossings = 0;

    /** The weighted sum the voice leading minimises (weights in VoiceLeading). */
    int total() const;

    VoiceLeadingCost& operator+=(const VoiceLeadingCost& other);
    friend bool operator==(const VoiceLeadingCost&, const VoiceLeadingCost&) = default;
};

/** The outcome of voicing a run of chords: the new chords and the movement before and after. */
struct VoicedRun
{
    /** The part index of the run's first chord. */
    int first = 0;
    /** The run's chords in order, with their new notes. */
    std::vector<PartChord> chords;
    VoiceLeadingCost before;
    VoiceLeadingCost after;
};

/**
 * Voice leading: for a run of chords, chooses for every chord one of the voicings that
 * ChordVoicer::candidates offers for the style and range, so that the voices move as little as
 * possible over the whole run.
 *
 * Cost of going from one chord to the next, with both voicings read from low to high:
 * - voices are matched in order, bass to bass and top to top. When the note counts differ, every
 *   voice of the larger chord is matched to one voice of the smaller, in order, and every voice
 *   of the smaller gets at least one partner: a voice splits in two (a triad going to a seventh
 *   chord) or two voices join; among these matchings the one that moves least is taken;
 * - each matched pair adds its distance in half-notes (weight 1);
 * - two matched voices that move in the same direction from a perfect fifth to a perfect fifth,
 *   or from an octave (or unison) to an octave, compound intervals included, add
 *   kParallelPenalty; fifths and octaves reached by contrary motion are not counted;
 * - a voice moving above the old note of the voice above it, or below the old note of the voice
 *   below it, adds kCrossingPenalty (voices cannot cross inside one chord, as its notes are kept
 *   sorted, so this counts crossings between neighbouring chords).
 *
 * The sum over the run is minimised exactly by dynamic programming over the candidates of each
 * chord (time linear in the number of chords, quadratic in the candidates per chord). Among
 * equally good runs the one whose chords keep their middle (lowest plus highest note) nearest
 * the first chord's, when that is kept, or else the middle of the range, wins; this keeps long
 * runs from drifting up or down. Chords without notes are passed over and left as they are.
 */
class VoiceLeading
{
public:
    static constexpr int kMovementWeight = 1;
    static constexpr int kParallelPenalty = 4;
    static constexpr int kCrossingPenalty = 2;

    /** Undo labels of the two commands. */
    static constexpr std::string_view kVoicingLabel = "Voicing";
    static constexpr std::string_view kVoiceLeadingLabel = "Voice leading";

    static constexpr std::string_view kEmptyRangeMessage = "The range holds no chords.";

    /** The cost of moving from one voicing to the next, as described above. */
    static VoiceLeadingCost transitionCost(const Voicing& from, const Voicing& to);

    /** The cost of a run of chords as they stand (notes read low to high, empty chords skipped). */
    static VoiceLeadingCost runCost(const std::vector<PartChord>& chords);

    /**
     * Leads the voices through `chords`. With `keepFirst` the first chord with notes stays exactly
     * as it is and the others follow from it. Fails (leaving `out` alone) on an unusable range or
     * when a chord has no voicing in it, naming the chord by its index in `chords` plus
     * `indexBase`.
     */
    static music::Result lead(const std::vector<PartChord>& chords, const VoicingOptions& options,
                              bool keepFirst, std::vector<PartChord>& out, int indexBase = 0);

    /**
     * Voices every chord on its own (ChordVoicer::voice). With `keepFirst` the first chord with
     * notes stays as it is. Fails like `lead`.
     */
    static music::Result voiceEach(const std::vector<PartChord>& chords,
                                   const VoicingOptions& options, bool keepFirst,
                                   std::vector<PartChord>& out, int indexBase = 0);

    /**
     * Voices the part's chords first..last (inclusive, 0-based; part::kNoIndex in `first` means
     * 0 and in `last` the last chord), leading the voices when `leadVoices` is set or voicing
     * each chord on its own otherwise. The part is not changed: apply the run with `apply` after
     * recording an undo point. Fails with kEmptyRangeMessage when the range holds no chord.
     */
    static music::Result voicePart(const Part& part, int first, int last,
                                   const VoicingOptions& options, bool leadVoices, bool keepFirst,
                                   VoicedRun& out);

    /** Puts the run's chords into the part at their indices (those beyond the part are left). */
    static void apply(const VoicedRun& run, Part& part);
};

} // namespace part
