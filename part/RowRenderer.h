#pragma once

#include "part/Part.h"
#include "part/PartChord.h"
#include "part/PitchClassFlags.h"
#include "part/RenderOptions.h"
#include "part/RowRecord.h"
#include "part/TrackOctave.h"

#include <array>
#include <cstdint>

namespace part {

/** A chord as the row rule reads it, after the index option has been applied once. */
struct PreparedChord
{
    std::array<std::uint8_t, PartChord::kMaxNotes> notes{};
    std::uint8_t count = 0;

    friend bool operator==(const PreparedChord&, const PreparedChord&) = default;
};

/** What one track does on one row. */
struct TrackEvent
{
    enum class Type : std::uint8_t
    {
        None, // leave the track as it is
        Off,  // stop the track's sounding note
        Note, // stop the sounding note (if any) and start `note`
    };
    Type type = Type::None;
    /**
     * The note number for Type::Note. Normally 0..127, but damaged data (octave bytes above 9,
     * values above 11) can give more: renderers must range-check before sending it anywhere.
     */
    int note = 0;

    friend bool operator==(const TrackEvent&, const TrackEvent&) = default;
};

/** The events of one row, indexed by track 0..7. */
using RowEvents = std::array<TrackEvent, kTrackCount>;

/** Everything besides the chord and the row that the rule reads; taken from the part editor. */
struct RenderContext
{
    RenderOptions options;
    std::uint8_t baseOctave = Part::kDefaultBaseOctave;
    PitchClassFlags flags = kAllPitchClassesAllowed;
};

/**
 * Prepares a chord once before its rows are rendered. Under IndexOption::ExtendChord a chord of
 * fewer than five notes is continued with its first notes one octave higher (C E G becomes
 * C E G C' E') and every chord counts five notes, so six- and seven-note chords lose their last
 * notes; this cut is deliberate. A chord without notes stays empty (it renders no chord notes).
 */
PreparedChord prepareChord(const PartChord& chord, IndexOption option);

/**
 * The row-to-notes rule that every renderer (playback, MIDI file, command line) uses: turns one
 * row of the chord's pattern into one event per track, in track order.
 *
 * Chance cells (kind 4) draw music::RandomSource::random(50) once each, in track order, only on
 * tracks whose switch is on, and sound when the draw is below 25; seed the source for repeatable
 * output. A chord-note index beyond the prepared chord gives an off-event under OffEvent (kind 1
 * only) and nothing otherwise. Unknown cell kinds give nothing.
 */
RowEvents renderRow(const PreparedChord& chord, const RowRecord& row,
                    const TrackOctaves& trackOctaves, const RenderContext& context);

/**
 * Convenience for renderers walking a part: row `rowIndex` of chord `chordIndex`'s pattern
 * (`chordIndex` must be a chord of the part). Rows outside 0..63, and a chord whose pattern index
 * lies outside the pattern list, render as empty rows.
 */
RowEvents renderPartRow(const Part& part, const PreparedChord& chord, int chordIndex, int rowIndex,
                        const RenderOptions& options);

/** The context a part gives: its base octave and flags with the given options. */
RenderContext renderContextOf(const Part& part, const RenderOptions& options);

} // namespace part
