#include "player/PlaybackClock.h"

#include <algorithm>
#include <chrono>
#include <thread>

#ifdef __linux__
#include <cerrno>
#include <ctime>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#endif

namespace player {

namespace {

/** JACK runs its clients at 10 or so by default; the player stays below them. */
constexpr int kRealtimePriority = 5;

} // namespace

std::int64_t PlaybackClock::now()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void PlaybackClock::sleepUntil(std::int64_t deadlineNs, std::int64_t sliceNs)
{
    const std::int64_t until = std::min(deadlineNs, now() + sliceNs);
#ifdef __linux__
    // steady_clock is CLOCK_MONOTONIC here; an absolute wake-up does not drift with the call.
    timespec at{};
    at.tv_sec = static_cast<time_t>(until / 1'000'000'000);
    at.tv_nsec = static_cast<long>(until % 1'000'000'000);
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &at, nullptr) == EINTR) {
    }
#else
    std::this_thread::sleep_until(
        std::chrono::steady_clock::time_point(std::chrono::nanoseconds(until)));
#endif
}

bool PlaybackClock::requestRealtime()
{
#ifdef __linux__
    int priority = kRealtimePriority;
    rlimit limit{};
    if (getrlimit(RLIMIT_RTPRIO, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
        limit.rlim_cur > 0)
        priority = std::min(priority, static_cast<int>(limit.rlim_cur));
    // Without a limit above 0 only a privileged process gets it; asking costs nothing.
    sched_param param{};
    param.sched_priority = priority;
    return pthread_setschedparam(pthread_self(), SCHED_FIFO, &param) == 0;
#else
    return false;
#endif
}

} // namespace player
