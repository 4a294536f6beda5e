#include "part/UndoHistory.h"

namespace part {

void UndoHistory::record(std::string label, const Part& before)
{
    m_redoTip.reset();
    m_snapshots.resize(static_cast<std::size_t>(m_position + 1));
    if (m_snapshots.size() > kMaxSnapshots - 1) {
        m_snapshots.erase(m_snapshots.begin());
        m_position = m_position > -1 ? m_position - 1 : -1;
    }
    m_snapshots.push_back(Snapshot{std::move(label), before});
    m_position = size() - 1;
}

bool UndoHistory::canRedo() const
{
    const int target = m_position + 2;
    return target < size() || (target == size() && m_redoTip.has_value());
}

std::string UndoHistory::undoLabel() const
{
    return canUndo() ? m_snapshots[static_cast<std::size_t>(m_position)].label : std::string();
}

std::string UndoHistory::redoLabel() const
{
    return canRedo() ? m_snapshots[static_cast<std::size_t>(m_position + 1)].label : std::string();
}

std::optional<Part> UndoHistory::undo(const Part& current)
{
    if (!canUndo())
        return std::nullopt;
    if (m_position == size() - 1)
        m_redoTip = Snapshot{m_snapshots.back().label, current};
    const Part& restored = m_snapshots[static_cast<std::size_t>(m_position)].part;
    --m_position;
    return restored;
}

std::optional<Part> UndoHistory::redo()
{
    if (!canRedo())
        return std::nullopt;
    const int target = m_position + 2;
    ++m_position;
    if (target < size())
        return m_snapshots[static_cast<std::size_t>(target)].part;
    return m_redoTip->part;
}

void UndoHistory::clear()
{
    m_snapshots.clear();
    m_position = -1;
    m_redoTip.reset();
}

} // namespace part
