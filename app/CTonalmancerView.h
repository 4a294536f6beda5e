#pragma once

#include "app/CResizableFormView.h"
#include "app/CommandLine.h"
#include "midi/MidiSettings.h"
#include "music/DataFolder.h"
#include "part/PartPresetList.h"
#include "part/PatternPresetList.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>

class QDockWidget;
class QMenu;
class QMimeData;
class QStackedWidget;

namespace midi {
class MidiInPortList;
class MidiPortList;
} // namespace midi

namespace app {

class CMainFrame;
class CTonalmancerDoc;
class ChordDatabasePanel;
class DefaultFilesReader;
class KeyboardPanel;
class MachinePanel;
class MathWindow;
class MidiInputController;
class PartExportCommands;
class PartFileCommands;
class PartListPanel;
class PartMidiDrag;
class PartPresetSource;
class PartSession;
class PartSettingsPanel;
class PatternGridPanel;
class PatternListPanel;
class PatternPresetSource;
class PresetPanel;
class TransportController;
class UndoRouter;
class UndoTarget;
class VoicingCommands;

/**
 * The main form: a thin frame that composes the regions (panels) of the window and routes the
 * window's commands to them. The chord database sits on the left, the part (its chords, patterns
 * and the pattern grid) in the middle, the part settings or the song's machines and the presets
 * on the right. Undo and Redo act on the region that has, or last had, the focus. The view owns
 * the MIDI settings; the preset panels own their lists. The keyboard panel is a dock of the main
 * window (View > Keyboard), fed by the MIDI input the settings name.
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

    /** Reads the settings file and loads the default chord database, presets and part. */
    void initialUpdate();
    /** Opens a part editor file named on the command line; false (and said why) when not. */
    bool openPartEditorFile(CommandLine::FileKind kind, const QString& path);
    /** Writes the settings file; called once when the main window closes. */
    void shutdown();

    ChordDatabasePanel* chordDatabase() const { return m_chordDatabase; }
    /** The part being edited; every part panel edits it through this session. */
    PartSession* partSession() const { return m_partSession; }
    PartListPanel* partList() const { return m_partList; }
    /** The keyboard panel and its dock (View > Keyboard). */
    KeyboardPanel* keyboardPanel() const { return m_keyboard; }
    QDockWidget* keyboardDock() const { return m_keyboardDock; }
    /** The MIDI input device the settings name. */
    MidiInputController* midiInput() const { return m_midiInput; }
    VoicingCommands* voicing() const { return m_voicing; }
    /** The pattern generator window (View > Math Window), built on first use. */
    MathWindow* mathWindow();
    /** The Part menu's files and presets. */
    PartFileCommands* partFiles() const { return m_partFiles; }
    /** The part's name for the window title, "*" marking unsaved changes. */
    QString partTitle() const;
    /** Asks about a changed part before the window closes; false keeps it open. */
    bool mayClose();
    const Regions& regions() const { return m_regions; }
    const midi::MidiSettings& midiSettings() const { return m_midiSettings; }
    midi::MidiSettings& midiSettings() { return m_midiSettings; }
    const part::PartPresetList& partPresets() const;
    const part::PatternPresetList& patternPresets() const;
    /** The preset lists; their current preset is what "Replace Current Preset" replaces. */
    PresetPanel* partPresetPanel() const { return m_partPresetPanel; }
    PresetPanel* patternPresetPanel() const { return m_patternPresetPanel; }
    /** The part presets' current item (Replace Current Preset acts on it); -1 for none. */
    int currentPartPreset() const;
    PatternListPanel* patternList() const { return m_patternList; }
    PartSettingsPanel* partSettings() const { return m_partSettings; }

    /**
     * The song's machines ("Show Bmx"). Hidden at start, the panel is built right after the
     * window's first frame (completeStart()), or here when asked for before that.
     */
    MachinePanel* machinePanel();
    /** Builds what the window's first frame does not show; called once the frame is painted. */
    void completeStart();
    /**
     * The machine "Create Buzz Patterns" writes into: the first selected machine of the machine
     * view from the top; empty when none is selected.
     */
    QString selectedMachineName() const;
    QStackedWidget* sideStack() const { return m_sideStack; }

    /** A context menu by the name the command table gives it; nullptr for an unknown name. */
    QMenu* contextMenu(std::string_view name) const;
    /** Makes a panel's own context menu known under its table name. */
    void registerContextMenu(std::string_view name, QMenu* menu);
    /** Undo and Redo act on `target` while the focus is in `region`. */
    void registerUndoTarget(QWidget* region, UndoTarget* target);
    UndoRouter* undoRouter() const { return m_undoRouter; }
    /** Play, stop and the MIDI settings dialog. */
    TransportController* transport() const { return m_transport; }
    /** "Create Midi File" and "Create Buzz Patterns". */
    PartExportCommands* partExports() const { return m_partExports; }
    /**
     * Adds the part, written as a MIDI file as "Create Midi File" would write it now, to the data
     * of a drag leaving the part list (a file URL for file managers and DAWs). False when it
     * could not be written.
     */
    bool addPartAsMidiFile(QMimeData& dragData);
    /** The file the last drag offered (tests). */
    QString lastDraggedMidiFile() const;

    /** Shows the song's machines instead of the part settings, or the settings again. */
    void showMachineView(bool machines);

private:
    // One factory point per region: each returns the region's widget, ready to be laid out.
    QWidget* createChordDatabasePanel();
    QWidget* createPartListPanel();
    QWidget* createPatternListPanel();
    QWidget* createPatternGridPanel();
    QWidget* createPartSettingsPanel();
    /** The machines' region: empty until machinePanel() builds the panel into it. */
    QWidget* createMachineRegion();
    QWidget* createPartPresetPanel();
    QWidget* createPatternPresetPanel();
    /** The keyboard dock and the MIDI input; after the part list, before the transport. */
    void createKeyboardPanel();
    /** Opens the input device the settings name, if another than the open one. */
    void openMidiInput(bool reportFailure);

    void layOut(const Regions& regions);
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
    PartFileCommands* m_partFiles = nullptr;
    PartListPanel* m_partList = nullptr;
    PatternGridPanel* m_patternGrid = nullptr;
    MathWindow* m_mathWindow = nullptr;
    std::filesystem::path m_recipeFile; // the Math Window's user recipes
    KeyboardPanel* m_keyboard = nullptr;
    QDockWidget* m_keyboardDock = nullptr;
    MidiInputController* m_midiInput = nullptr;
    VoicingCommands* m_voicing = nullptr;
    UndoRouter* m_undoRouter = nullptr;
    TransportController* m_transport = nullptr;
    PartExportCommands* m_partExports = nullptr;
    std::unique_ptr<PartMidiDrag> m_midiDrag;
    std::unique_ptr<DefaultFilesReader> m_defaultFiles; // reading until initialUpdate()
    PresetPanel* m_partPresetPanel = nullptr;
    PresetPanel* m_patternPresetPanel = nullptr;
    PartPresetSource* m_partPresetSource = nullptr;       // owned by m_partPresetPanel
    PatternPresetSource* m_patternPresetSource = nullptr; // owned by m_patternPresetPanel
    PatternListPanel* m_patternList = nullptr;
    PartSettingsPanel* m_partSettings = nullptr;
    QStackedWidget* m_sideStack = nullptr;
    MachinePanel* m_machinePanel = nullptr;
    std::map<std::string, QMenu*, std::less<>> m_menus;
};

} // namespace app
