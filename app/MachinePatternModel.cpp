#include "app/MachinePatternModel.h"

#include "app/CTonalmancerDoc.h"
#include "song/BuzzSong.h"

namespace app {

MachinePatternModel::MachinePatternModel(const CTonalmancerDoc& document, QObject* parent)
    : QAbstractTableModel(parent), m_document(document)
{}

std::optional<std::size_t> MachinePatternModel::validMachine() const
{
    const song::BuzzSong* song = m_document.song();
    if (song == nullptr || !m_machine || *m_machine >= song->machineCount())
        return std::nullopt;
    return m_machine;
}

void MachinePatternModel::setMachine(std::optional<std::size_t> machine)
{
    beginResetModel();
    m_machine = machine;
    const auto valid = validMachine();
    m_rows = valid ? static_cast<int>(m_document.song()->patternCount(*valid)) : 0;
    endResetModel();
}

void MachinePatternModel::sync()
{
    const auto valid = validMachine();
    const int rows = valid ? static_cast<int>(m_document.song()->patternCount(*valid)) : 0;
    if (rows != m_rows) {
        beginResetModel();
        m_rows = rows;
        endResetModel();
    } else if (rows > 0) {
        Q_EMIT dataChanged(index(0, 0), index(rows - 1, ColumnCount - 1));
    }
}

QString MachinePatternModel::usedAt(std::size_t pattern) const
{
    const song::BuzzSong& song = *m_document.song();
    const std::vector<std::size_t> sequences = song.sequencesOf(*m_machine);
    const auto value = static_cast<std::uint16_t>(pattern + song::SongSequence::kFirstPatternValue);
    QStringList positions;
    std::size_t count = 0;
    for (std::size_t s = 0; s < sequences.size(); ++s) {
        for (const song::SequenceEvent& event : song.sequences()[sequences[s]].events) {
            if (event.value != value)
                continue;
            if (++count > kMaxPositionsShown)
                continue;
            // With several sequences (tracker tracks) the sequence is named too.
            positions << (sequences.size() > 1
                              ? tr("%1 in sequence %2").arg(event.position).arg(s + 1)
                              : QString::number(event.position));
        }
    }
    if (count == 0)
        return tr("unused");
    QString text = positions.join(QStringLiteral(", "));
    if (count > kMaxPositionsShown)
        text += tr(" ... (%1 in all)").arg(count);
    return text;
}

QString MachinePatternModel::cellText(int row, int column) const
{
    const auto machine = validMachine();
    if (!machine || row < 0 ||
        static_cast<std::size_t>(row) >= m_document.song()->patternCount(*machine))
        return {};
    const song::SongPattern& pattern =
        m_document.song()->patternBlocks()[*machine].patterns[static_cast<std::size_t>(row)];
    switch (column) {
    case NameColumn:
        return QString::fromStdString(pattern.name);
    case RowsColumn:
        return QString::number(pattern.rows);
    case UsedAtColumn:
        return usedAt(static_cast<std::size_t>(row));
    default:
        return {};
    }
}

int MachinePatternModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows;
}

int MachinePatternModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant MachinePatternModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return cellText(index.row(), index.column());
    case Qt::AccessibleTextRole:
        return headerData(index.column(), Qt::Horizontal).toString() + QStringLiteral(": ") +
               cellText(index.row(), index.column());
    case Qt::TextAlignmentRole:
        return index.column() == RowsColumn ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                                            : QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    default:
        return {};
    }
}

QVariant MachinePatternModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case NameColumn:
        return tr("Pattern");
    case RowsColumn:
        return tr("Rows");
    case UsedAtColumn:
        return tr("Played at (ticks)");
    default:
        return {};
    }
}

} // namespace app
