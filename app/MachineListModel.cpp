#include "app/MachineListModel.h"

#include "app/CTonalmancerDoc.h"
#include "song/BuzzSong.h"

#include <algorithm>
#include <set>

namespace app {

MachineListModel::MachineListModel(const CTonalmancerDoc& document, QObject* parent)
    : QAbstractTableModel(parent), m_document(document)
{
    m_rows = currentRows();
}

bool MachineListModel::passes(std::uint8_t filter, song::MachineKind kind)
{
    switch (filter) {
    case Generators:
        return song::isGenerator(kind);
    case Synths:
        return kind == song::MachineKind::Synth;
    case Samplers:
        return kind == song::MachineKind::Sampler;
    case Effects:
        return kind == song::MachineKind::Effect;
    default:
        return true;
    }
}

song::MachineKind MachineListModel::kindOf(const song::SongMachine& machine)
{
    if (machine.isMaster())
        return song::MachineKind::Master;
    song::MachineDatabaseEntry entry = machine.description;
    // The song's own type decides generator or effect where the description does not.
    if (entry.type != 1 && entry.type != 2)
        entry.type = machine.type == 2 ? 2 : 1;
    return song::machineKind(entry);
}

QString MachineListModel::kindText(song::MachineKind kind)
{
    switch (kind) {
    case song::MachineKind::Master:
        return tr("Master");
    case song::MachineKind::Synth:
        return tr("Synth");
    case song::MachineKind::Sampler:
        return tr("Sampler");
    case song::MachineKind::Generator:
        return tr("Generator");
    case song::MachineKind::Effect:
        return tr("Effect");
    }
    return {};
}

std::vector<MachineListModel::Row> MachineListModel::currentRows() const
{
    std::vector<Row> rows;
    const song::BuzzSong* song = m_document.song();
    if (song == nullptr)
        return rows;
    for (std::size_t i = 0; i < song->machineCount(); ++i) {
        const song::SongMachine& machine = song->machines()[i];
        if (passes(m_filter, kindOf(machine)))
            rows.push_back({i, machine.name});
    }
    return rows;
}

void MachineListModel::setFilter(std::uint8_t filter)
{
    if (filter == m_filter)
        return;
    m_filter = filter;
    reload();
}

void MachineListModel::reload()
{
    beginResetModel();
    m_rows = currentRows();
    endResetModel();
}

void MachineListModel::sync()
{
    std::vector<Row> now = currentRows();
    const auto differing = [&] {
        std::size_t count = 0;
        for (std::size_t i = 0; i < now.size(); ++i)
            count += now[i].name != m_rows[i].name ? 1 : 0;
        return count;
    };
    if (now.size() == m_rows.size() && differing() <= 1) {
        // A renamed, replaced or edited machine: the same rows with new texts.
        m_rows = std::move(now);
        if (!m_rows.empty())
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
        return;
    }
    // Machines removed anywhere and machines added at the end (the library appends): remove and
    // insert rows; anything else is rebuilt.
    std::set<std::string> kept;
    for (const Row& row : now)
        kept.insert(row.name);
    std::vector<std::string> remaining;
    for (const Row& row : m_rows) {
        if (kept.count(row.name) != 0)
            remaining.push_back(row.name);
    }
    const bool prefix =
        remaining.size() <= now.size() &&
        std::equal(remaining.begin(), remaining.end(), now.begin(),
                   [](const std::string& name, const Row& row) { return name == row.name; });
    if (!prefix) {
        beginResetModel();
        m_rows = std::move(now);
        endResetModel();
        return;
    }
    for (int row = rowCount() - 1; row >= 0; --row) {
        if (kept.count(m_rows[static_cast<std::size_t>(row)].name) != 0)
            continue;
        beginRemoveRows({}, row, row);
        m_rows.erase(m_rows.begin() + row);
        endRemoveRows();
    }
    if (now.size() > m_rows.size()) {
        beginInsertRows({}, rowCount(), static_cast<int>(now.size()) - 1);
        m_rows = now;
        endInsertRows();
    }
    // Machine indices behind a removal moved down; the texts may have changed too.
    m_rows = std::move(now);
    if (!m_rows.empty())
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

int MachineListModel::rowOfMachine(std::size_t machine) const
{
    for (std::size_t row = 0; row < m_rows.size(); ++row) {
        if (m_rows[row].machine == machine)
            return static_cast<int>(row);
    }
    return -1;
}

int MachineListModel::rowOfName(const std::string& name) const
{
    for (std::size_t row = 0; row < m_rows.size(); ++row) {
        if (m_rows[row].name == name)
            return static_cast<int>(row);
    }
    return -1;
}

int MachineListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int MachineListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString MachineListModel::cellText(const song::BuzzSong& song, std::size_t machine,
                                   int column) const
{
    const song::SongMachine& m = song.machines()[machine];
    switch (column) {
    case NameColumn:
        return QString::fromStdString(m.name);
    case DllColumn:
        return m.isMaster() ? tr("(master)") : QString::fromStdString(m.dllName);
    case KindColumn:
        return kindText(kindOf(m));
    case TracksColumn:
        return QString::number(m.trackCount);
    case PatternsColumn:
        return QString::number(song.patternCount(machine));
    case SequencesColumn:
        return QString::number(song.sequencesOf(machine).size());
    default:
        return {};
    }
}

QString MachineListModel::toolTip(const song::BuzzSong& song, std::size_t machine) const
{
    const song::SongMachine& m = song.machines()[machine];
    std::size_t events = 0;
    for (const std::size_t s : song.sequencesOf(machine))
        events += song.sequences()[s].events.size();
    // The DLL too: its column is the last one and often scrolled out of the narrow side pane.
    return tr("%1 (%2): %3, %4 tracks (%5..%6), %7 patterns, %8 sequence events")
        .arg(QString::fromStdString(m.name), cellText(song, machine, DllColumn),
             kindText(kindOf(m)))
        .arg(m.trackCount)
        .arg(m.description.minTracks)
        .arg(m.description.maxTracks)
        .arg(song.patternCount(machine))
        .arg(events);
}

QVariant MachineListModel::data(const QModelIndex& index, int role) const
{
    const song::BuzzSong* song = m_document.song();
    if (!index.isValid() || song == nullptr || index.row() >= rowCount())
        return {};
    const std::size_t machine = machineAt(index.row());
    if (machine >= song->machineCount())
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return cellText(*song, machine, index.column());
    case Qt::AccessibleTextRole:
        return headerData(index.column(), Qt::Horizontal).toString() + QStringLiteral(": ") +
               cellText(*song, machine, index.column());
    case Qt::ToolTipRole:
        return toolTip(*song, machine);
    case Qt::TextAlignmentRole:
        return index.column() >= TracksColumn && index.column() <= SequencesColumn
                   ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                   : QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    default:
        return {};
    }
}

QVariant MachineListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case NameColumn:
        return tr("Machine");
    case DllColumn:
        return tr("DLL");
    case KindColumn:
        return tr("Kind");
    case TracksColumn:
        return tr("Tracks");
    case PatternsColumn:
        return tr("Patterns");
    case SequencesColumn:
        return tr("Sequences");
    default:
        return {};
    }
}

Qt::ItemFlags MachineListModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    const song::BuzzSong* song = m_document.song();
    if (!index.isValid() || index.column() != NameColumn || song == nullptr ||
        index.row() >= rowCount())
        return flags;
    const std::size_t machine = machineAt(index.row());
    if (machine < song->machineCount() && !song->machines()[machine].isMaster())
        flags |= Qt::ItemIsEditable;
    return flags;
}

bool MachineListModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || index.column() != NameColumn || !m_rename)
        return false;
    return m_rename(machineAt(index.row()), value.toString());
}

} // namespace app
