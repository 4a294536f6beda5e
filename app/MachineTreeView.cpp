#include "app/MachineTreeView.h"

#include <QHeaderView>
#include <QKeyEvent>

namespace app {

MachineTreeView::MachineTreeView(QWidget* parent) : QTreeView(parent)
{
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    setContextMenuPolicy(Qt::CustomContextMenu);
    header()->setStretchLastSection(false);
}

void MachineTreeView::bindKey(const QKeySequence& keys, std::function<void()> slot)
{
    if (!keys.isEmpty())
        m_keys[keys[0].toCombined()] = std::move(slot);
}

const std::function<void()>* MachineTreeView::slotFor(const QKeyEvent* event) const
{
    // The keypad's modifier does not make another key.
    const QKeyCombination pressed(event->modifiers() & ~Qt::KeypadModifier,
                                  static_cast<Qt::Key>(event->key()));
    const auto found = m_keys.find(pressed.toCombined());
    return found == m_keys.end() ? nullptr : &found->second;
}

bool MachineTreeView::event(QEvent* event)
{
    // Claiming the key keeps the window's shortcut from taking it; it then reaches
    // keyPressEvent. Not while a name is being edited: the editor has its own keys.
    if (event->type() == QEvent::ShortcutOverride && state() != QAbstractItemView::EditingState &&
        slotFor(static_cast<QKeyEvent*>(event)) != nullptr) {
        event->accept();
        return true;
    }
    return QTreeView::event(event);
}

void MachineTreeView::keyPressEvent(QKeyEvent* event)
{
    if (const std::function<void()>* slot = slotFor(event)) {
        event->accept();
        (*slot)();
        return;
    }
    QTreeView::keyPressEvent(event);
}

} // namespace app
