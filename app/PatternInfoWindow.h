#pragma once

#include <QWidget>

#include <cstddef>
#include <vector>

class QLabel;
class QPushButton;
class QTableView;

namespace app {

class MachinePanel;
class MachinePatternModel;

/**
 * Pattern Info: the patterns of the machine view's current machine (name, rows, where the
 * sequences play them) with Remove Selected, Remove All, Remove Unused and Trim. Each asks
 * first as the tracker's users know it and is one undoable step of the song. A tool window that
 * follows the current machine and the song's edits.
 */
class PatternInfoWindow : public QWidget
{
    Q_OBJECT
public:
    explicit PatternInfoWindow(MachinePanel& panel);

    QLabel* summary() const { return m_summary; }
    QTableView* table() const { return m_table; }
    MachinePatternModel* model() const { return m_model; }
    QPushButton* button(const char* objectName) const;

    void removeSelected();
    void removeAll();
    void removeUnused();
    void trim();
    /** Shows the current machine's patterns as the song holds them now. */
    void refresh();

protected:
    /** Opened again after a while: show the song as it is now. */
    void showEvent(QShowEvent* event) override;

private:
    /** The machine whose patterns are listed, when it is still in the song. */
    std::optional<std::size_t> machine() const;
    std::vector<std::size_t> selectedRows() const;

    MachinePanel& m_panel;
    QLabel* m_summary = nullptr;
    QTableView* m_table = nullptr;
    MachinePatternModel* m_model = nullptr;
};

} // namespace app
