#include "app/UniformHeader.h"

#include <QEvent>

namespace app {

UniformHeader::UniformHeader(Qt::Orientation orientation, QWidget* parent)
    : QHeaderView(orientation, parent)
{
    setSectionsClickable(true);
    setHighlightSections(true);
    connect(this, &QHeaderView::sectionCountChanged, this, [this] { m_hint = {}; });
}

void UniformHeader::setModel(QAbstractItemModel* model)
{
    m_hint = {};
    if (QHeaderView::model() != nullptr)
        disconnect(QHeaderView::model(), &QAbstractItemModel::headerDataChanged, this, nullptr);
    QHeaderView::setModel(model);
    if (model != nullptr) {
        connect(model, &QAbstractItemModel::headerDataChanged, this, [this] { m_hint = {}; });
        connect(model, &QAbstractItemModel::modelReset, this, [this] { m_hint = {}; });
    }
}

bool UniformHeader::event(QEvent* event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange ||
        event->type() == QEvent::PolishRequest)
        m_hint = {};
    return QHeaderView::event(event);
}

QSize UniformHeader::sizeHint() const
{
    if (count() == 0)
        return QHeaderView::sizeHint();
    // As QHeaderView's own: the largest section's size, of the two that stand for them all.
    if (!m_hint.isValid())
        m_hint = sectionSizeFromContents(0).expandedTo(sectionSizeFromContents(count() - 1));
    return m_hint;
}

} // namespace app
