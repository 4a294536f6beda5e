#include "app/PartSettingsDelegate.h"

#include "app/PartSettingsModel.h"

#include <QComboBox>
#include <QSpinBox>

namespace app {

QWidget* PartSettingsDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                            const QModelIndex& index) const
{
    const QString label =
        index.siblingAtColumn(PartSettingsModel::LabelColumn).data(Qt::DisplayRole).toString();
    QWidget* editor = nullptr;
    const QStringList choices = index.data(PartSettingsModel::ChoicesRole).toStringList();
    const QVariant minimum = index.data(PartSettingsModel::MinimumRole);
    if (!choices.isEmpty()) {
        auto* box = new QComboBox(parent);
        box->addItems(choices);
        box->setMaxVisibleItems(static_cast<int>(choices.size()));
        connect(box, &QComboBox::activated, this, [this, box] {
            auto* self = const_cast<PartSettingsDelegate*>(this);
            Q_EMIT self->commitData(box);
            Q_EMIT self->closeEditor(box);
        });
        editor = box;
    } else if (minimum.isValid()) {
        auto* spin = new QSpinBox(parent);
        spin->setRange(minimum.toInt(), index.data(PartSettingsModel::MaximumRole).toInt());
        editor = spin;
    } else {
        editor = QStyledItemDelegate::createEditor(parent, option, index);
    }
    editor->setObjectName(QStringLiteral("settingsEditor"));
    editor->setAccessibleName(label);
    return editor;
}

void PartSettingsDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    const QVariant value = index.data(Qt::EditRole);
    if (auto* box = qobject_cast<QComboBox*>(editor))
        box->setCurrentIndex(value.toInt());
    else if (auto* spin = qobject_cast<QSpinBox*>(editor))
        spin->setValue(value.toInt());
    else
        QStyledItemDelegate::setEditorData(editor, index);
}

void PartSettingsDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                        const QModelIndex& index) const
{
    if (auto* box = qobject_cast<QComboBox*>(editor)) {
        model->setData(index, box->currentIndex());
    } else if (auto* spin = qobject_cast<QSpinBox*>(editor)) {
        spin->interpretText();
        model->setData(index, spin->value());
    } else {
        QStyledItemDelegate::setModelData(editor, model, index);
    }
}

} // namespace app
