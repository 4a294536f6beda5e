#include "midi/ChordSettler.h"

namespace midi {

void ChordSettler::update(std::vector<int> held, bool keyPressed, Clock::time_point time)
{
    m_held = std::move(held);
    m_changedAt = time;
    m_waiting = true;
    m_keyPressed = m_keyPressed || keyPressed;
}

std::optional<std::vector<int>> ChordSettler::poll(Clock::time_point now)
{
    if (!m_waiting || now - m_changedAt < m_settle)
        return std::nullopt;
    m_waiting = false;
    const bool pressed = m_keyPressed;
    m_keyPressed = false; // counted from one settled set to the next
    if (m_held.empty() || !pressed || m_held == m_lastReported)
        return std::nullopt;
    m_lastReported = m_held;
    return m_held;
}

std::optional<ChordSettler::Clock::time_point> ChordSettler::due() const
{
    if (!m_waiting)
        return std::nullopt;
    return m_changedAt + m_settle;
}

void ChordSettler::reset()
{
    m_held.clear();
    m_lastReported.clear();
    m_waiting = false;
    m_keyPressed = false;
}

} // namespace midi
