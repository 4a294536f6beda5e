#pragma once

#include <QAbstractTableModel>
#include <QStringList>

#include <vector>

namespace app {

/**
 * A read-only table of texts for the Info windows (a machine's parameters, its connections).
 * New contents of the same shape update the cells in place, so the view keeps its selection
 * and scroll position; anything else replaces the table.
 */
class TextTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    explicit TextTableModel(QStringList headers, QObject* parent = nullptr);

    void setRows(std::vector<QStringList> rows);
    /** A tooltip per row (same order as the rows); optional. */
    void setToolTips(std::vector<QString> tips) { m_tips = std::move(tips); }
    /** The text of a cell; empty outside the table. */
    QString text(int row, int column) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    QStringList m_headers;
    std::vector<QStringList> m_rows;
    std::vector<QString> m_tips;
};

} // namespace app
