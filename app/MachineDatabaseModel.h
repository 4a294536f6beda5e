#pragma once

#include "song/MachineDatabase.h"

#include <QAbstractListModel>

#include <cstdint>
#include <vector>

namespace app {

/**
 * Machines of the machine database to choose from, narrowed by kind (the machine filter's
 * values: Generators, Synths, Samplers, Effects, All) and by a search text that matches the
 * DLL name or the short name in any case. Each row shows the short name, the DLL and the kind.
 */
class MachineDatabaseModel : public QAbstractListModel
{
    Q_OBJECT
public:
    /** `entries` must outlive the model; `candidates` are the entries' indices offered. */
    MachineDatabaseModel(const std::vector<song::MachineDatabaseEntry>& entries,
                         std::vector<std::size_t> candidates, QObject* parent = nullptr);

    void setFilter(std::uint8_t kindFilter, const QString& search);
    /** The database index of the entry in `row`. */
    std::size_t entryAt(int row) const { return m_shown[static_cast<std::size_t>(row)]; }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

private:
    const std::vector<song::MachineDatabaseEntry>& m_entries;
    std::vector<std::size_t> m_candidates;
    std::vector<std::size_t> m_shown;
};

} // namespace app
