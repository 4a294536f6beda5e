#pragma once

#include "music/Note.h"

#include <cstdint>

namespace part {

/**
 * How the notes of a chord are stacked. Each style starts from the close position of one
 * inversion (every tone as the next note above the one below, within one octave) and moves some
 * voices down an octave, counting voices from the top:
 * - Close: nothing moves.
 * - Open: every second voice from the second one on (2nd, 4th, ...) moves down; for a triad this
 *   is the same as Drop2.
 * - Drop2: the second voice moves down. Cmaj7 C E G B becomes G C E B.
 * - Drop3: the third voice moves down; chords of fewer than three notes stay close.
 * - Spread: the lowest voice moves down, leaving a wide gap under the rest.
 */
enum class VoicingStyle : std::uint8_t
{
    Close,
    Open,
    Drop2,
    Drop3,
    Spread,
};

/** What the lowest note of a voicing must be. */
enum class BassRule : std::uint8_t
{
    Any,  // whatever the inversion gives
    Root, // the chord's root
    Note, // a chosen pitch class (a slash chord); added below the chord when it lacks it
};

/** A voicing request: the style, the range every note must lie in, and the bass rule. */
struct VoicingOptions
{
    VoicingStyle style = VoicingStyle::Close;
    /**
     * Lowest and highest note allowed, inclusive, as stored chord-note values (octave * 12 +
     * pitch class, 0..119; "C0" is 0). They sound the part's base octave (and the track's octave
     * setting) higher. The default covers the three octaves that generated chords start in.
     */
    music::NoteValue low = 0;
    music::NoteValue high = 35;
    BassRule bass = BassRule::Any;
    /** The bass pitch class 0..11 for BassRule::Note. */
    music::PitchClass bassNote = 0;

    friend bool operator==(const VoicingOptions&, const VoicingOptions&) = default;
};

} // namespace part
