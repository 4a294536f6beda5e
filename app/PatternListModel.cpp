#include "app/PatternListModel.h"

#include "app/LineText.h"
#include "app/PartSession.h"
#include "app/RowDiff.h"

#include <QFont>

namespace app {

PatternListModel::PatternListModel(PartSession& session, QObject* parent)
    : QAbstractTableModel(parent), m_session(session)
{
    m_rows = rowsOfPart();
    connect(&m_session, &PartSession::changed, this, [this] { sync(); });
}

std::vector<PatternListModel::Row> PatternListModel::rowsOfPart() const
{
    const part::Part& p = m_session.part();
    std::vector<Row> rows(static_cast<std::size_t>(p.patterns().count()));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].name = p.patterns().pattern(static_cast<int>(i)).name();
        rows[i].current = i == p.currentPattern();
    }
    for (const part::PartChord& chord : p.chords()) {
        if (chord.pattern < rows.size())
            ++rows[chord.pattern].chords;
    }
    return rows;
}

void PatternListModel::sync()
{
    std::vector<Row> next = rowsOfPart();
    m_syncing = true;
    const RowDiff diff = RowDiff::between(m_rows, next);
    if (diff.changed > 0) {
        for (int row = diff.first; row < diff.first + diff.changed; ++row)
            m_rows[static_cast<std::size_t>(row)] = next[static_cast<std::size_t>(row)];
        Q_EMIT dataChanged(index(diff.first, 0),
                           index(diff.first + diff.changed - 1, ColumnCount - 1));
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
    m_syncing = false;
}

int PatternListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int PatternListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant PatternListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Row& row = m_rows[static_cast<std::size_t>(index.row())];
    const QString name = QString::fromStdString(row.name);
    switch (role) {
    case Qt::DisplayRole:
        return index.column() == NameColumn ? QVariant(name) : QVariant(row.chords);
    case Qt::EditRole:
        return index.column() == NameColumn ? QVariant(name) : QVariant();
    case Qt::ToolTipRole:
    case Qt::AccessibleDescriptionRole:
        // One arg() call: a count substituted first would itself be taken for a placeholder.
        return (row.chords == 1
                    ? tr("Pattern %1 \"%2\": 1 chord plays it").arg(number(index.row()), name)
                    : tr("Pattern %1 \"%2\": %3 chords play it")
                          .arg(number(index.row()), name, QString::number(row.chords))) +
               (row.current ? tr(" (current)") : QString());
    case Qt::FontRole:
        if (row.current) {
            QFont bold;
            bold.setBold(true);
            return bold;
        }
        return {};
    case Qt::TextAlignmentRole:
        return index.column() == ChordsColumn
                   ? QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter)
                   : QVariant();
    default:
        return {};
    }
}

bool PatternListModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || index.column() != NameColumn ||
        index.row() >= rowCount())
        return false;
    const int patternIndex = index.row();
    const std::string name = LineText::toLine(value.toString());
    return m_session.edit(QString::fromLatin1(kRenamePattern), PartSession::Patterns,
                          [patternIndex, &name](part::Part& p) {
                              if (patternIndex >= p.patterns().count())
                                  return false;
                              p.patterns().pattern(patternIndex).setName(name);
                              return true;
                          });
}

QString PatternListModel::number(int row)
{
    return QStringLiteral("%1").arg(row, 2, 10, QLatin1Char('0'));
}

QVariant PatternListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical) {
        if (section < 0 || section >= rowCount())
            return {};
        if (role == Qt::DisplayRole)
            return number(section);
        if (role == Qt::AccessibleTextRole)
            return tr("Pattern %1").arg(number(section));
        return {};
    }
    if (role != Qt::DisplayRole)
        return {};
    return section == NameColumn ? tr("Name") : tr("Chords");
}

Qt::ItemFlags PatternListModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags result = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() == NameColumn)
        result |= Qt::ItemIsEditable;
    return result;
}

} // namespace app
