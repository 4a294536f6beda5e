#include "midi/PeakLimiter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

using midi::PeakLimiter;

namespace {

constexpr int kRate = 1000; // frames a second: a release of 0.3 s is 300 frames

/** A sine of `amplitude` with a period of 20 frames, in both channels. */
std::vector<float> sine(float amplitude, int frames)
{
    std::vector<float> out(static_cast<std::size_t>(frames));
    for (int i = 0; i < frames; ++i)
        out[static_cast<std::size_t>(i)] =
            amplitude * static_cast<float>(std::sin(2.0 * 3.14159265358979 * i / 20.0));
    return out;
}

float peakOf(const std::vector<float>& samples)
{
    float peak = 0.0f;
    for (const float s : samples)
        peak = std::max(peak, std::fabs(s));
    return peak;
}

} // namespace

TEST(PeakLimiter, NothingPassesTheCeilingAndQuietSignalsPassUnchanged)
{
    // Amplitude in, and the peak that comes out.
    const std::vector<std::pair<float, float>> cases = {
        {0.5f, 0.5f}, {0.891f, 0.891f}, {1.0f, 0.891f}, {8.0f, 0.891f}, {100.0f, 0.891f}};
    for (const auto& [amplitude, expected] : cases) {
        PeakLimiter limiter(kRate);
        std::vector<float> left = sine(amplitude, 400);
        std::vector<float> right = sine(-amplitude / 2, 400);
        limiter.process(left.data(), right.data(), 400);
        EXPECT_LE(peakOf(left), 0.891f + 1e-6f) << amplitude;
        EXPECT_NEAR(peakOf(left), expected, 0.01f) << amplitude;
        EXPECT_LE(peakOf(right), 0.891f / 2 + 0.01f) << "both channels take the same gain";
    }
}

TEST(PeakLimiter, RecoversAfterALoudPassageWithoutOvershooting)
{
    PeakLimiter limiter(kRate);
    std::vector<float> loud = sine(4.0f, 200);
    std::vector<float> copy = loud;
    limiter.process(loud.data(), copy.data(), 200);
    EXPECT_NEAR(limiter.gain(), 0.891f / 4.0f, 0.01f);

    // Quiet afterwards: the gain climbs back over a few release times, never overshooting.
    float lastGain = limiter.gain();
    for (int block = 0; block < 10; ++block) {
        std::vector<float> quiet = sine(0.5f, 100);
        std::vector<float> other = quiet;
        limiter.process(quiet.data(), other.data(), 100);
        EXPECT_GE(limiter.gain(), lastGain);
        EXPECT_LE(peakOf(quiet), 0.5f);
        lastGain = limiter.gain();
    }
    EXPECT_GT(lastGain, 0.95f) << "after three release times";
}
