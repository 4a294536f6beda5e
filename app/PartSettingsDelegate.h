#pragma once

#include <QStyledItemDelegate>

namespace app {

/**
 * Edits the part settings in place: a combo box for a row with choices (the track octaves), a
 * spin box within the row's range for numbers, a line for texts. A choice picked from the combo
 * box is taken at once.
 */
class PartSettingsDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;
};

} // namespace app
