#pragma once

#include "part/Part.h"
#include "part/RenderOptions.h"

#include <cstdint>

namespace midi {

/** What "Create midi file" is asked to write. */
struct MidiExportOptions
{
    /** 0..15, written into the status bytes as it is (the dialog may show it 1-based). */
    std::uint8_t channel = 0;
    /**
     * The velocity setting V. The dialog offers 16, 32, ..., 128; 128 is kept as given and
     * lowered to 127 once the first note has used it.
     */
    int velocity = 80;
    /** "If active, the bpm-value will be written to the file." */
    bool writeBpm = false;
    /** Index option, upper note limit and track switches of the row-to-notes rule. */
    part::RenderOptions render;
    /** The tempo bar's values (beats per minute, ticks per beat). */
    std::uint16_t beatsPerMinute = part::Part::kDefaultBpm;
    std::uint16_t ticksPerBeat = part::Part::kDefaultTpb;
    /** The chords to write; part::kNoIndex in a field means from the first / to the last. */
    std::uint16_t rangeFirst = part::kNoIndex;
    std::uint16_t rangeLast = part::kNoIndex;
    /**
     * Off by default, so that files stay byte for byte as before. On: the first track starts
     * with the part's name as the sequence name and carries a marker with each chord's name
     * where the chord starts.
     */
    bool writeChordNames = false;

    friend bool operator==(const MidiExportOptions&, const MidiExportOptions&) = default;
};

} // namespace midi
