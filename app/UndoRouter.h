#pragma once

#include "app/UndoTarget.h"

#include <QMetaObject>
#include <QObject>
#include <QPointer>

#include <utility>
#include <vector>

class QAction;
class QWidget;

namespace app {

/**
 * Binds the window's Undo and Redo commands to the undo target of the region that has the focus,
 * or last had it: each region of the main view (a panel) registers its target. The commands'
 * texts name the step ("Undo Rename") and their enabled state follows the active target.
 * Until a registered region gets the focus, the first registered target is active.
 */
class UndoRouter : public QObject
{
    Q_OBJECT
public:
    /** Neither action is owned; both must outlive the router. */
    UndoRouter(QAction* undo, QAction* redo, QObject* parent = nullptr);

    /** `target` serves undo while the focus is in `region` or one of its children. */
    void addTarget(QWidget* region, UndoTarget* target);
    UndoTarget* activeTarget() const { return m_active; }
    /** Makes the target of the region holding `widget` active; false when none holds it. */
    bool activateFor(const QWidget* widget);

private:
    void setActive(UndoTarget* target);
    void update();

    QAction* m_undo;
    QAction* m_redo;
    std::vector<std::pair<QPointer<QWidget>, QPointer<UndoTarget>>> m_targets;
    QPointer<UndoTarget> m_active;
    QMetaObject::Connection m_activeConnection;
};

} // namespace app
