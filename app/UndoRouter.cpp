#include "app/UndoRouter.h"

#include "app/UndoTarget.h"

#include <QAction>
#include <QApplication>
#include <QWidget>

namespace app {

UndoRouter::UndoRouter(QAction* undo, QAction* redo, QObject* parent)
    : QObject(parent), m_undo(undo), m_redo(redo)
{
    setObjectName(QStringLiteral("undoRouter"));
    connect(m_undo, &QAction::triggered, this, [this] {
        if (m_active && m_active->canUndo())
            m_active->undo();
    });
    connect(m_redo, &QAction::triggered, this, [this] {
        if (m_active && m_active->canRedo())
            m_active->redo();
    });
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { activateFor(now); });
    update();
}

void UndoRouter::addTarget(QWidget* region, UndoTarget* target)
{
    m_targets.emplace_back(region, target);
    if (!m_active)
        setActive(target);
}

bool UndoRouter::activateFor(const QWidget* widget)
{
    for (const QWidget* w = widget; w != nullptr; w = w->parentWidget()) {
        for (const auto& [region, target] : m_targets) {
            if (region == w && target) {
                setActive(target);
                return true;
            }
        }
    }
    return false;
}

void UndoRouter::setActive(UndoTarget* target)
{
    if (target == m_active)
        return;
    disconnect(m_activeConnection);
    m_active = target;
    if (target != nullptr)
        m_activeConnection = connect(target, &UndoTarget::stateChanged, this, &UndoRouter::update);
    update();
}

void UndoRouter::update()
{
    const bool canUndo = m_active && m_active->canUndo();
    const bool canRedo = m_active && m_active->canRedo();
    const QString undoStep = canUndo ? m_active->undoText() : QString();
    const QString redoStep = canRedo ? m_active->redoText() : QString();
    m_undo->setEnabled(canUndo);
    m_undo->setText(undoStep.isEmpty() ? tr("Undo") : tr("Undo %1").arg(undoStep));
    m_undo->setStatusTip(undoStep.isEmpty() ? tr("Undo the last change.")
                                            : tr("Undo %1.").arg(undoStep));
    m_redo->setEnabled(canRedo);
    m_redo->setText(redoStep.isEmpty() ? tr("Redo") : tr("Redo %1").arg(redoStep));
    m_redo->setStatusTip(redoStep.isEmpty() ? tr("Redo the last undone change.")
                                            : tr("Redo %1.").arg(redoStep));
}

} // namespace app
