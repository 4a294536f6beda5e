#include "app/CTreeCtrlX.h"

#include <QHeaderView>
#include <QKeyEvent>

namespace app {

CTreeCtrlX::CTreeCtrlX(QWidget* parent) : QTreeView(parent)
{
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::MoveAction);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setUniformRowHeights(true); // long generated lists stay fast
    setAlternatingRowColors(true);
    header()->setStretchLastSection(true);
}

bool CTreeCtrlX::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        // Claiming the key keeps the window's shortcut from taking it; the key then reaches
        // keyPressEvent, where it starts editing the current item.
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_F2 && key->modifiers() == Qt::NoModifier) {
            event->accept();
            return true;
        }
    }
    return QTreeView::event(event);
}

} // namespace app
