#pragma once

#include <algorithm>
#include <cstdint>

namespace midi {

/** One note message that a step of the step engine produces. */
struct StepMessage
{
    /** The step it belongs to, counted from 0 (the first step of the playback). */
    std::uint32_t step = 0;
    /** 0x80 | channel (note off) or 0x90 | channel (note on). */
    std::uint8_t status = 0;
    /** 0..127. */
    std::uint8_t note = 0;
    /**
     * The velocity as computed (V - r + n / 2, or V - 1 when notes are stopped). It can leave
     * 0..127: a setting of 128 gives 128 or more once, a setting near 0 can go negative.
     */
    int velocity = 0;

    bool isNoteOn() const { return (status & 0xF0) == 0x90; }
    std::uint8_t channel() const { return static_cast<std::uint8_t>(status & 0x0F); }

    /**
     * The velocity byte that goes to a device and into a MIDI file: clamped into a 7-bit data
     * byte, and at least 1 for a note on so that it never reads as a note off. The velocity rule
     * can leave that range (a setting of 128 gives 128 or more once, a setting near 0 goes
     * below 1); stored as it is, such a value puts a status byte where a data byte belongs and
     * other programs refuse the file, so both outputs clamp it.
     */
    std::uint8_t velocityByte() const
    {
        return static_cast<std::uint8_t>(std::clamp(velocity, isNoteOn() ? 1 : 0, 127));
    }

    friend bool operator==(const StepMessage&, const StepMessage&) = default;
};

} // namespace midi
