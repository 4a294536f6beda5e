#pragma once

namespace midi {

/**
 * Keeps a stereo signal at or below a ceiling, so that the built-in synth never clips. The gain
 * drops at once to what the loudest sample of a frame allows (no sample ever passes the
 * ceiling) and recovers towards 1 with the release time. General MIDI programs differ in
 * loudness by 20 dB and more, so no fixed gain alone can make a piano audible and keep a string
 * section clean; the limiter takes the loud ones and leaves the rest untouched.
 *
 * Samples are floats with full scale at 1.0. Not thread-safe: one instance per audio stream,
 * used by the thread that renders it.
 */
class PeakLimiter
{
public:
    /** -1 dBFS: a little room for the conversion to integer samples. */
    static constexpr float kDefaultCeiling = 0.891f;
    static constexpr float kDefaultReleaseSeconds = 0.3f;

    /** `ceiling` in full scale (0..1], `releaseSeconds` > 0, `sampleRate` in frames a second. */
    PeakLimiter(int sampleRate, float ceiling = kDefaultCeiling,
                float releaseSeconds = kDefaultReleaseSeconds);

    /** Limits `frames` frames of the two channels in place. */
    void process(float* left, float* right, int frames);

    /** The gain applied to the last frame, 0..1. */
    float gain() const { return m_gain; }

private:
    float m_ceiling;
    float m_release; // the part of the distance to the target gain kept per frame
    float m_gain = 1.0f;
};

} // namespace midi
