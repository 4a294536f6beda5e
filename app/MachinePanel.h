#pragma once

#include "app/ActionFactory.h"

#include <QWidget>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class QMenu;

namespace midi {
class MidiSettings;
}

namespace app {

class CTonalmancerDoc;
class MachineCommands;
class MachineInfoWindow;
class MachineListModel;
class MachineTreeView;
class PatternChartWindow;
class PatternInfoWindow;

/**
 * The machine view ("Show Bmx"): the open song's machines with their DLL, kind, tracks,
 * patterns and sequences, filtered as the settings file says (Generators, Synths, Samplers,
 * Effects, All on Alt+1..5), with the context menu's commands and keys. Its Info windows
 * follow the current machine. Song edits go through the document and are undone there.
 */
class MachinePanel : public QWidget
{
    Q_OBJECT
public:
    /** `settings` keeps the machine filter and outlives the panel; so does `document`. */
    MachinePanel(CTonalmancerDoc& document, midi::MidiSettings& settings,
                 const ActionFactory::ActionLookup& actions, QWidget* parent = nullptr);
    ~MachinePanel() override;

    MachineTreeView* view() const { return m_view; }
    MachineListModel* model() const { return m_model; }
    QMenu* contextMenu() const { return m_menu; }
    MachineCommands& commands() const { return *m_commands; }
    CTonalmancerDoc& document() const { return m_document; }

    /** Shows the machines that pass `filter` (0..4) and keeps it in the settings. */
    void setFilter(std::uint8_t filter);
    /** Lists the machines again under the filter of the settings (after they were read). */
    void applySettings();

    /** The song's indices of the selected machines, top to bottom. */
    std::vector<std::size_t> selectedMachines() const;
    /** The machine of the current row, else the first selected one. */
    std::optional<std::size_t> currentMachine() const;
    /** The name of the first selected machine from the top; empty when none is selected. */
    QString selectedMachineName() const;
    /** Makes machine `machine` current and the only one selected, showing it if filtered out. */
    void selectMachine(std::size_t machine);
    /** Selects these machines by name (those that are listed). */
    void selectNames(const std::vector<std::string>& names);
    /** Starts editing the current machine's name in place. */
    void renameCurrent();

    MachineInfoWindow* showMachineInfo();
    PatternInfoWindow* showPatternInfo();
    /** The notes (or waves) of the current machine's patterns as small histograms. */
    PatternChartWindow* showChart(bool waves);

Q_SIGNALS:
    /** The machine the Info windows show may have changed (selection, edits, another song). */
    void currentMachineChanged();
    /** A short note for the status bar ("3 notes changed."). */
    void statusMessage(const QString& text);

private:
    void bindMenu(const ActionFactory::ActionLookup& actions);
    void bindKeys();
    /** Without a current machine the first one becomes current (not selected). */
    void makeFirstRowCurrent();
    std::vector<std::string> selectedNames() const;

    CTonalmancerDoc& m_document;
    midi::MidiSettings& m_settings;
    MachineTreeView* m_view = nullptr;
    MachineListModel* m_model = nullptr;
    QMenu* m_menu = nullptr;
    MachineCommands* m_commands = nullptr;
    MachineInfoWindow* m_machineInfo = nullptr;
    PatternInfoWindow* m_patternInfo = nullptr;
    PatternChartWindow* m_charts[2] = {nullptr, nullptr}; // notes, waves
    std::vector<std::string> m_namesBeforeReset;
    std::string m_currentBeforeReset;
};

} // namespace app
