#pragma once

#include "app/CNoteKeyboard.h"
#include "music/TreePosition.h"
#include "part/ChordOrder.h"
#include "part/PartChord.h"

#include <QObject>
#include <QString>

#include <vector>

class QMimeData;

namespace app {

class ChordDatabasePanel;
class PartFileCommands;
class PartListPanel;
class PartSession;

/**
 * The part list's commands: adding chords from the chord database, moving them, the chord
 * dialogs, the clipboard, removing, the scale search over the chords' notes, printing and the
 * chords' patterns. Each edit is one undoable step of the part, named as its menu item or its
 * undo label says ("Add chord", "Move/Add chords", "Paste", "Remove chords"...); afterwards the
 * chords it concerns are selected.
 */
class PartListCommands : public QObject
{
    Q_OBJECT
public:
    static constexpr const char* kAddChord = "Add chord";
    static constexpr const char* kMoveAddChords = "Move/Add chords";
    static constexpr const char* kSetChord = "Set chord";
    static constexpr const char* kRemoveChords = "Remove chords";
    static constexpr const char* kDeleteAllChords = "Delete all chords";
    static constexpr const char* kPaste = "Paste";
    static constexpr const char* kCut = "Cut";
    static constexpr const char* kPartFull = "A part holds at most 65535 chords.";

    /** Every reference outlives this object, which `panel` owns. */
    PartListCommands(PartListPanel& panel, PartSession& session, ChordDatabasePanel& chordDatabase,
                     PartFileCommands& partFiles);

    /** Database chords as new part chords: the current pattern and "Def Length" each. */
    std::vector<part::PartChord>
    fromDatabase(const std::vector<music::TreePosition>& positions) const;
    /**
     * Inserts chords before `row` (at the end for the row count) as one step named `label` and
     * selects them; a message says why when the part has no room for them.
     */
    bool insertChords(int row, std::vector<part::PartChord> chords, const QString& label);
    /** Whether the database tree has chords selected for "Add Chord". */
    bool hasDatabaseChords() const;
    /** "Add Chord": the chords selected in the database tree, appended. */
    void addSelectedDatabaseChords();
    /** Moves (or copies) the chords of `rows` before `target`, which counts the old rows. */
    bool moveChords(const std::vector<int>& rows, int target, bool copy);
    /** Chords dropped before `row`: from the database, from this list, or from elsewhere. */
    void drop(const QMimeData& data, int row, Qt::DropAction action);

    /** "Chord Settings" for the current chord. */
    void editChordSettings();
    bool applyChordSettings(int row, const part::PartChord& chord);
    void forbidNotes();

    void copy();
    void cut();
    /** Inserts the clipboard's chords before the current chord, or appends them. */
    void paste(bool append);
    void removeSelected();
    void clearList();

    /** Sorts the selected chords among their places; with one or none selected, all chords. */
    void sort(part::ChordSortKey key, bool descending);
    /** Normalize: every chord (`all`) or the selected ones, in close position. */
    void normalize(bool all);
    /** The next inversion of the selected chords; refused (and said why) past the top note. */
    void invert();

    /** The pitch classes the scale search starts from: the selected chords', else all. */
    CNoteKeyboard::Ticks scaleSearchNotes() const;
    /** "Find Scale": the scale search dialog with those notes ticked. */
    void findScale();
    void printList();

    /** Whether the part presets have a current item that "Replace Current Preset" replaces. */
    bool hasCurrentPreset() const;
    void replaceCurrentPreset();

    /** The selected chords, in order. */
    std::vector<part::PartChord> selectedChords() const;

    /** Takes a transformed part as one step, keeping the selection as it was. */
    void takeTransformed(const char* label, const part::Part& transformed);

private:
    void removeRows(std::vector<int> rows, const QString& label);

    PartListPanel& m_panel;
    PartSession& m_session;
    ChordDatabasePanel& m_chordDatabase;
    PartFileCommands& m_partFiles;
};

} // namespace app
