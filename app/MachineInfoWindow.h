#pragma once

#include <QWidget>

#include <optional>

class QLabel;
class QTableView;

namespace song {
class BuzzSong;
}

namespace app {

class MachinePanel;
class TextTableModel;

/**
 * Machine Info: the current machine of the machine view with its DLL and kind, its track count
 * and the track range the machine database gives, its parameters (global and per track, with
 * type, range, default and no-value) and its connections with amplitude and panning. A tool
 * window that follows the machine view's current machine and the song's edits.
 */
class MachineInfoWindow : public QWidget
{
    Q_OBJECT
public:
    explicit MachineInfoWindow(MachinePanel& panel);

    QLabel* summary() const { return m_summary; }
    QTableView* parameterTable() const { return m_parameterTable; }
    QTableView* connectionTable() const { return m_connectionTable; }
    TextTableModel* parameters() const { return m_parameters; }
    TextTableModel* connections() const { return m_connections; }

    /** Shows the panel's current machine as the song holds it now. */
    void refresh();

protected:
    /** Opened again after a while: show the song as it is now. */
    void showEvent(QShowEvent* event) override;

private:
    void fillParameters(const song::BuzzSong& song, std::size_t machine);
    void fillConnections(const song::BuzzSong& song, std::size_t machine);

    MachinePanel& m_panel;
    QLabel* m_summary = nullptr;
    QTableView* m_parameterTable = nullptr;
    QTableView* m_connectionTable = nullptr;
    TextTableModel* m_parameters = nullptr;
    TextTableModel* m_connections = nullptr;
};

} // namespace app
