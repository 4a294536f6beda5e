#pragma once

#include "app/ActionFactory.h"
#include "app/PartListModel.h"

#include <QWidget>

#include <vector>

class QMenu;
class QTableView;

namespace app {

class ChordDatabasePanel;
class PartFileCommands;
class PartListCommands;
class PartSession;

/**
 * The part list region: the part's chords in a table (chord, pattern, length) with its context
 * menu and keys. Its selection is the session's: selecting chords here selects them for every
 * panel, and the session's selection (after undo, a load) is shown here. The playing chord is
 * highlighted. Chords come from the chord database by double-click in its tree, by dragging
 * them in (and are moved by dragging inside the list), or with "Add Chord".
 */
class PartListPanel : public QWidget
{
    Q_OBJECT
public:
    /** `actions` resolves the frame's commands by id (Undo, Print chord list...). */
    PartListPanel(PartSession& session, ChordDatabasePanel& chordDatabase,
                  PartFileCommands& partFiles, const ActionFactory::ActionLookup& actions,
                  QWidget* parent = nullptr);
    ~PartListPanel() override;

    QTableView* view() const { return m_view; }
    PartListModel* model() const { return m_model; }
    QMenu* contextMenu() const { return m_menu; }
    PartListCommands& commands() const { return *m_commands; }

    /** Shows chords by name or by notes (the View sub-menu); kept for the next run. */
    void setDisplay(PartListModel::Display display);

    /** The selected rows, ascending. */
    std::vector<int> selectedRows() const;
    /** Selects `rows` and makes `current` (or the last row given, when -1) the current chord. */
    void selectRows(const std::vector<int>& rows, int current = -1);

private:
    void bindMenu(const ActionFactory::ActionLookup& actions);
    void bindKeys();
    void syncSelectionToSession();
    void showSessionSelection();
    void updateCommandStates();

    PartSession& m_session;
    PartListModel* m_model = nullptr;
    QTableView* m_view = nullptr;
    QMenu* m_menu = nullptr;
    PartListCommands* m_commands = nullptr;
    bool m_showingSession = false;
};

} // namespace app
