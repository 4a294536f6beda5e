#include "midi/PeakLimiter.h"

#include <algorithm>
#include <cmath>

namespace midi {

PeakLimiter::PeakLimiter(int sampleRate, float ceiling, float releaseSeconds)
    : m_ceiling(ceiling),
      m_release(std::exp(-1.0f / (releaseSeconds * static_cast<float>(std::max(sampleRate, 1)))))
{}

void PeakLimiter::process(float* left, float* right, int frames)
{
    for (int i = 0; i < frames; ++i) {
        const float peak = std::max(std::fabs(left[i]), std::fabs(right[i]));
        const float allowed = peak > m_ceiling ? m_ceiling / peak : 1.0f;
        // Down at once, up slowly: the gain never exceeds what this frame allows.
        m_gain = allowed < m_gain ? allowed : allowed + (m_gain - allowed) * m_release;
        left[i] *= m_gain;
        right[i] *= m_gain;
    }
}

} // namespace midi
