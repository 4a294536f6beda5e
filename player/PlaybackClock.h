#pragma once

#include <cstdint>

namespace player {

/**
 * The playback thread's clock: steady_clock nanoseconds (CLOCK_MONOTONIC on Linux; a JACK port
 * converts them to JACK's time), sleeps to absolute deadlines, and real-time scheduling.
 */
class PlaybackClock
{
public:
    /** Nanoseconds on std::chrono::steady_clock. */
    static std::int64_t now();

    /**
     * Sleeps until `deadlineNs` (absolute, so time spent before the call never adds up) or until
     * at most `sliceNs` has passed, whichever comes first; returns at once when the deadline is
     * past. A caller sleeping in slices can look at its commands between them.
     */
    static void sleepUntil(std::int64_t deadlineNs, std::int64_t sliceNs);

    /**
     * Asks for real-time scheduling (SCHED_FIFO) for the calling thread, at a priority
     * below JACK's own threads, where RLIMIT_RTPRIO or the process's privileges allow it. True
     * when granted; a refusal changes nothing and is not reported.
     */
    static bool requestRealtime();
};

} // namespace player
