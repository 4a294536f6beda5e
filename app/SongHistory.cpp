#include "app/SongHistory.h"

namespace app {

SongHistory::SongHistory(Swap swap, QObject* parent) : UndoTarget(parent), m_swap(std::move(swap))
{
    setObjectName(QStringLiteral("songHistory"));
}

void SongHistory::record(const QString& label, State before)
{
    m_undo.push_back({label, std::move(before)});
    if (m_undo.size() > kMaxSteps)
        m_undo.erase(m_undo.begin());
    m_redo.clear();
    Q_EMIT stateChanged();
}

void SongHistory::clear()
{
    m_undo.clear();
    m_redo.clear();
    Q_EMIT stateChanged();
}

void SongHistory::undo()
{
    if (m_undo.empty())
        return;
    Step step = std::move(m_undo.back());
    m_undo.pop_back();
    step.state = m_swap(std::move(step.state));
    m_redo.push_back(std::move(step));
    Q_EMIT stateChanged();
}

void SongHistory::redo()
{
    if (m_redo.empty())
        return;
    Step step = std::move(m_redo.back());
    m_redo.pop_back();
    step.state = m_swap(std::move(step.state));
    m_undo.push_back(std::move(step));
    Q_EMIT stateChanged();
}

} // namespace app
