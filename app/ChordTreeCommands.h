#pragma once

#include "music/ChordDatabaseEdits.h"
#include "music/TreePosition.h"

#include <QObject>

#include <optional>
#include <vector>

namespace app {

class ChordDatabasePanel;

/**
 * The commands of the chord tree's context menu and keys: adding, removing, renaming and changing
 * base groups, scale groups, collections and chords, the database clipboard, sorting and
 * forbidding notes. Every edit is one undoable step of the panel. Menu items are bound by command
 * id; Remove and Settings have one id per tree level and act on that level of the selection.
 */
class ChordTreeCommands : public QObject
{
    Q_OBJECT
public:
    /** `panel` owns this object and outlives it; binds the panel's menu, keys and model. */
    explicit ChordTreeCommands(ChordDatabasePanel& panel);

    /** Removes the selected items (Del). */
    void removeSelected();
    /** Removes the selected items cut to `level`: a chord's whole collection at level 3... */
    void removeAt(int level);
    void copyChords();
    void cutChords();
    /** Inserts the clipboard before the current chord, or appends it to its collection. */
    void pasteChords(bool append);
    /** Sorts the chords of the current collection (or of everything below the current item). */
    void sortChords(bool upwards);
    /** Appends a base group "noname" and opens its name for editing. */
    void addBaseGroup();
    /** Appends a collection "noname" to the current scale group and opens its name. */
    void addCollection();
    /** Forbids the unticked notes in the scale group of the current item. */
    void forbidNotesWith(const music::ChordDatabaseEdits::Ticks& allowed);
    void generateBaseWith(const music::ChordDatabaseEdits::GenerateOptions& options);
    /** Adds a chord to the collection of `target` (before it, when `target` is a chord). */
    void insertChord(const music::TreePosition& target, const music::Chord& chord);

    // Dialog front ends.
    void generateBase();
    void addScaleGroup();
    void addChordFromList();
    void addChordByNotes();
    /** The settings of the current item: its dialog for scale groups and chords, else rename. */
    void editSettings();
    /** The settings command of the sub-menu of `level`. */
    void editSettingsAt(int level);
    void forbidNotes();

private:
    void bindMenu();
    void bindKeys();
    void bindModel();
    std::vector<music::TreePosition> selectedChords() const;
    /** The current item when it is a collection or chord; says why not otherwise. */
    std::optional<music::TreePosition> chordTarget();

    ChordDatabasePanel& m_panel;
};

} // namespace app
