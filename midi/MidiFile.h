#pragma once

#include "midi/MidiTrack.h"
#include "music/Result.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

namespace midi {

/**
 * A Standard MIDI file being built: format 1, division 96 ticks per quarter note, and a list of
 * tracks of which the last one is the current track that every add operation appends to.
 *
 * Adding an event before any track exists does nothing. Each event is encoded into its track's
 * bytes as it is added. The object is a plain value: tracks and their bytes are owned by it and
 * go away with it or with `release()`.
 */
class MidiFile
{
public:
    static constexpr std::uint16_t kFormat = 1;
    static constexpr std::uint16_t kDivision = 96;
    static constexpr std::size_t kHeaderSize = 14;

    /** The message of a save whose file cannot be created. */
    static constexpr std::string_view kOpenFailedMessage = "failed to open file";
    /** The message of a save that failed while writing (the old file is kept). */
    static constexpr std::string_view kWriteFailedMessage = "failed to write file";

    MidiFile() = default;

    bool isValid() const { return m_valid; }
    std::uint16_t format() const { return kFormat; }
    std::uint16_t division() const { return kDivision; }
    /** The header's track count: one for every track added. */
    std::uint16_t trackCount() const { return m_trackCount; }
    const std::vector<MidiTrack>& tracks() const { return m_tracks; }

    /** Appends an empty track, which becomes the current one. */
    void addTrack();
    void addNoteOn(std::uint32_t delta, std::uint32_t packedMessage);
    void addNoteOff(std::uint32_t delta, std::uint32_t packedMessage);
    void addTempo(std::uint32_t microsecondsPerQuarter, std::uint32_t delta);
    void addTimeSignature(std::uint32_t delta, const std::array<std::uint8_t, 4>& bytes);
    void addTrackName(std::uint32_t delta, std::string_view text);
    void addMarker(std::uint32_t delta, std::string_view text);
    void addEndOfTrack(std::uint32_t delta);
    /** Appends any event to the current track. */
    void addEvent(const MidiEvent& event);

    /** The 14 bytes of the "MThd" chunk. */
    std::array<std::uint8_t, kHeaderSize> headerBytes() const;
    /** The whole file as `save` writes it. */
    std::vector<std::uint8_t> toBytes() const;

    /**
     * Writes the file through a temporary file that replaces `path` only when every byte was
     * written, so a failed save leaves an existing file untouched. Each track's chunk length is
     * patched in after its events by seeking back to the chunk header.
     */
    music::Result save(const std::filesystem::path& path) const;

    /** Drops every track and event; the file is no longer valid until re-initialised. */
    void release();
    /** Starts again: no tracks, valid. */
    void initialise();

private:
    std::vector<MidiTrack> m_tracks;
    std::uint16_t m_trackCount = 0;
    bool m_valid = true;
};

} // namespace midi
