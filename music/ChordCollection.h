#pragma once

#include "music/ChordBaseGroup.h"
#include "music/ChordTypeList.h"
#include "music/Result.h"
#include "music/TreePosition.h"

#include <array>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace music {

class ScaleList;

/**
 * The tree of concrete chords the user picks from: base groups, sections, subsections, chords.
 * Every level holds at most 65535 children (the counts are 16-bit in the file).
 *
 * Its ".crd" file: the magic line, the number of base groups, then depth first every group's
 * name and section count, every section's name, subsection count, scale flag and (with the flag
 * set) its listed notes, every subsection's name and chord count, and every chord's name, note
 * count and the values of its first slots. Lines end in a single line feed.
 */
class ChordCollection
{
public:
    static constexpr std::string_view kMagic = "Tonalmancer_Chords";
    /** The working collection in the data folder, loaded at start-up. */
    static constexpr const char* kDefaultFileName = "default.crd";
    static constexpr std::string_view kErrorOpening = "Error opening file.";
    static constexpr std::string_view kNotValid = "Seems to be no valid file.";
    static constexpr std::size_t kMaxChildren = 65535;

    static constexpr std::string_view kSortedByChord = "Sorted by chord";
    static constexpr std::string_view kSortedByNote = "Sorted by note";
    /** The sections of "Sorted by chord", for types of 2, 3, 4 and 5 intervals. */
    static constexpr std::array<std::string_view, 4> kChordSections = {"Diads", "Triads",
                                                                       "Sevenths", "Ninths"};
    /** The section of "Sorted by chord" after "Ninths" for types of more than five intervals. */
    static constexpr std::string_view kCutSection = "Cut to five notes";
    /** The class words of chords by their number of notes, 0..5. */
    static constexpr std::array<std::string_view, 6> kClassWords = {"empty",  "notes",    "diads",
                                                                    "triads", "sevenths", "ninths"};
    /** The base group that holds the scale groups of the shipped database. */
    static constexpr std::string_view kScalesGroup = "Scales";

    const std::vector<ChordBaseGroup>& baseGroups() const { return m_groups; }
    std::vector<ChordBaseGroup>& baseGroups() { return m_groups; }
    bool isEmpty() const { return m_groups.empty(); }
    void clear() { m_groups.clear(); }
    /** The number of chords in the whole tree. */
    std::size_t chordCount() const;

    /** The chord or section at a position; nullptr when there is none. */
    const Chord* chordAt(const TreePosition& position) const;
    const ChordSection* sectionAt(const TreePosition& position) const;

    /**
     * The chord of `type` on the base pitch class `base`: the base plus each interval in the
     * order written (values 0..32, built upward from octave 0), named with the note's name
     * followed directly by the type's name. Only the first five intervals get a slot; the name
     * of a chord that leaves intervals out says which, as in "C13full (no 11, 13)".
     */
    static Chord makeChord(const ChordType& type, const IntervalList& intervals, PitchClass base);

    /** The intervals (in semitones) that get no slot in a chord: those after the fifth. */
    static std::vector<std::uint8_t> droppedIntervals(const IntervalList& intervals);
    /** " (no 11, 13)": the symbols of the dropped intervals; empty when none is dropped. */
    static std::string droppedMark(const IntervalList& intervals);
    /**
     * What defining a type of more than five intervals should tell the user, naming the
     * intervals its chords leave out; empty for a type whose chords hold every interval.
     */
    static std::string droppedWarning(const IntervalList& intervals);

    /**
     * Decides whether a generated chord goes into the collection; `root` is the base pitch class
     * the chord was built on (its name alone cannot tell: "C" + "#5" reads as "C#5").
     */
    using ChordFilter = std::function<bool(PitchClass root, const Chord& chord)>;

    /**
     * "Generate List": replaces the collection with the base groups "Sorted by chord" and
     * "Sorted by note" built from `types`, keeping only the chords `keep` accepts (all when it
     * is empty), then removes their empty sections and subsections. Types whose construction is
     * invalid or empty make no chord. The chords of a type with more than five intervals keep
     * their first five notes and say in their names which they leave out; they go to the
     * section "Cut to five notes" of "Sorted by chord" (never among the "Ninths") and to the
     * five-note "ninths" of "Sorted by note".
     */
    void generateList(const ChordTypeList& types, const ChordFilter& keep = {});

    /** Appends an empty base group and returns its index; -1 when the tree holds 65535 already. */
    int addBaseGroup(std::string name);
    /**
     * "Add Scale/Group": appends a section named `name` to base group `baseGroup`. Its listed
     * notes are the ticked pitch classes (ticks indexed from C) taken from `base` upward over one
     * octave, so the list starts at the base note when that is ticked and wraps past B to C.
     * Fails when there is no such base group or it is full.
     */
    Result addScaleGroup(std::size_t baseGroup, std::string name,
                         const std::array<bool, kPitchClassCount>& ticks, PitchClass base,
                         bool scaleFlag);

    /**
     * Adds a base group "Scales" holding, for each of `scaleNames` found in `scales` and each of
     * the twelve roots from C, a scale group named root and scale ("C major", "C# major", ...).
     * Names not in the list are skipped. Returns the number of sections added.
     */
    int addScaleGroups(const ScaleList& scales, const std::vector<std::string>& scaleNames);

    /** Replaces the collection with the tree read from file bytes. */
    Result read(std::string_view bytes);
    Result load(const std::filesystem::path& path);
    std::string toBytes() const;
    /** Saves through a temporary file, so a failed save leaves the old file as it was. */
    Result save(const std::filesystem::path& path) const;

private:
    std::vector<ChordBaseGroup> m_groups;
};

} // namespace music
