#pragma once

#include "app/CResizableFormView.h"
#include "midi/MidiSettings.h"
#include "music/ChordCollection.h"
#include "music/ChordDatabaseEdits.h"
#include "music/ChordSearch.h"
#include "music/ChordTypeList.h"
#include "music/DataFolder.h"
#include "music/ScaleList.h"
#include "music/ScaleSearch.h"
#include "part/PartPresetList.h"
#include "part/PatternPresetList.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class QListWidget;
class QMenu;
class QStackedWidget;
class QTableWidget;
class QTreeWidget;
class QUndoStack;

namespace midi {
class MidiPortList;
}

namespace app {

class CMainFrame;
class CSearchInfoWindow;
class CTonalmancerDoc;
class CTreeCtrlX;
class ChordCollectionModel;

/**
 * The main form: the chord database tree on the left, the part (its chords, patterns and the
 * pattern grid) in the middle, the part settings or the song's machines and the presets on the
 * right. It owns the chord types, scales, chord database, presets and MIDI settings, and carries
 * out the chord database commands. Every change of the database is undoable.
 */
class CTonalmancerView : public CResizableFormView
{
    Q_OBJECT
public:
    static constexpr const char* kChordListFilter = "List (*.crd)|*.crd|All Files (*.*)|*.*||";
    static constexpr const char* kDefaultChordList = "default.crd";

    CTonalmancerView(CMainFrame& frame, CTonalmancerDoc& document, music::DataFolder dataFolder,
                     std::shared_ptr<midi::MidiPortList> ports, QWidget* parent = nullptr);
    ~CTonalmancerView() override;

    /** Reads the settings file and loads the default chord database and presets. */
    void initialUpdate();
    /** Writes the settings file; called once when the main window closes. */
    void shutdown();

    music::ChordTypeList& chordTypes() { return m_types; }
    music::ScaleList& scales() { return m_scales; }
    music::ChordCollection& collection() { return m_collection; }
    const midi::MidiSettings& midiSettings() const { return m_midiSettings; }
    midi::MidiSettings& midiSettings() { return m_midiSettings; }
    const part::PartPresetList& partPresets() const { return m_partPresets; }
    const part::PatternPresetList& patternPresets() const { return m_patternPresets; }
    const music::ChordSearch& chordSearch() const { return m_chordSearch; }
    const music::ScaleSearch& scaleSearch() const { return m_scaleSearch; }
    bool keepsDefaultCurrent() const { return m_keepDefaultCurrent; }

    CTreeCtrlX* chordTree() const { return m_tree; }
    ChordCollectionModel* chordModel() const { return m_model; }
    QUndoStack* undoStack() const { return m_undo; }
    CSearchInfoWindow* searchInfo() const { return m_searchInfo; }
    QTreeWidget* settingsTree() const { return m_settingsTree; }
    QTreeWidget* machineList() const { return m_machineList; }
    QStackedWidget* sideStack() const { return m_sideStack; }
    /** A context menu by the name the command table gives it; nullptr for an unknown name. */
    QMenu* contextMenu(std::string_view name) const;

    // The tree selection, as positions in the collection.
    std::optional<music::TreePosition> currentPosition() const;
    std::vector<music::TreePosition> selectedPositions() const;
    void selectPosition(const music::TreePosition& position);
    void selectPositions(const std::vector<music::TreePosition>& positions);

    /**
     * Applies an edit to the chord database as one undoable step named `text`. Nothing is
     * recorded when `edit` returns false or leaves the database as it was. With the option on,
     * the database is then written to "default.crd".
     */
    bool applyEdit(const QString& text, const std::function<bool(music::ChordCollection&)>& edit,
                   const std::function<std::vector<music::TreePosition>()>& selectAfter = {});

    // Commands whose dialogs have been answered; the dialog front ends below call them.
    void findChordWith(const music::SearchCriteria::Ticks& ticks, const QString& include,
                       const QString& skip);
    void continueSearch();
    void findScaleWith(const music::SearchCriteria::Ticks& ticks, const QString& include,
                       const QString& skip);
    void generateListWith(const music::ChordDatabaseEdits::GenerateOptions& options);
    void generateBaseWith(const music::ChordDatabaseEdits::GenerateOptions& options);
    bool loadChordListFrom(const QString& path);
    bool saveChordListTo(const QString& path);
    void loadDefaultChordList();
    void saveDefaultChordList();
    void createNewList();
    void removeSelected();
    void copyChords();
    void cutChords();
    void pasteChords(bool append);
    void sortChords(bool upwards);
    void addBaseGroup();
    void addCollection();
    /** Forbids the unticked notes in the scale group of the current item. */
    void forbidNotesWith(const music::ChordDatabaseEdits::Ticks& allowed);
    const std::vector<music::Chord>& clipboard() const { return m_clipboard; }

    // Dialog front ends of the commands.
    void openManager();
    void findChord();
    void findScale();
    void generateList();
    void generateBase();
    void loadChordList();
    void saveChordList();
    void addScaleGroup();
    void addChordFromList();
    void addChordByNotes();
    /** Adds a chord to the collection of `target` (before it, when `target` is a chord), undoably.
     */
    void insertChord(const music::TreePosition& target, const music::Chord& chord);
    void editSettings();
    void forbidNotes();
    void renameCurrent(int level = 0);
    void showSearchInfo();

    /** Shows the song's machines instead of the part settings, or the settings again. */
    void showMachineView(bool machines);
    /** Fills the machine view from the document's song, filtered as the settings say. */
    void refreshMachines();
    void refreshPresets();

private:
    void buildLayout();
    void buildContextMenus();
    void connectCommands();
    void connectTreeKeys();
    void refreshTree();
    void writeDefaultIfKept();
    bool report(const music::Result& result);
    QString userFolder() const;
    /** The item of `level` (1 group .. 4 chord) above or at the current item. */
    std::optional<music::TreePosition> currentAt(int level) const;
    std::optional<music::TreePosition> currentSection() const;

    CMainFrame& m_frame;
    CTonalmancerDoc& m_document;
    music::DataFolder m_dataFolder;
    std::shared_ptr<midi::MidiPortList> m_ports;

    music::ChordTypeList m_types;
    music::ScaleList m_scales;
    music::ChordCollection m_collection;
    music::ChordSearch m_chordSearch;
    music::ScaleSearch m_scaleSearch;
    std::vector<music::TreePosition> m_scaleHits;
    std::vector<music::Chord> m_clipboard;
    midi::MidiSettings m_midiSettings;
    part::PartPresetList m_partPresets;
    part::PatternPresetList m_patternPresets;
    bool m_keepDefaultCurrent = false;
    bool m_settingsWritten = false;

    CTreeCtrlX* m_tree = nullptr;
    ChordCollectionModel* m_model = nullptr;
    QUndoStack* m_undo = nullptr;
    QListWidget* m_partList = nullptr;
    QListWidget* m_patternList = nullptr;
    QTableWidget* m_patternGrid = nullptr;
    QListWidget* m_partPresetList = nullptr;
    QListWidget* m_patternPresetList = nullptr;
    QStackedWidget* m_sideStack = nullptr;
    QTreeWidget* m_settingsTree = nullptr;
    QTreeWidget* m_machineList = nullptr;
    CSearchInfoWindow* m_searchInfo = nullptr;
    std::map<std::string, QMenu*, std::less<>> m_menus;
};

} // namespace app
