#pragma once

#include <array>
#include <cstdint>

namespace part {

inline constexpr int kTrackCount = 8;
inline constexpr int kRowCount = 64;

/** The eight per-track octave settings of a pattern, handled as one block. */
using TrackOctaves = std::array<std::uint8_t, kTrackCount>;

/**
 * The octave setting of one track and how it resolves against the part's base octave B:
 * 0 = B; 1..7 = the setting plus 1 (replacing B); 8 = B - 2; 9 = B - 1; 10 = B + 1; 11 = B + 2;
 * any other setting = B. A result above 9 becomes 9. The sums wrap like the unsigned 16-bit
 * (fixed notes) or 8-bit (chord notes) numbers they were made with, so an octave below 0 comes
 * out as 9 too: base octave 1 with setting 8 plays in octave 9. This wrap is deliberate.
 */
class TrackOctave
{
public:
    static constexpr int kMaxOctave = 9;

    /** The octave of a fixed note on a track: 0..9 (16-bit arithmetic). */
    static int forFixedNote(std::uint8_t setting, std::uint8_t baseOctave);

    /**
     * The octave of a chord note whose own octave, added to the base octave, is `octave`
     * (already wrapped to 8 bits): the setting adjusts it and 1..7 replace it. 0..9.
     */
    static int forChordNote(std::uint8_t setting, std::uint8_t octave);

    /** A short label for the setting as the editor shows it ("B", "3", "B-2", ...). */
    static const char* label(std::uint8_t setting);
};

} // namespace part
