#include "app/CTreeCtrlX.h"

#include <QHeaderView>

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

} // namespace app
