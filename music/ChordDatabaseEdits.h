#pragma once

#include "music/ChordCollection.h"
#include "music/ChordTypeList.h"
#include "music/TreePosition.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace music {

/**
 * The edits the chord database tree offers on a collection. Positions name items as the tree shows
 * them; every function checks them and does nothing for a position that names no item.
 */
class ChordDatabaseEdits
{
public:
    using Ticks = std::array<bool, music::kPitchClassCount>;

    /** Options of the generation dialog. */
    struct GenerateOptions
    {
        std::string name = "noname";
        /** The scale notes (ticked pitch classes); nothing: no scale chosen. */
        std::optional<Ticks> scale;
        /** "Create the chords in list for every note in scale.": only roots in the scale. */
        bool everyNoteInScale = false;
        /** "Only allow those chords, which consists of scale notes." */
        bool onlyScaleNotes = false;
    };

    /**
     * "Generate List": the two generated base groups, each limited by the options when a scale
     * is given. Replaces the collection.
     */
    static void generateList(music::ChordCollection& collection, const music::ChordTypeList& types,
                             const GenerateOptions& options);
    /**
     * "Generate Base": appends one base group named after the options: a section per root note
     * (only the roots of the scale when asked), each holding the chords of every type on that
     * root grouped by their number of notes. With a scale the sections are scale groups of its
     * notes. Returns the new group's index, or -1 when nothing was generated or the tree is full.
     */
    static int generateBase(music::ChordCollection& collection, const music::ChordTypeList& types,
                            const GenerateOptions& options);

    /** Removes the items; children go with their parents. Returns how many were removed. */
    static int remove(music::ChordCollection& collection,
                      std::vector<music::TreePosition> positions);
    /** Renames any item. */
    static bool rename(music::ChordCollection& collection, const music::TreePosition& position,
                       const std::string& name);

    /** Appends a subsection to a section; returns its position. */
    static std::optional<music::TreePosition> addSubsection(music::ChordCollection& collection,
                                                            const music::TreePosition& section,
                                                            std::string name);
    /**
     * Inserts chords before the chord `target`, or appends them to the subsection `target`.
     * Returns the positions of the inserted chords (empty when the target is no collection or
     * chord, or the collection is full).
     */
    static std::vector<music::TreePosition> insertChords(music::ChordCollection& collection,
                                                         const music::TreePosition& target,
                                                         const std::vector<music::Chord>& chords);
    /** Copies the chords at the positions, in walk order. */
    static std::vector<music::Chord> chordsAt(const music::ChordCollection& collection,
                                              std::vector<music::TreePosition> positions);
    /**
     * Moves (or copies) chords to a target as `insertChords` does. Moving chords before one of
     * themselves keeps them where they were. Returns the new positions.
     */
    static std::vector<music::TreePosition> moveChords(music::ChordCollection& collection,
                                                       std::vector<music::TreePosition> chords,
                                                       const music::TreePosition& target,
                                                       bool copy);
    /** Replaces a chord. */
    static bool replaceChord(music::ChordCollection& collection,
                             const music::TreePosition& position, const music::Chord& chord);
    /** Replaces name, scale flag and notes of a section. */
    static bool setSection(music::ChordCollection& collection, const music::TreePosition& position,
                           const std::string& name, bool scaleFlag,
                           const std::vector<music::NoteValue>& notes);

    /**
     * Sorts the chords of every collection below `position` (a whole group, a section or one
     * collection; a chord stands for its collection) by their notes, lowest note first, then the
     * next; `upwards` false reverses the order. Equal chords keep their order.
     */
    static bool sortChords(music::ChordCollection& collection, const music::TreePosition& position,
                           bool upwards);

    /**
     * Forbids the unticked notes in a section: removes its chords that use one of them, and makes
     * the section a scale group of the ticked notes. Returns the number of chords removed.
     */
    static int forbidNotes(music::ChordCollection& collection, const music::TreePosition& section,
                           const Ticks& allowed);

    /** Whether a chord uses only ticked pitch classes. */
    static bool usesOnly(const music::Chord& chord, const Ticks& allowed);
    /** A construction string for the ticked notes above `base` ("1;3;5;"), empty when none. */
    static std::string constructionFromTicks(const Ticks& ticks, music::PitchClass base);
    /** An "x"/"o" pattern for the ticked notes from `base` upward over one octave. */
    static std::string scalePatternFromTicks(const Ticks& ticks, music::PitchClass base);
};

} // namespace music
