#pragma once

#include "music/Note.h"
#include "music/Result.h"
#include "part/PartChord.h"
#include "part/Voicing.h"
#include "part/VoicingOptions.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace part {

/**
 * Voices single chords: lists every voicing of a style that fits a range, and picks one.
 *
 * How voiced notes map to the indices that pattern cells address: a voiced chord keeps one note
 * for every note it had (plus the added bass of a slash chord whose bass it lacks), and its notes
 * are stored from low to high. Index 0 is always the bass and the last index the top voice, so a
 * pattern keeps playing "the bass", "the second voice", ... and an arpeggio over indices 0, 1, 2,
 * ... still climbs. Which chord tone an index plays changes with the inversion, as it does when a
 * pianist plays the chord that way. (The renderer's "start again one octave higher" continuation
 * repeats the lowest notes an octave up; after an open or spread voicing these can lie below the
 * top voice.)
 *
 * The tones are the pitch classes of the chord's notes; a tone held twice stays doubled. The root
 * is read from the chord's name ("C#m7" has the root C#) when the name starts with a note name
 * that is one of the tones, so a voiced chord still knows its root; otherwise the first note's
 * pitch class is the root.
 */
class ChordVoicer
{
public:
    static constexpr std::string_view kBadRangeMessage =
        "The lowest note of the range lies above the highest.";
    static constexpr std::string_view kRangeTooHighMessage = "Chord notes go up to B9.";

    /** "close", "open", "drop2", "drop3", "spread": the names the command line takes. */
    static std::string_view styleName(VoicingStyle style);
    /** "close", "open", "drop-2", "drop-3", "spread": the names messages use. */
    static std::string_view styleLabel(VoicingStyle style);
    /** Either spelling, any letter case ("Drop2", "drop-2"); nothing when unknown. */
    static std::optional<VoicingStyle> parseStyle(std::string_view text);

    /** The chord's root as described above; 0 for a chord without notes. */
    static music::PitchClass root(const PartChord& chord);

    /** A failure when the range is unusable (low above high, high above 119). */
    static music::Result checkOptions(const VoicingOptions& options);

    /**
     * Every distinct voicing of the style asked for, over all inversions and octave positions, with
     * every note within the range and the bass the bass rule asks for; in inversion order, then
     * from low to high. Empty for a chord without notes, for a chord of seven notes that would
     * need an added bass, or when nothing fits.
     */
    static std::vector<Voicing> candidates(const PartChord& chord, const VoicingOptions& options);

    /**
     * The voicing of the chord on its own: the lowest inversion number among the candidates
     * (root position when it is one), placed where its middle lies nearest the middle of the
     * range (the lower one on a tie). A failure that names the chord (and `index` when it is not
     * negative) when nothing fits.
     */
    static music::Result voice(const PartChord& chord, const VoicingOptions& options, Voicing& out,
                               int index = -1);

    /** The chord's notes as they stand, sorted from low to high. */
    static Voicing sortedNotes(const PartChord& chord);

    /** The chord with its notes replaced by the voicing's (name, pattern and length stay). */
    static PartChord withNotes(const PartChord& chord, const Voicing& voicing);

    /** "No drop-2 voicing of chord 3 (Cmaj7) fits between E2 and G5.", and similar. */
    static std::string noVoicingMessage(const PartChord& chord, const VoicingOptions& options,
                                        int index);
};

} // namespace part
