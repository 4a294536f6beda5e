#pragma once

#include "midi/MidiOutPort.h"

#include <filesystem>
#include <memory>
#include <string_view>

namespace midi {

/**
 * The software synthesizer that is always device 0 when it can play: FluidSynth with a General
 * MIDI soundfont, heard through the system's audio output. A machine without MIDI hardware thus
 * still makes sound.
 *
 * With the environment variable TONALMANCER_SYNTH_WAV set to a path, the synth plays into that
 * WAV file (44.1 kHz, 16-bit stereo, rendered in real time) instead of the speakers; the file is
 * complete once the synth is closed. FluidSynth's own log output is silenced.
 */
class BuiltInSynth : public MidiOutPort
{
public:
    static constexpr std::string_view kDeviceName = "Built-in synthesizer (FluidSynth)";
    static constexpr const char* kWavVariable = "TONALMANCER_SYNTH_WAV";
    static constexpr int kSampleRate = 44100;
    /**
     * FluidSynth's output gain. FluidSynth's own default (0.2) is far too quiet to audition
     * with: at this gain a dense chord (eight notes, velocity 80, the default program) peaks
     * around -6 dBFS, and a PeakLimiter at -1 dBFS catches louder programs and velocities, so
     * nothing clips.
     */
    static constexpr double kGain = 1.9;

    ~BuiltInSynth() override;
    BuiltInSynth(const BuiltInSynth&) = delete;
    BuiltInSynth& operator=(const BuiltInSynth&) = delete;

    /**
     * The soundfont to play with: the first *.sf2 of the data folder, else a General MIDI
     * soundfont of the system (FluidR3_GM, TimGM6mb), else FluidSynth's default; empty when
     * there is none.
     */
    static std::filesystem::path findSoundFont(const std::filesystem::path& dataFolder);

    /**
     * Starts the synth with its soundfont and an audio output (or the WAV file); nothing when
     * either cannot be had.
     */
    static std::unique_ptr<BuiltInSynth> open(const std::filesystem::path& dataFolder);

    /** Plays channel messages and system exclusive; other system messages are ignored. */
    void sendMessage(const std::vector<std::uint8_t>& bytes) override;

private:
    struct Impl;
    explicit BuiltInSynth(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> m_impl;
};

} // namespace midi
