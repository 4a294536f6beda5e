#include "music/RandomSource.h"

#include <atomic>

namespace music {

namespace {

/** Spreads neighbouring seeds over the whole state space (a 32-bit integer hash). */
std::uint32_t scramble(std::uint32_t value)
{
    value ^= value >> 16;
    value *= 0x7feb352du;
    value ^= value >> 15;
    value *= 0x846ca68bu;
    value ^= value >> 16;
    return value;
}

// Atomic so that the playback thread and the window may both draw without a data race; a draw
// that overlaps another may repeat a number, which a velocity jitter does not mind.
std::atomic<std::uint32_t> g_state{scramble(1)};

} // namespace

void RandomSource::seed(std::uint32_t value)
{
    g_state.store(scramble(value), std::memory_order_relaxed);
}

int RandomSource::next()
{
    const std::uint32_t state = g_state.load(std::memory_order_relaxed) * 214013u + 2531011u;
    g_state.store(state, std::memory_order_relaxed);
    return static_cast<int>((state >> 16) & 0x7FFFu);
}

int RandomSource::random(int n)
{
    if (n <= 0)
        return 0;
    if (n > 32000)
        n = 32000;
    const int divisor = 32000 / n;
    int result = 0;
    do {
        result = (next() + 1) / divisor;
    } while (result >= n);
    return result;
}

} // namespace music
