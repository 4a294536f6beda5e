#pragma once

#include <chrono>
#include <optional>
#include <vector>

namespace midi {

/**
 * Decides when the notes held on a keyboard form a chord worth naming. Fingers never land at
 * once, so a chord is the set of held notes once it has stayed unchanged for the settle time
 * (kDefaultSettle: 60 ms, longer than the spread of a played chord, shorter than a fast chord
 * change). A settled set is reported once, and only when
 *   - it is not empty,
 *   - a key went down since the set before settled (letting a chord go note by note reports
 *     nothing),
 *   - it differs from the last reported set (the same chord struck again is not repeated).
 * A pure value driven by the caller's clock, so it can be tested without waiting.
 */
class ChordSettler
{
public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds kDefaultSettle{60};

    explicit ChordSettler(std::chrono::milliseconds settle = kDefaultSettle) : m_settle(settle) {}

    /** The held notes became `held` at `time`; `keyPressed` when a key went down. */
    void update(std::vector<int> held, bool keyPressed, Clock::time_point time);
    /** The chord to name at `now`, at most once per settled set; nothing otherwise. */
    std::optional<std::vector<int>> poll(Clock::time_point now);
    /** When poll() should be called next; nothing while no change is waiting to settle. */
    std::optional<Clock::time_point> due() const;
    /** Forgets the last reported chord and any change waiting (for example a new device). */
    void reset();

private:
    std::chrono::milliseconds m_settle;
    std::vector<int> m_held;
    std::vector<int> m_lastReported;
    Clock::time_point m_changedAt{};
    bool m_waiting = false;
    bool m_keyPressed = false;
};

} // namespace midi
