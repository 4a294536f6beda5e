#include "app/MachineDatabaseModel.h"

#include "app/MachineListModel.h"
#include "song/MachineKind.h"

#include <algorithm>

namespace app {

MachineDatabaseModel::MachineDatabaseModel(const std::vector<song::MachineDatabaseEntry>& entries,
                                           std::vector<std::size_t> candidates, QObject* parent)
    : QAbstractListModel(parent), m_entries(entries), m_candidates(std::move(candidates))
{
    // By name, as a musician looks for a machine.
    std::stable_sort(m_candidates.begin(), m_candidates.end(),
                     [this](std::size_t a, std::size_t b) {
                         return QString::fromStdString(m_entries[a].dllName)
                                    .compare(QString::fromStdString(m_entries[b].dllName),
                                             Qt::CaseInsensitive) < 0;
                     });
    m_shown = m_candidates;
}

void MachineDatabaseModel::setFilter(std::uint8_t kindFilter, const QString& search)
{
    beginResetModel();
    m_shown.clear();
    const QString text = search.trimmed();
    for (const std::size_t i : m_candidates) {
        const song::MachineDatabaseEntry& entry = m_entries[i];
        if (!MachineListModel::passes(kindFilter, song::machineKind(entry)))
            continue;
        if (!text.isEmpty() &&
            !QString::fromStdString(entry.dllName).contains(text, Qt::CaseInsensitive) &&
            !QString::fromStdString(entry.shortName).contains(text, Qt::CaseInsensitive))
            continue;
        m_shown.push_back(i);
    }
    endResetModel();
}

int MachineDatabaseModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_shown.size());
}

QVariant MachineDatabaseModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const song::MachineDatabaseEntry& entry = m_entries[entryAt(index.row())];
    const QString kind = MachineListModel::kindText(song::machineKind(entry));
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return QStringLiteral("%1  (%2)").arg(QString::fromStdString(entry.dllName), kind);
    case Qt::ToolTipRole:
        return tr("%1, short name %2: %3 parameters, %4..%5 tracks")
            .arg(QString::fromStdString(entry.dllName), QString::fromStdString(entry.shortName))
            .arg(entry.parameters.size())
            .arg(entry.minTracks)
            .arg(entry.maxTracks);
    default:
        return {};
    }
}

} // namespace app
