#pragma once

#include "app/ActionFactory.h"

#include <QTreeView>

class QMenu;

namespace app {

class PartSession;
class PartSettingsModel;

/**
 * The settings view: the part settings (see PartSettingsModel) edited in place with a double
 * click, F2, Return or by typing a value. Its context menu "settingsView" offers Show Bmx (the
 * song's machines in the same place) and Reset.
 */
class PartSettingsPanel : public QTreeView
{
    Q_OBJECT
public:
    static constexpr const char* kResetSettings = "Reset settings";

    PartSettingsPanel(PartSession& session, const ActionFactory::ActionLookup& actions,
                      QWidget* parent = nullptr);

    using QTreeView::edit;

    PartSettingsModel* settingsModel() const { return m_model; }
    QMenu* contextMenu() const { return m_menu; }

    /**
     * Back to the values of a fresh start: an unnamed pattern list, base octave 4 and every
     * track of the current pattern at "base" (one undo step when the part changes), and the
     * editor's Base Wave, Def Octave and Def Length.
     */
    void resetSettings();

    /** Tall enough to show every setting without scrolling. */
    QSize sizeHint() const override;

protected:
    /** F2 edits here, as in the chord database, instead of opening the type manager. */
    bool event(QEvent* event) override;
    /** Any edit of a row edits its value, whichever column was clicked or had the cursor. */
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;

private:
    PartSession& m_session;
    PartSettingsModel* m_model = nullptr;
    QMenu* m_menu = nullptr;
};

} // namespace app
