#pragma once

#include "music/PitchClassSet.h"
#include "music/Result.h"
#include "music/SpelledNote.h"

#include <array>
#include <string>
#include <string_view>

namespace music {

class ScaleList;
class ScaleType;

/**
 * Chooses how to write each pitch class for a key or a scale (Eb major writes Eb, Ab, Bb; E
 * major writes G#, D#). Without a key, each pitch class has its usual name: C, Db, D, Eb, E, F,
 * F#, G, Ab, A, Bb, B.
 *
 * A seven-note key or scale names its notes on seven consecutive letters from the tonic.
 * Pitch classes outside it are written with flats in a key with flats, with sharps in a key
 * with sharps, and as usual otherwise; a minor key also knows its raised sixth and seventh
 * (A minor writes F# and G#). Scales of another size borrow the spelling of the major or minor
 * key on their tonic, depending on the third they hold.
 *
 * This spelling is for musicians reading chord names; the program's own note names (lists,
 * database chord names, files) stay sharps only.
 */
class NoteSpeller
{
public:
    /** The usual name per pitch class, no key. */
    NoteSpeller();

    /** The major or (natural, with raised sixth and seventh) minor key on `tonic`. */
    static NoteSpeller forKey(SpelledNote tonic, bool minor);
    /** A scale on `root`; a seven-note scale takes the tonic spelling with fewer accidentals. */
    static NoteSpeller forScale(const ScaleType& scale, PitchClass root);

    /**
     * A key as the user types it: a note ("Eb", "f#"), then nothing or "major" / "maj" for
     * major, "m" / "min" / "minor" for minor, or the name of a scale in `scales` ("D dorian");
     * "Ebm" and "Eb m" both mean E flat minor. Fails with a message naming the text.
     */
    static Result parseKey(std::string_view text, const ScaleList* scales, NoteSpeller& out);

    /** How the pitch class of `value` (taken mod 12) is written. */
    SpelledNote spell(int value) const;
    /** The key's name ("Eb major", "D dorian"); empty without a key. */
    const std::string& keyName() const { return m_keyName; }
    /** The notes of the key or scale; empty without one. */
    PitchClassSet keyNotes() const { return m_keyNotes; }

private:
    static NoteSpeller fromTonic(SpelledNote tonic, PitchClassSet relativeNotes, bool minor,
                                 std::string name);
    /** The accidentals the scale needs from this tonic; -1 when a letter would need three. */
    static int accidentalCount(SpelledNote tonic, PitchClassSet relativeNotes);

    std::array<SpelledNote, 12> m_names{};
    PitchClassSet m_keyNotes;
    std::string m_keyName;
};

} // namespace music
