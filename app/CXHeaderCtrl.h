#pragma once

#include <QHeaderView>

namespace app {

/** A list header whose columns share the list's width equally and keep doing so on resizing. */
class CXHeaderCtrl : public QHeaderView
{
public:
    explicit CXHeaderCtrl(QWidget* parent = nullptr) : QHeaderView(Qt::Horizontal, parent)
    {
        setSectionResizeMode(QHeaderView::Stretch);
        setSectionsClickable(false);
        setHighlightSections(false);
    }
};

} // namespace app
