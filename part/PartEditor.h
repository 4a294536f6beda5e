#pragma once

#include "part/Part.h"
#include "part/Pattern.h"
#include "part/UndoHistory.h"

#include <cstdint>
#include <string>
#include <vector>

namespace part {

struct PartPreset;

/**
 * The part being edited with its undo history and the editing commands on patterns. Each command
 * records an undo point under its own name before it changes anything. Chords are addressed by
 * index; `selection` lists the chords selected in the part list (indices outside are skipped).
 */
class PartEditor
{
public:
    // Undo labels, as the menu shows them.
    static constexpr const char* kAddPattern = "Add pattern";
    static constexpr const char* kCopyPattern = "Copy pattern";
    static constexpr const char* kRemovePattern = "Remove pattern";
    static constexpr const char* kRemoveAllPatterns = "Remove all patterns";
    static constexpr const char* kChangePattern = "Change pattern";
    static constexpr const char* kApplyPatternPreset = "Apply pattern preset";
    static constexpr const char* kApplyPartPreset = "Apply part preset";
    static constexpr const char* kLoadPart = "Load part";
    static constexpr const char* kNewPart = "New part";

    /** Starts with `Part::makeNew()` and an empty history. */
    PartEditor();
    explicit PartEditor(Part part) : m_part(std::move(part)) {}

    const Part& part() const { return m_part; }
    /** For edits made elsewhere; call recordUndo() first so they can be undone. */
    Part& part() { return m_part; }
    const UndoHistory& history() const { return m_history; }

    /** Records an undo point for an edit made outside these commands ("Add chord", ...). */
    void recordUndo(const std::string& label) { m_history.record(label, m_part); }

    /** Appends an empty "noname" pattern; the current pattern stays. */
    void addPattern();
    /** Appends a copy of the current pattern and makes it current. Nothing without one. */
    void copyPattern();
    /**
     * Removes the current pattern (nothing when the index is outside the list). An emptied list
     * gets a new empty pattern. Chords on the removed or later patterns move down by one (never
     * below 0), and the current pattern moves down by one when above 0.
     */
    void removePattern();
    /** One empty pattern remains; every chord and the current pattern point at it. */
    void removeAllPatterns();

    /** Sets the selected chords' pattern; nothing when none is selected or index is too big. */
    void setPatternOfChords(const std::vector<int>& selection, std::uint16_t patternIndex);
    /** Moves the selected chords to the next pattern where there is one. */
    void nextPatternOfChords(const std::vector<int>& selection);
    /** Moves the selected chords to the previous pattern where there is one. */
    void previousPatternOfChords(const std::vector<int>& selection);

    /** "New part": no chords, one empty pattern, no selection; tempo, octave and flags stay. */
    void newPart();
    /** Replaces the part by a loaded one (recording "Load part"). */
    void loadPart(Part loaded);
    /** Appends a copy of a preset pattern. */
    void applyPatternPreset(const Pattern& preset);
    /** Takes chords, patterns, tempo, selection, flags and base octave from a part preset. */
    void applyPartPreset(const PartPreset& preset);

    /** Steps back; false when there is nothing to undo. */
    bool undo();
    /** Steps forward after an undo; false when there is nothing to redo. */
    bool redo();

private:
    Part m_part;
    UndoHistory m_history;
};

} // namespace part
