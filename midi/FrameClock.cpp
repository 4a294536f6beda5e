#include "midi/FrameClock.h"

#include <algorithm>
#include <cmath>

namespace midi {

void FrameClock::setSampleRate(double sampleRate)
{
    m_rate = sampleRate;
    forget();
}

void FrameClock::observeCycle(std::uint32_t cycleStart, std::int64_t wokeUs)
{
    if (!m_known) {
        m_known = true;
        m_lastStart = cycleStart;
        m_frames = 0;
        m_originUs = wokeUs;
        m_level = 0;
        m_lowCycles = 0;
        return;
    }
    const std::uint32_t advanced = cycleStart - m_lastStart; // the counter may wrap
    m_lastStart = cycleStart;
    m_frames += advanced;
    const double level =
        static_cast<double>(m_frames) - static_cast<double>(wokeUs - m_originUs) * m_rate / 1e6;
    m_level -= static_cast<double>(advanced) * kDriftPpm / 1e6;
    if (level >= m_level) {
        m_level = level;
        m_lowCycles = 0;
        return;
    }
    if (m_level - level <= static_cast<double>(kJumpUs) * m_rate / 1e6) {
        m_lowCycles = 0; // woke late, as usual
        return;
    }
    m_lowest = m_lowCycles == 0 ? level : std::max(m_lowest, level);
    if (++m_lowCycles >= 2) { // the frame counter has jumped back: follow it
        m_level = m_lowest;
        m_lowCycles = 0;
    }
}

std::int64_t FrameClock::framesFromCycleStart(std::int64_t us) const
{
    const double frame = static_cast<double>(us - m_originUs) * m_rate / 1e6 + m_level -
                         static_cast<double>(m_frames);
    return static_cast<std::int64_t>(std::llround(frame));
}

} // namespace midi
