#pragma once

#include "part/TrackOctave.h"

#include <array>
#include <cstdint>

namespace part {

/**
 * What to do with a chord-note cell whose index the chord doesn't have. Playback and MIDI files
 * use the names as given; the song writer reads 1 and 2 the other way round.
 */
enum class IndexOption : std::uint8_t
{
    ExtendChord = 0, // "Start again with 1st note, but one octave higher."
    OffEvent = 1,    // the cell is taken as an off-event
    Ignore = 2,      // the cell is ignored
};

/** The part editor's rendering options, shared by every renderer. */
struct RenderOptions
{
    /** A track whose switch is off produces nothing (and draws no random numbers). */
    std::array<bool, kTrackCount> tracks{true, true, true, true, true, true, true, true};
    IndexOption indexOption = IndexOption::ExtendChord;
    /** "Activate upper note limit.": no note above limitNote + 12 * limitOctave + 1. */
    bool limitActive = false;
    std::uint8_t limitNote = 0; // pitch class 0..11
    std::uint8_t limitOctave = 0;

    friend bool operator==(const RenderOptions&, const RenderOptions&) = default;
};

} // namespace part
