#include "app/PresetListModel.h"

#include "app/PresetSource.h"
#include "app/RowDiff.h"

namespace app {

PresetListModel::PresetListModel(const PresetSource& source, QObject* parent)
    : QAbstractListModel(parent), m_source(source)
{
    refresh();
}

void PresetListModel::refresh()
{
    std::vector<Row> next(static_cast<std::size_t>(m_source.count()));
    for (std::size_t i = 0; i < next.size(); ++i) {
        next[i].name = m_source.name(static_cast<int>(i));
        next[i].summary = m_source.summary(static_cast<int>(i));
    }
    const RowDiff diff = RowDiff::between(m_rows, next);
    if (diff.changed > 0) {
        for (int row = diff.first; row < diff.first + diff.changed; ++row)
            m_rows[static_cast<std::size_t>(row)] = next[static_cast<std::size_t>(row)];
        Q_EMIT dataChanged(index(diff.first), index(diff.first + diff.changed - 1));
    }
    const int at = diff.first + diff.changed;
    if (diff.removed > 0) {
        beginRemoveRows({}, at, at + diff.removed - 1);
        m_rows = std::move(next);
        endRemoveRows();
    } else if (diff.inserted > 0) {
        beginInsertRows({}, at, at + diff.inserted - 1);
        m_rows = std::move(next);
        endInsertRows();
    }
}

int PresetListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant PresetListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Row& row = m_rows[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return row.name;
    case Qt::ToolTipRole:
    case Qt::AccessibleDescriptionRole:
        return row.summary;
    default:
        return {};
    }
}

bool PresetListModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || index.row() >= rowCount() || !m_rename)
        return false;
    return m_rename(index.row(), value.toString());
}

Qt::ItemFlags PresetListModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
}

} // namespace app
