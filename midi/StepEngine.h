#pragma once

#include "midi/StepSink.h"
#include "part/Part.h"
#include "part/RenderOptions.h"
#include "part/RowRenderer.h"

#include <array>
#include <cstdint>
#include <vector>

namespace midi {

/**
 * The step sequencer that turns a part into note messages, one pattern row per step. Live
 * playback calls `step()` from its timer; the MIDI file writer calls it in a loop. Both get the
 * same messages through a `StepSink`. Qt-free and single-threaded (the caller's thread).
 *
 * Each step renders the current row with the row-to-notes rule of the part library. Per track,
 * in track order, a stopping note gives a note off and a new note gives a note off for the
 * track's sounding note (if any, on the channel it started on) followed by a note on. Every message
 * of a step gets the velocity V - r + n / 2: V the velocity setting, r =
 * music::RandomSource::random(3) drawn per message, n the number of messages of the step. When V is
 * above 127 the message still uses it and V then becomes 127; the byte sent or stored is clamped
 * into 1..127 (see StepMessage::velocityByte), so a file never holds an invalid data byte. Notes
 * outside 0..127 (only damaged patterns make them) are skipped.
 *
 * A chord plays rows 0..length-1 of its pattern; chords of length 0 are passed over. When the
 * last chord has played its rows, the next `step()` stops every sounding note (velocity V - 1)
 * and ends the playback. The engine keeps its own copy of the part, so editing the part while
 * playing cannot upset it; `updatePart` hands it a live edit (cells, track octaves), heard from
 * the next step on.
 */
class StepEngine
{
public:
    /** A sounding-note entry that means "the track is silent". */
    static constexpr std::uint8_t kNoNote = 255;

    /** The sink must outlive the engine. */
    explicit StepEngine(StepSink& sink);

    /**
     * The rendering options; while playing, track switches and the note limit apply from the
     * next step on, the index option from the next chord on.
     */
    void setRenderOptions(const part::RenderOptions& options) { m_options = options; }
    const part::RenderOptions& renderOptions() const { return m_options; }

    /**
     * 0..15 (the low 4 bits are kept); takes effect on the next note on. A sounding note is
     * always ended on the channel it was started on, so changing the channel while playing
     * leaves no note hanging.
     */
    void setChannel(std::uint8_t channel) { m_channel = static_cast<std::uint8_t>(channel & 0x0F); }
    std::uint8_t channel() const { return m_channel; }

    /** The velocity setting V; takes effect on the next message. Lowered to 127 once used. */
    void setVelocity(int velocity) { m_velocity = velocity; }
    int velocity() const { return m_velocity; }

    /**
     * "Play part.": starts at `selectedChord` (part::kNoIndex: none, meaning chord 0) within
     * the part's selected range (part::kNoIndex in a field means "from the first" / "to the
     * last chord"); a start outside the range is replaced by the range's first chord. Stops a
     * playback in progress first, renders and sends the first step. False when nothing plays.
     */
    bool startPart(const part::Part& part, std::uint16_t selectedChord);

    /** "Play single chord.": plays `selectedChord` (none: chord 0) once and then ends. */
    bool startSingleChord(const part::Part& part, std::uint16_t selectedChord);

    /**
     * Plays the chords first..last (part::kNoIndex: the part's first / last chord), as the MIDI
     * file writer does. False (nothing plays) when the part has no chords, when the range holds
     * no chord of non-zero length, or when first lies beyond last.
     */
    bool startRange(const part::Part& part, std::uint16_t first, std::uint16_t last);

    /**
     * Advances one step: raises the step counter, moves on to the next chord at the current
     * chord's length, and renders and sends the row. When the last chord is done it stops every
     * sounding note instead and returns false; it also returns false when not playing.
     */
    bool step();

    /** Sends a note off (velocity V - 1) for every sounding track and ends the playback. */
    void stop();

    /**
     * Replaces the part being played, keeping the position: the next step renders from `part`.
     * Meant for live edits, which leave the chords as they are; when `part` has fewer chords,
     * the range is cut to them, and when the current chord is gone its notes stop and the
     * playback ends. Sounding notes go on until their track's next event.
     */
    void updatePart(const part::Part& part);
    /**
     * updatePart without a copy: the engine takes `part` and hands back the one it played in
     * its place, so a real-time caller neither allocates nor frees.
     */
    void swapPart(part::Part& part);

    /**
     * Plays first..last of the part the engine holds again (a loop's next round), with the rules
     * of startRange; nothing is copied. False when nothing plays.
     */
    bool replay(std::uint16_t first, std::uint16_t last);

    bool isPlaying() const { return m_playing; }
    /** The chord being played (an index into the part), and the range's last chord. */
    std::uint16_t currentChord() const { return m_currentChord; }
    std::uint16_t lastChord() const { return m_lastChord; }
    /** The row of the current chord's pattern that the last step rendered. */
    int stepInChord() const { return m_stepInChord; }
    /** The index of the last rendered step, counted from 0. */
    std::uint32_t stepIndex() const { return m_stepIndex; }

    /** The sounding note of track 0..7, kNoNote when silent. */
    std::uint8_t soundingNote(int track) const;
    const std::array<std::uint8_t, part::kTrackCount>& soundingNotes() const { return m_sounding; }

    /**
     * The chords a range covers, with the same rules as `startRange`: part::kNoIndex in first
     * gives 0, in last gives count - 1; last is clamped to the part. False when the part has no
     * chords or first lies beyond last.
     */
    static bool resolveRange(const part::Part& part, std::uint16_t& first, std::uint16_t& last);

private:
    bool begin(const part::Part& part, std::uint16_t first, std::uint16_t last);
    /** Starts at `first` of the part held; false when no chord of first..last has rows. */
    bool beginHeld(std::uint16_t first, std::uint16_t last);
    /** After the part changed while playing: range and current chord fitted to it. */
    void fitToPart();
    /** Makes `index` current, passing over chords of length 0. False when none is left. */
    bool enterChord(int index);
    void renderCurrentRow();
    /** Gives every pending message its velocity and sends it; the pending list is emptied. */
    void sendPending();
    void stopNotes(std::uint32_t stepIndex);

    StepSink& m_sink;
    part::RenderOptions m_options;
    std::uint8_t m_channel = 0;
    int m_velocity = 80;

    part::Part m_part;
    part::PreparedChord m_chord;
    bool m_playing = false;
    std::uint16_t m_currentChord = 0;
    std::uint16_t m_lastChord = 0;
    int m_stepInChord = 0;
    std::uint32_t m_stepIndex = 0;
    std::array<std::uint8_t, part::kTrackCount> m_sounding{};
    std::array<std::uint8_t, part::kTrackCount> m_soundingChannel{}; // where each note started
    std::vector<StepMessage> m_pending; // the messages of the step being rendered
};

} // namespace midi
