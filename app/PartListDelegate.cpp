#include "app/PartListDelegate.h"

#include "app/PartListModel.h"
#include "app/PartSession.h"

#include <QComboBox>
#include <QSpinBox>

namespace app {

PartListDelegate::PartListDelegate(const PartListModel& model, QObject* parent)
    : QStyledItemDelegate(parent), m_model(model)
{}

QWidget* PartListDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                        const QModelIndex& index) const
{
    switch (index.column()) {
    case PartListModel::PatternColumn: {
        auto* box = new QComboBox(parent);
        box->setObjectName(QStringLiteral("chordPatternEditor"));
        box->setAccessibleName(tr("Pattern of the chord"));
        const int count = static_cast<int>(m_model.patternNames().size());
        for (int pattern = 0; pattern < count; ++pattern)
            box->addItem(m_model.patternText(pattern), pattern);
        return box;
    }
    case PartListModel::LengthColumn: {
        auto* box = new QSpinBox(parent);
        box->setObjectName(QStringLiteral("lengthEditor"));
        box->setAccessibleName(tr("Length of the chord in rows"));
        box->setRange(1, PartSession::kMaxLength);
        return box;
    }
    default:
        return QStyledItemDelegate::createEditor(parent, option, index);
    }
}

void PartListDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    if (auto* box = qobject_cast<QComboBox*>(editor)) {
        box->setCurrentIndex(box->findData(index.data(Qt::EditRole)));
    } else if (auto* spin = qobject_cast<QSpinBox*>(editor)) {
        spin->setValue(index.data(Qt::EditRole).toInt());
    } else {
        QStyledItemDelegate::setEditorData(editor, index);
    }
}

void PartListDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                    const QModelIndex& index) const
{
    if (auto* box = qobject_cast<QComboBox*>(editor)) {
        if (box->currentIndex() >= 0)
            model->setData(index, box->currentData());
    } else if (auto* spin = qobject_cast<QSpinBox*>(editor)) {
        spin->interpretText();
        model->setData(index, spin->value());
    } else {
        QStyledItemDelegate::setModelData(editor, model, index);
    }
}

} // namespace app
