#include "midi/FrameClock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <string>

namespace {

constexpr double kRate = 48000;
constexpr std::uint32_t kPeriod = 64;
constexpr int kCycles = 8000; // about 10.7 s
constexpr int kEarliestWakeUs = 20;

struct Scenario
{
    std::string name;
    std::uint32_t firstFrame = 0;
    double devicePpm = 0; // > 0: the device's cycles take longer than their frames say
    int jumpAt = -1;      // the cycle from which the frame counter stands `jumpFrames` lower
    std::uint32_t jumpFrames = 0;
    int lateAt = -1; // one cycle whose thread wakes `lateUs` late
    std::int64_t lateUs = 0;
    int settleCycles = 0; // cycles from the jump on whose error is not judged
};

/**
 * The server's cycles as they really are: cycle n starts at a true moment and frame, and its
 * thread wakes 20 to 400 microseconds later (uniformly, from a fixed seed), now and then much
 * later. At the middle of each cycle the clock is asked for a moment whose true frame is known.
 */
double worstErrorFrames(const Scenario& s)
{
    midi::FrameClock clock(kRate);
    std::mt19937 random(7);
    std::uniform_int_distribution<int> delay(kEarliestWakeUs, 400);
    const double periodUs = kPeriod * 1e6 / kRate * (1 + s.devicePpm / 1e6);
    const std::int64_t originUs = 5'000'000'000; // the monotonic clock does not start at 0
    std::uint32_t lostFrames = 0;
    double worst = 0;
    for (int n = 0; n < kCycles; ++n) {
        if (n == s.jumpAt)
            lostFrames = s.jumpFrames;
        const double startUs = static_cast<double>(originUs) + n * periodUs;
        const std::uint32_t startFrame =
            s.firstFrame + static_cast<std::uint32_t>(n) * kPeriod - lostFrames;
        std::int64_t woke = static_cast<std::int64_t>(startUs) + delay(random);
        if (n == s.lateAt)
            woke += s.lateUs;
        clock.observeCycle(startFrame, woke);
        const bool settling = s.jumpAt >= 0 && n >= s.jumpAt && n < s.jumpAt + s.settleCycles;
        if (n < 200 || settling)
            continue; // the first wake-ups are all the clock has to go on
        // A moment half a period into this cycle, on the device's own time line.
        const double askedUs = startUs + periodUs / 2;
        const double expected = kPeriod / 2.0 - kEarliestWakeUs * kRate / 1e6;
        const double got =
            static_cast<double>(clock.framesFromCycleStart(static_cast<std::int64_t>(askedUs)));
        worst = std::max(worst, std::abs(got - expected));
    }
    return worst;
}

TEST(FrameClock, PlacesAMomentWithinAFrameOrTwoOfItsTrueFrame)
{
    // Within two frames (0.04 ms at 48 kHz) of the true frame less the earliest wake-up's delay,
    // which no one can tell from the cycle's true start. After the counter falls back the clock
    // takes a tenth of a second of wake-ups to find the earliest again.
    const Scenario scenarios[] = {
        {"steady"},
        {"counter wraps", 0xFFFFFFFFu - 100'000},
        {"device 60 ppm slower", 0, 60},
        {"device 60 ppm faster", 0, -60},
        {"counter falls back after an overrun", 0, 0, 3000, 300, -1, 0, 100},
        {"counter falls back by less than a period", 0, 0, 3000, 55, -1, 0, 100},
        {"counter falls back, device slower", 1000, 60, 5000, 4000, -1, 0, 100},
        {"one wake-up 5 ms late", 0, 0, -1, 0, 4000, 5000},
    };
    for (const Scenario& s : scenarios) {
        SCOPED_TRACE(s.name);
        EXPECT_LE(worstErrorFrames(s), 2.05);
    }
}

TEST(FrameClock, ANewSampleRateStartsOver)
{
    midi::FrameClock clock(kRate);
    EXPECT_FALSE(clock.known());
    clock.observeCycle(1000, 1'000'000);
    ASSERT_TRUE(clock.known());
    EXPECT_EQ(clock.framesFromCycleStart(1'000'000 + 1000), 48); // 1 ms at 48 kHz
    clock.setSampleRate(96000);
    EXPECT_FALSE(clock.known());
    clock.observeCycle(500, 2'000'000);
    EXPECT_EQ(clock.framesFromCycleStart(2'000'000 + 1000), 96);
    EXPECT_EQ(clock.framesFromCycleStart(2'000'000 - 1000), -96) << "a moment already passed";
}

} // namespace
