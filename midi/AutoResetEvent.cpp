#include "midi/AutoResetEvent.h"

namespace midi {

void AutoResetEvent::signal()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_signalled = true;
    }
    m_condition.notify_one();
}

void AutoResetEvent::wait()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_condition.wait(lock, [this] { return m_signalled; });
    m_signalled = false;
}

} // namespace midi
