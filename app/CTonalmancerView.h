#pragma once

#include "app/CResizableFormView.h"
#include "midi/MidiSettings.h"
#include "music/DataFolder.h"
#include "part/PartPresetList.h"
#include "part/PatternPresetList.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>

class QListWidget;
class QMenu;
class QStackedWidget;
class QTableWidget;
class QTreeWidget;

namespace midi {
class MidiPortList;
}

namespace app {

class CMainFrame;
class CTonalmancerDoc;
class ChordDatabasePanel;
class PartPresetSource;
class PartSession;
class PartSettingsPanel;
class PatternListPanel;
class PatternPresetSource;
class PresetPanel;
class UndoRouter;
class UndoTarget;

/**
 * The main form: a thin frame that composes the regions (panels) of the window and routes the
 * window's commands to them. The chord database sits on the left, the part (its chords, patterns
 * and the pattern grid) in the middle, the part settings or the song's machines and the presets
 * on the right. Undo and Redo act on the region that has, or last had, the focus. The view owns
 * the MIDI settings; the preset panels own their lists.
 */
class CTonalmancerView : public CResizableFormView
{
    Q_OBJECT
public:
    /** The regions of the form, as the layout places them. */
    struct Regions
    {
        QWidget* chordDatabase = nullptr;
        QWidget* partList = nullptr;
        QWidget* patternList = nullptr;
        QWidget* patternGrid = nullptr;
        /** The part settings and the song's machines share one place; one is shown. */
        QWidget* partSettings = nullptr;
        QWidget* machines = nullptr;
        QWidget* partPresets = nullptr;
        QWidget* patternPresets = nullptr;
    };

    CTonalmancerView(CMainFrame& frame, CTonalmancerDoc& document, music::DataFolder dataFolder,
                     std::shared_ptr<midi::MidiPortList> ports, QWidget* parent = nullptr);
    ~CTonalmancerView() override;

    /** Reads the settings file and loads the default chord database and presets. */
    void initialUpdate();
    /** Writes the settings file; called once when the main window closes. */
    void shutdown();

    ChordDatabasePanel* chordDatabase() const { return m_chordDatabase; }
    /** The part being edited; every part panel edits it through this session. */
    PartSession* partSession() const { return m_partSession; }
    const Regions& regions() const { return m_regions; }
    const midi::MidiSettings& midiSettings() const { return m_midiSettings; }
    midi::MidiSettings& midiSettings() { return m_midiSettings; }
    const part::PartPresetList& partPresets() const;
    const part::PatternPresetList& patternPresets() const;
    /** The preset lists; their current preset is what "Replace Current Preset" replaces. */
    PresetPanel* partPresetPanel() const { return m_partPresetPanel; }
    PresetPanel* patternPresetPanel() const { return m_patternPresetPanel; }
    PatternListPanel* patternList() const { return m_patternList; }
    PartSettingsPanel* partSettings() const { return m_partSettings; }

    QTreeWidget* machineList() const { return m_machineList; }
    QStackedWidget* sideStack() const { return m_sideStack; }

    /** A context menu by the name the command table gives it; nullptr for an unknown name. */
    QMenu* contextMenu(std::string_view name) const;
    /** Makes a panel's own context menu known under its table name. */
    void registerContextMenu(std::string_view name, QMenu* menu);
    /** Undo and Redo act on `target` while the focus is in `region`. */
    void registerUndoTarget(QWidget* region, UndoTarget* target);
    UndoRouter* undoRouter() const { return m_undoRouter; }

    /** Shows the song's machines instead of the part settings, or the settings again. */
    void showMachineView(bool machines);
    /** Fills the machine view from the document's song, filtered as the settings say. */
    void refreshMachines();

private:
    // One factory point per region: each returns the region's widget, ready to be laid out. The
    // regions still without a panel class are placeholders with the table's context menu.
    QWidget* createChordDatabasePanel();
    QWidget* createPartListPanel();
    QWidget* createPatternListPanel();
    QWidget* createPatternGridPanel();
    QWidget* createPartSettingsPanel();
    QWidget* createMachinePanel();
    QWidget* createPartPresetPanel();
    QWidget* createPatternPresetPanel();

    void layOut(const Regions& regions);
    /** Gives a placeholder the context menu `name` of the command table. */
    void attachContextMenu(std::string_view name, QWidget* widget);
    void connectCommands();
    void connectTempoBar();

    CMainFrame& m_frame;
    CTonalmancerDoc& m_document;
    music::DataFolder m_dataFolder;
    std::shared_ptr<midi::MidiPortList> m_ports;

    midi::MidiSettings m_midiSettings;
    bool m_settingsWritten = false;

    Regions m_regions;
    ChordDatabasePanel* m_chordDatabase = nullptr;
    PartSession* m_partSession = nullptr;
    UndoRouter* m_undoRouter = nullptr;
    PresetPanel* m_partPresetPanel = nullptr;
    PresetPanel* m_patternPresetPanel = nullptr;
    PartPresetSource* m_partPresetSource = nullptr;       // owned by m_partPresetPanel
    PatternPresetSource* m_patternPresetSource = nullptr; // owned by m_patternPresetPanel
    PatternListPanel* m_patternList = nullptr;
    PartSettingsPanel* m_partSettings = nullptr;
    QStackedWidget* m_sideStack = nullptr;
    QTreeWidget* m_machineList = nullptr;
    std::map<std::string, QMenu*, std::less<>> m_menus;
};

} // namespace app
