#include "app/PatternGridView.h"

#include <QKeyEvent>

namespace app {

PatternGridView::PatternGridView(QWidget* parent) : QTableView(parent)
{
    setSelectionMode(QAbstractItemView::ContiguousSelection);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setEditTriggers(QAbstractItemView::DoubleClicked);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
}

void PatternGridView::keyPressEvent(QKeyEvent* event)
{
    if (state() != QAbstractItemView::EditingState) {
        const PatternKey key =
            PatternKeyMap::map(event->key(), event->modifiers(), m_digitsPlayNotes);
        if (key.action != PatternKey::Action::None) {
            Q_EMIT keyEntered(key);
            event->accept();
            return;
        }
        const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
        if (plain && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
            currentIndex().isValid()) {
            edit(currentIndex());
            event->accept();
            return;
        }
    }
    QTableView::keyPressEvent(event);
}

} // namespace app
