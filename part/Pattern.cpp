#include "part/Pattern.h"

#include <algorithm>
#include <stdexcept>

namespace part {

std::size_t Pattern::indexOf(int track, int row)
{
    if (track < 0 || track >= kTrackCount || row < 0 || row >= kRowCount)
        throw std::out_of_range("pattern cell outside 8 tracks x 64 rows");
    return static_cast<std::size_t>(track * kRowCount + row);
}

const PatternCell& Pattern::cell(int track, int row) const
{
    return m_cells[indexOf(track, row)];
}

void Pattern::setCell(int track, int row, const PatternCell& cell)
{
    m_cells[indexOf(track, row)] = cell;
}

RowRecord Pattern::row(int index) const
{
    RowRecord record;
    if (index < 0 || index >= kRowCount)
        return record;
    for (int t = 0; t < kTrackCount; ++t) {
        const PatternCell& c = m_cells[static_cast<std::size_t>(t * kRowCount + index)];
        record.kinds[t] = c.kind;
        record.values[t] = c.value;
        record.octaves[t] = c.octave;
    }
    return record;
}

int Pattern::usedCellCount() const
{
    return static_cast<int>(std::count_if(m_cells.begin(), m_cells.end(), [](const PatternCell& c) {
        return c.kind != CellKind::Nothing;
    }));
}

} // namespace part
