#include "app/ProgramTableModel.h"

namespace app {

ProgramTableModel::ProgramTableModel(const midi::MidiSettings::ProgramTable& table, QObject* parent)
    : QAbstractTableModel(parent), m_table(table)
{}

int ProgramTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : midi::MidiSettings::kPorts;
}

int ProgramTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : midi::MidiSettings::kChannels;
}

QVariant ProgramTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const int program = m_table[static_cast<std::size_t>(
        index.row() * midi::MidiSettings::kChannels + index.column())];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return program;
    case Qt::AccessibleTextRole:
        return tr("Port %1, channel %2: program %3")
            .arg(index.row())
            .arg(index.column() + 1)
            .arg(program);
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    default:
        return {};
    }
}

bool ProgramTableModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    bool ok = false;
    const int program = value.toInt(&ok);
    if (!ok || program < 0 || program > 127)
        return false;
    auto& entry = m_table[static_cast<std::size_t>(index.row() * midi::MidiSettings::kChannels +
                                                   index.column())];
    if (entry == program)
        return true;
    entry = static_cast<std::uint8_t>(program);
    Q_EMIT dataChanged(index, index, {Qt::DisplayRole, Qt::EditRole, Qt::AccessibleTextRole});
    return true;
}

Qt::ItemFlags ProgramTableModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
}

QVariant ProgramTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Horizontal)
        return tr("Ch %1").arg(section + 1);
    return tr("Port %1").arg(section);
}

} // namespace app
