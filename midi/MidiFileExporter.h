#pragma once

#include "midi/MidiExportOptions.h"
#include "midi/MidiFile.h"
#include "music/Result.h"
#include "part/Part.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string_view>

namespace midi {

/**
 * "Create midi file": renders a range of chords of a part through the step engine into a format 1
 * file of two tracks.
 *
 * Track 1 holds the time signature 4/4 (bytes 4, 4, 24, 8), the tempo 60000000 / BPM when asked
 * for, and its end at (L + 1) steps, L being the summed lengths of the chords written. Track 2,
 * "Tonalmancer track", holds the notes: one step lasts 96 / TPB ticks. Every event of the first
 * step has delta 0, and the first event of each later step carries the time since the last
 * written event, counted in whole steps from one step *before* the first when the first step was
 * silent; so a silent first row makes the next event one step late. This matches the files the
 * program has always written. The notes still sounding at the end stop one step after the last
 * row, with velocity V - 1. Every velocity byte is clamped into 1..127 (0..127 for a note off),
 * so that other programs can read the file.
 *
 * With MidiExportOptions::writeChordNames, track 1 also names the sequence (first, at tick 0)
 * and holds one marker (FF 06) with each chord's name at the tick where the chord starts: its
 * first step times the ticks per step, whatever its pattern plays there. Chords of length 0 and
 * chords without a name get no marker. The note track is not touched.
 */
class MidiFileExporter
{
public:
    static constexpr std::string_view kTrackName = "Tonalmancer track";
    static constexpr std::array<std::uint8_t, 4> kTimeSignature = {4, 4, 24, 8};

    static constexpr std::string_view kNoChordsMessage = "The part has no chords.";
    static constexpr std::string_view kEmptyRangeMessage = "The range holds no chords.";
    static constexpr std::string_view kZeroTicksMessage = "Ticks per beat must be 1 to 96.";
    static constexpr std::string_view kSlowTempoMessage =
        "Beats per minute must be at least 4 to be written to a MIDI file.";
    static constexpr std::string_view kTooLongMessage = "The part is too long for a MIDI file.";

    explicit MidiFileExporter(MidiExportOptions options) : m_options(options) {}

    /**
     * The options as they stand after the last build: the velocity is lowered to 127 when it was
     * above and a note used it; the caller keeps it as its new setting.
     */
    const MidiExportOptions& options() const { return m_options; }

    /**
     * Builds the file in memory; `file` is initialised first. Fails on the guards above. The
     * sequence name written with the chord names is the part's name (none when it is empty).
     */
    music::Result build(const part::Part& part, MidiFile& file);

    /**
     * Builds and saves the file. A failed save keeps an existing file at `path` as it was and
     * returns MidiFile::save's message ("failed to open file" when it cannot be created).
     * A part without a name is named after the file (its name without the extension).
     */
    music::Result write(const part::Part& part, const std::filesystem::path& path);

    /** 96 / TPB, truncated: 24 for TPB 4, 19 for TPB 5. */
    static std::uint32_t ticksPerStep(std::uint16_t ticksPerBeat);

private:
    music::Result build(const part::Part& part, MidiFile& file, std::string_view sequenceName);

    MidiExportOptions m_options;
};

} // namespace midi
