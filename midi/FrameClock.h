#pragma once

#include <cstdint>

namespace midi {

/**
 * Where an audio server's frame counter stands against the system's monotonic clock, learnt from
 * the process cycles alone: each cycle gives its first frame and the moment the cycle's thread
 * woke. The wake-up comes a little after the cycle's true start, by a delay that varies from
 * cycle to cycle, so the earliest wake-ups tell where the frames stand: the clock keeps the
 * highest "frames minus elapsed time" seen and lets it sink slowly (kDriftPpm), so that a device
 * clock running slower than the system's is followed too.
 *
 * A server that falls behind (an overrun) restarts its frames later than their time: "frames
 * minus time" drops and stays down. The server's report of the overrun makes the owner call
 * forget(); a drop of more than kJumpUs in two cycles in a row is taken as such a jump too (a
 * report that comes late or never), while a single late wake-up changes nothing.
 *
 * Not a time filter of the server's own (JACK's period estimate wanders by several frames after an
 * overrun and drifts while it settles); no allocation, no lock: for a real-time thread.
 */
class FrameClock
{
public:
    /** How fast a device clock may run slower than the system's and still be followed. */
    static constexpr double kDriftPpm = 100;
    /** A drop of "frames minus time" that is taken as a jump of the frame counter. */
    static constexpr std::int64_t kJumpUs = 1000;

    explicit FrameClock(double sampleRate = 48000) : m_rate(sampleRate) {}

    /** Frames per second; forgets what was learnt. */
    void setSampleRate(double sampleRate);

    /** Starts learning afresh with the next cycle: the server reported an overrun. */
    void forget() { m_known = false; }

    /**
     * One process cycle: its first frame (the server's 32-bit counter, which may wrap) and the
     * moment the cycle's thread woke, in microseconds on the monotonic clock.
     */
    void observeCycle(std::uint32_t cycleStart, std::int64_t wokeUs);

    /** Whether a cycle has been seen since the start or the last sample-rate change. */
    bool known() const { return m_known; }

    /**
     * The frame that plays at `us` (monotonic microseconds), counted from `cycleStart` of the last
     * observed cycle: negative when it has passed, as a whole frame (rounded).
     */
    std::int64_t framesFromCycleStart(std::int64_t us) const;

private:
    double m_rate;
    bool m_known = false;
    std::uint32_t m_lastStart = 0;
    std::int64_t m_frames = 0;   // the last cycle's first frame, counted from the first cycle's
    std::int64_t m_originUs = 0; // the first cycle's wake-up
    double m_level = 0;          // frames minus the elapsed time in frames, the highest held
    double m_lowest = 0;         // the best of a run of cycles below m_level by a jump or more
    int m_lowCycles = 0;         // the length of that run
};

} // namespace midi
