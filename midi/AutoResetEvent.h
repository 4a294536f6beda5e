#pragma once

#include <condition_variable>
#include <mutex>

namespace midi {

/**
 * A signalling event that resets itself: `wait` returns once per `signal` (signals given while
 * nobody waits are kept as one, not counted). Created non-signalled. Thread-safe.
 */
class AutoResetEvent
{
public:
    void signal();
    /** Blocks until signalled, then clears the signal. */
    void wait();

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_signalled = false;
};

} // namespace midi
