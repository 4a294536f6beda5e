#pragma once

#include "app/ActionFactory.h"

#include <QTableView>

class QMenu;

namespace app {

class PartSession;
class PatternListModel;
class PatternPresetSource;
class PresetPanel;

/**
 * The pattern list region: the part's patterns with the number of chords playing each. A click
 * makes a pattern the current one (the one the grid shows and new chords get). Context menu
 * "patternList": New (Ctrl+Return), Rename (in place; also F2 or a click on the current name),
 * Create Copy (Ctrl+Shift+Return), Remove (Ctrl+Shift+Del), Clear List, Add Pattern To Presets,
 * Replace Current Preset and Add List To Presets. The keys are the window's: they work
 * wherever the focus is. Chords follow the library's rules when patterns are removed.
 */
class PatternListPanel : public QTableView
{
    Q_OBJECT
public:
    /** `presets` is the pattern preset panel, `presetList` its list; both outlive this panel. */
    PatternListPanel(PartSession& session, PresetPanel& presets, PatternPresetSource& presetList,
                     const ActionFactory::ActionLookup& actions, QWidget* parent = nullptr);

    using QTableView::edit;

    PatternListModel* patternModel() const { return m_model; }
    QMenu* contextMenu() const { return m_menu; }

    /** Starts editing the current pattern's name. */
    void renameCurrent();
    /** Adds every pattern of the part to the pattern presets under its own name. */
    bool addListToPresets();

protected:
    /** F2 edits here, as in the chord database, instead of opening the type manager. */
    bool event(QEvent* event) override;
    /** Any edit of a row edits its name, whichever column was clicked or had the cursor. */
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;

private:
    void bindCommands(const ActionFactory::ActionLookup& actions);
    /** Puts the list's current row on the session's current pattern. */
    void showCurrentPattern();

    PartSession& m_session;
    PresetPanel& m_presets;
    PatternPresetSource& m_presetList;
    PatternListModel* m_model = nullptr;
    QMenu* m_menu = nullptr;
    bool m_showing = false; // the list is following the session, not the user
};

} // namespace app
