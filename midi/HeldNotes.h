#pragma once

#include "midi/MidiInputEvent.h"

#include <array>
#include <cstdint>
#include <vector>

namespace midi {

/**
 * Which keys are down on a MIDI keyboard, and what the sustain pedal captures. A pure value fed
 * with input events, so it can be tested without a device; the owner calls it from one thread.
 *
 * A note is down while it is held on any channel. The pedal does not sustain notes here: pressing
 * it captures a chord, the notes held at that moment or, when no key is down, the last chord
 * held (the keys that were down right after the latest key went down).
 */
class HeldNotes
{
public:
    /** What one event changed. */
    struct Change
    {
        bool notesChanged = false; // the set of held notes is different
        bool keyPressed = false;   // a key went down
        bool captured = false;     // the pedal went down; captured() holds the chord
    };

    Change apply(const MidiInputEvent& event);
    /** Lets every key go (the device has gone, or the user asked); the pedal counts as up. */
    void clear();

    /** The notes down, ascending MIDI note numbers. */
    std::vector<int> notes() const;
    bool isDown(int note) const;
    bool isEmpty() const;
    bool pedalDown() const { return m_pedalDown; }

    /** The keys down right after the latest key went down; kept when they are let go. */
    const std::vector<int>& lastChord() const { return m_lastChord; }
    /** What a capture takes now: the notes down, or the last chord when none are. */
    std::vector<int> chordToCapture() const;
    /** What the latest pedal press captured; empty before the first one. */
    const std::vector<int>& captured() const { return m_captured; }

private:
    /** Per note, one bit per channel on which it is held. */
    std::array<std::uint16_t, 128> m_channels{};
    bool m_pedalDown = false;
    std::vector<int> m_lastChord;
    std::vector<int> m_captured;
};

} // namespace midi
