#include "music/RandomSource.h"

namespace music {

namespace {

std::uint32_t g_state = 1;

} // namespace

void RandomSource::seed(std::uint32_t value)
{
    g_state = value;
}

int RandomSource::next()
{
    g_state = g_state * 214013u + 2531011u;
    return static_cast<int>((g_state >> 16) & 0x7FFFu);
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
