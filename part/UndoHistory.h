#pragma once

#include "part/Part.h"

#include <optional>
#include <string>
#include <vector>

namespace part {

/**
 * The part editor's undo history: at most 50 labelled snapshots of the whole part (chords,
 * patterns, tempo, selection, base octave, flags, current pattern) and a position, -1 when
 * there is none. A plain value type.
 *
 * Recording (before an edit changes anything): the snapshots after the position are dropped;
 * when more than 49 remain the oldest goes and the position moves back by one (not below -1);
 * the new snapshot is appended and the position points at it. Snapshot k therefore holds the
 * part as it was before edit k.
 *
 * Undo restores the snapshot at the position and moves the position back by one. When the
 * position is at the newest snapshot, the current part is first kept aside as the redo tip,
 * since no snapshot holds the state after the newest edit.
 *
 * Redo undoes an undo: it restores the snapshot two after the position (the state after the edit
 * that the last undo took back) or, past the newest snapshot, the redo tip, and moves the
 * position forward by one. Recording a new edit drops everything redo could reach.
 */
class UndoHistory
{
public:
    static constexpr int kMaxSnapshots = 50;

    struct Snapshot
    {
        std::string label; // the command's name, "Add pattern", "Load part", ...
        Part part;
        friend bool operator==(const Snapshot&, const Snapshot&) = default;
    };

    /** Records the part as it is before the edit named `label`. */
    void record(std::string label, const Part& before);

    bool canUndo() const { return m_position >= 0; }
    bool canRedo() const;
    /** The label of the edit that undo takes back; empty when there is none. */
    std::string undoLabel() const;
    /** The label of the edit that redo brings back; empty when there is none. */
    std::string redoLabel() const;

    /** The part to show after undo, given the part shown now; nothing when there is no undo. */
    std::optional<Part> undo(const Part& current);
    /** The part to show after redo; nothing when there is no redo. */
    std::optional<Part> redo();

    void clear();

    int position() const { return m_position; }
    int size() const { return static_cast<int>(m_snapshots.size()); }
    const Snapshot& snapshot(int index) const { return m_snapshots.at(index); }

    friend bool operator==(const UndoHistory&, const UndoHistory&) = default;

private:
    std::vector<Snapshot> m_snapshots;
    int m_position = -1;
    std::optional<Snapshot> m_redoTip; // the state after the newest edit, set by undo
};

} // namespace part
