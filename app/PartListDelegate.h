#pragma once

#include <QStyledItemDelegate>

namespace app {

class PartListModel;

/** Editors of the part list's cells: a drop-down of the part's patterns, a length of 1..64. */
class PartListDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit PartListDelegate(const PartListModel& model, QObject* parent = nullptr);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;

private:
    const PartListModel& m_model;
};

} // namespace app
