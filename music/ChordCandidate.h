#pragma once

#include "music/SpelledNote.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace music {

/** One reading of a set of notes as a chord, as the chord namer ranks them. */
struct ChordCandidate
{
    /** typeIndex of a cluster: no chord type holds the notes. */
    static constexpr std::size_t kNoType = static_cast<std::size_t>(-1);
    /** inversion when the bass is no tone of the chord type (a slash chord such as D/C). */
    static constexpr int kForeignBass = -1;

    /** The spelled name: "C/E", "D/C", "C7(no5)", "Cadd9", "Ebm7"; "C Db D cluster". */
    std::string name;
    /** In words: "C major, first inversion", "D major over C", "C dominant seventh without the
     *  5th". */
    std::string description;

    PitchClass root = 0;
    SpelledNote rootName;
    /** The chord type, as an index into the namer's ChordVocabulary; kNoType for a cluster. */
    std::size_t typeIndex = kNoType;
    /** The type's symbol ("m7"; "" for the major triad) and its name in words. */
    std::string typeSymbol;
    std::string typeName;
    /** The type's intervals above the root in semitones, ordered by degree (0, 4, 7, 10). */
    std::vector<int> intervals;
    /** Indices in the user's chord-type list of the types with exactly these tones. */
    std::vector<std::size_t> userTypes;

    /** The bass when one was known (the lowest note played), else nothing. */
    std::optional<PitchClass> bass;
    SpelledNote bassName;
    /**
     * 0: root position or no bass known; n > 0: the bass is the n-th tone of the type counted up
     * from the root by degree (1 the third, 2 the fifth, 3 the seventh or sixth); kForeignBass.
     */
    int inversion = 0;

    /** Degrees of the type that are not played: "5", "9". */
    std::vector<std::string> omitted;
    /** Notes played beyond the type, as degrees above the root: "9", "#11", "b13". */
    std::vector<std::string> added;

    /** The ranking score; higher is better (see ChordNamer for its terms). */
    int score = 0;
    /** The chord's notes spelled from the root by degree (C E G Bb), a foreign bass first. */
    std::vector<SpelledNote> notes;

    bool isCluster() const { return typeIndex == kNoType; }
    /** No omitted and no added degrees (a foreign bass is allowed). */
    bool isComplete() const { return omitted.empty() && added.empty(); }
};

} // namespace music
