#pragma once

#include "app/ActionFactory.h"
#include "app/DefaultFilesReader.h"
#include "music/ChordCollection.h"
#include "music/ChordTypeList.h"
#include "music/DataFolder.h"
#include "music/Result.h"
#include "music/ScaleList.h"
#include "music/TreePosition.h"

#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

class QMenu;
class QUndoStack;

namespace app {

class CTreeCtrlX;
class ChordCollectionModel;
class ChordDatabaseCommands;
class ChordTreeCommands;
class UndoTarget;

/**
 * The chord database region: the tree of the working chord collection with its context menu and
 * keys. It owns the chord types, the scales, the collection, the database clipboard and the undo
 * stack of the database; every change goes through `applyEdit` and can be undone. The Chords
 * menu's commands live in `menuCommands()`, the tree's own in `treeCommands()`.
 */
class ChordDatabasePanel : public QWidget
{
    Q_OBJECT
public:
    /** Levels of the tree, from the base group (1) down to the chord (4). */
    enum Level : int
    {
        GroupLevel = 1,
        SectionLevel = 2,
        CollectionLevel = 3,
        ChordLevel = 4,
    };

    /** `actions` resolves the frame's menu-bar commands by id (the Chords menu, Undo...). */
    ChordDatabasePanel(ActionFactory::ActionLookup actions, music::DataFolder dataFolder,
                       QWidget* parent = nullptr);
    ~ChordDatabasePanel() override;

    /**
     * Takes the shipped chord types, scales and chord database as read at start; a list whose
     * file was missing or damaged stays as it was without a message, so that a first start
     * without data still opens.
     */
    void loadDefaults(DefaultFilesReader::Files& files);
    /** Keeps the option to write "default.crd" after each change for the next run. */
    void saveSettings() const;

    music::ChordTypeList& chordTypes() { return m_types; }
    music::ScaleList& scales() { return m_scales; }
    music::ChordCollection& collection() { return m_collection; }
    const music::DataFolder& dataFolder() const { return m_dataFolder; }
    const std::vector<music::Chord>& clipboard() const { return m_clipboard; }
    void setClipboard(std::vector<music::Chord> chords) { m_clipboard = std::move(chords); }
    bool keepsDefaultCurrent() const { return m_keepDefaultCurrent; }
    void setKeepDefaultCurrent(bool keep) { m_keepDefaultCurrent = keep; }

    CTreeCtrlX* tree() const { return m_tree; }
    ChordCollectionModel* model() const { return m_model; }
    QUndoStack* undoStack() const { return m_undo; }
    /** The database's undo history as the view's Undo and Redo see it. */
    UndoTarget* undoTarget() const { return m_undoTarget; }
    QMenu* contextMenu() const { return m_menu; }
    ChordDatabaseCommands& menuCommands() const { return *m_menuCommands; }
    ChordTreeCommands& treeCommands() const { return *m_treeCommands; }

    // The tree selection, as positions in the collection.
    std::optional<music::TreePosition> currentPosition() const;
    std::vector<music::TreePosition> selectedPositions() const;
    void selectPosition(const music::TreePosition& position);
    void selectPositions(const std::vector<music::TreePosition>& positions);
    /** The item of `level` above or at the current item; nothing when the current is higher. */
    std::optional<music::TreePosition> currentAt(int level) const;

    static int levelOf(const music::TreePosition& position);
    /** The position cut to `level`: a chord's collection, a collection's scale group... */
    static music::TreePosition truncated(music::TreePosition position, int level);

    /**
     * Applies an edit to the chord database as one undoable step named `text`. Nothing is
     * recorded when `edit` returns false or leaves the database as it was. `selectAfter` names
     * the items selected afterwards; without it the selection follows its items. With the option
     * on, the database is then written to "default.crd".
     */
    bool applyEdit(const QString& text, const std::function<bool(music::ChordCollection&)>& edit,
                   const std::function<std::vector<music::TreePosition>()>& selectAfter = {});

    /** Shows a failed result in a message box; returns whether it succeeded. */
    bool report(const music::Result& result);
    /** The folder the file dialogs start in. */
    QString userFolder() const;
    /** Starts editing the name of the item of `level` (0: the current item) in place. */
    void renameCurrent(int level = 0);
    /** Shows the collection's changes in the tree (after it was changed directly). */
    void refreshTree();

private:
    /** Opens the base groups that just appeared, as far as the tree's size allows. */
    void openNewGroups(int first, int last);
    void writeDefaultIfKept();

    music::DataFolder m_dataFolder;
    music::ChordTypeList m_types;
    music::ScaleList m_scales;
    music::ChordCollection m_collection;
    std::vector<music::Chord> m_clipboard;
    bool m_keepDefaultCurrent = false;

    CTreeCtrlX* m_tree = nullptr;
    ChordCollectionModel* m_model = nullptr;
    QUndoStack* m_undo = nullptr;
    UndoTarget* m_undoTarget = nullptr;
    QMenu* m_menu = nullptr;
    ChordDatabaseCommands* m_menuCommands = nullptr;
    ChordTreeCommands* m_treeCommands = nullptr;
};

} // namespace app
