#pragma once

#include <cstdint>

namespace music {

/**
 * The program's one pseudo-random source, shared by every renderer (chance cells, velocity
 * jitter). It yields 15-bit values 0..32767 from a fixed linear congruential generator, so that
 * `random(n)` behaves the same on every platform and a seed makes a run repeatable.
 * Used from one thread at a time (the thread that renders).
 */
class RandomSource
{
public:
    /**
     * Restarts the sequence from `value`. Neighbouring seeds are spread apart first, so seeds
     * 1, 2, 3 give unrelated sequences. The program starts as if seeded with 1.
     */
    static void seed(std::uint32_t value);
    /** The next raw value, 0..32767. */
    static int next();
    /**
     * A number 0..n-1: the raw value plus 1, divided by 32000 / n, drawn again while the result
     * is not below n. `n` must lie in 1..32000.
     */
    static int random(int n);
};

} // namespace music
