#include "app/TextTableModel.h"

namespace app {

TextTableModel::TextTableModel(QStringList headers, QObject* parent)
    : QAbstractTableModel(parent), m_headers(std::move(headers))
{}

void TextTableModel::setRows(std::vector<QStringList> rows)
{
    if (rows.size() != m_rows.size()) {
        beginResetModel();
        m_rows = std::move(rows);
        endResetModel();
        return;
    }
    m_rows = std::move(rows);
    if (!m_rows.empty())
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

QString TextTableModel::text(int row, int column) const
{
    if (row < 0 || row >= rowCount() || column < 0)
        return {};
    const QStringList& cells = m_rows[static_cast<std::size_t>(row)];
    return column < cells.size() ? cells[column] : QString();
}

int TextTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int TextTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_headers.size());
}

QVariant TextTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return text(index.row(), index.column());
    case Qt::AccessibleTextRole:
        return m_headers.value(index.column()) + QStringLiteral(": ") +
               text(index.row(), index.column());
    case Qt::ToolTipRole: {
        const auto row = static_cast<std::size_t>(index.row());
        return row < m_tips.size() && !m_tips[row].isEmpty() ? QVariant(m_tips[row]) : QVariant();
    }
    default:
        return {};
    }
}

QVariant TextTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return m_headers.value(section);
    return {};
}

} // namespace app
