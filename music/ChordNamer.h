#pragma once

#include "music/ChordCandidate.h"
#include "music/ChordVocabulary.h"
#include "music/NoteSpeller.h"
#include "music/PitchClassSet.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace music {

class ChordTypeList;

/**
 * Names a chord: given a set of pitch classes (or MIDI notes, whose lowest note is the bass) it
 * returns every reading of the notes as a chord of a known type, best first.
 *
 * A reading takes one of the notes as root and a chord type of the ChordVocabulary (the built-in
 * common types and the user's chord-type list) whose tones are all played, except at most two
 * omittable ones (the perfect fifth, the ninth of an eleventh or thirteenth chord). Up to two
 * further notes may be added to a type of three or more tones; they are named as degrees above
 * the root ("add9", "(add#11)"). A bass that is no tone of the type makes a slash chord over a
 * foreign bass ("D/C") instead of an added note. Single notes and two-note intervals get no
 * additions. A set that no reading explains gets one candidate that lists the notes and says
 * "cluster".
 *
 * The score, higher is better:
 *   kBase (100)
 *   + kRootInBass (40)        the root is the bass, or no bass is known;
 *   + kChordToneBass (25)     the bass is another tone of the type (an inversion), less
 *                             kInversionStep (2) for each place above the third, at least
 *                             kMinChordToneBass (15);
 *   + kForeignBass (5)        the bass is no tone of the type (a slash chord);
 *   + the commonness of the type, 10 (rare) .. 50 (major and minor triads) for the built-in
 *     types, ChordVocabulary::kUserTypeCommonness (8) for a type only the user's list knows;
 *   - kOmission (20)          per omitted tone;
 *   - kAddedTension (18)      per added b9, 9, #9, 11, #11, b13 or 13;
 *   - kAddedOther (35)        per other added note.
 * Ties go to fewer added notes, then fewer omissions, then the vocabulary's order, then the root
 * nearest above the bass (or C).
 *
 * Readings with the same name are merged. A root on which a type fits exactly gets no reading
 * that adds notes to another type (C E G D is Cadd9, not C major with an added ninth). Of the
 * other readings on one root only the best is kept when it has omissions or additions, but every
 * complete reading stays, so that each type of the user's list that fits the notes exactly is
 * among the candidates.
 *
 * Names are spelled for a key when a NoteSpeller for it is given: a root in the key takes the
 * key's name for it (Ab in Eb major, G# in E major). A root outside the key, or any root without
 * a key, takes the speller's name (without a key the usual one: Db, Eb, F#, Ab, Bb) unless the
 * name on the neighbouring letter writes the chord with fewer accidentals (C#m rather than Dbm,
 * G rather than the F## of G# minor). The
 * other notes are spelled by their degree above the root (E/G#, Cdim7 with Bbb). This spelling is
 * for musicians and differs from the program's own note names, which use sharps only.
 *
 * The namer holds no mutable state; one instance may be used from several threads.
 */
class ChordNamer
{
public:
    static constexpr int kBase = 100;
    static constexpr int kRootInBass = 40;
    static constexpr int kChordToneBass = 25;
    static constexpr int kInversionStep = 2;
    static constexpr int kMinChordToneBass = 15;
    static constexpr int kForeignBass = 5;
    static constexpr int kOmission = 20;
    static constexpr int kAddedTension = 18;
    static constexpr int kAddedOther = 35;
    static constexpr int kMaxOmitted = 2;
    static constexpr int kMaxAdded = 2;

    /** A namer of the built-in types only. */
    ChordNamer() { prepare(); }
    /** A namer that also knows the types of the user's list (copied; the list may go). */
    explicit ChordNamer(const ChordTypeList& userTypes);

    /**
     * The readings of `notes`, best first; empty only for an empty set. A `bass` outside the set
     * is added to it.
     */
    std::vector<ChordCandidate> name(PitchClassSet notes, std::optional<PitchClass> bass,
                                     const NoteSpeller& speller = NoteSpeller()) const;
    /** The readings of MIDI note numbers (0..127, any order); the lowest is the bass. */
    std::vector<ChordCandidate> nameNotes(const std::vector<int>& midiNotes,
                                          const NoteSpeller& speller = NoteSpeller()) const;

    const ChordVocabulary& vocabulary() const { return m_vocabulary; }

private:
    struct Reading;
    void collect(PitchClassSet notes, std::optional<PitchClass> bass,
                 std::vector<Reading>& out) const;
    ChordCandidate describe(const Reading& reading, std::optional<PitchClass> bass,
                            const NoteSpeller& speller) const;
    ChordCandidate cluster(PitchClassSet notes, std::optional<PitchClass> bass,
                           const NoteSpeller& speller) const;

    void prepare();

    /** What the search needs of a type, kept small so that the loop over types stays fast. */
    struct TypeMasks
    {
        std::uint16_t required; // the tones that may not be omitted
        std::uint16_t tones;
        std::uint16_t tensions; // the pitch classes that count as tensions when added
        int size;
        int maxAdded;
        int baseScore; // kBase plus the commonness
    };

    ChordVocabulary m_vocabulary;
    std::vector<TypeMasks> m_masks; // by the vocabulary's index
};

} // namespace music
