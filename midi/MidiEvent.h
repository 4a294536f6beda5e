#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

namespace midi {

/**
 * One event of a MIDI file track: a delta time and a status byte with what that status carries.
 *
 * Channel events (0x80..0xEF) use data bytes 1 and 2 (note and velocity), written as at most
 * 127 since MIDI data bytes have seven bits. Meta events (0xFF)
 * keep their type in data byte 1 and their payload, by type, in the sequence number, the tempo,
 * data bytes 2..6 or the data buffer; system exclusive events (0xF0, 0xF7) use the data buffer.
 * The program makes only note on/off, tempo, time signature, track name, marker and end of track;
 * the other kinds exist so that every status the writer understands can be built and written.
 */
class MidiEvent
{
public:
    static constexpr std::uint8_t kNoteOff = 0x80;
    static constexpr std::uint8_t kNoteOn = 0x90;
    static constexpr std::uint8_t kSystemExclusive = 0xF0;
    static constexpr std::uint8_t kSystemExclusiveEscape = 0xF7;
    static constexpr std::uint8_t kMeta = 0xFF;

    static constexpr std::uint8_t kMetaSequenceNumber = 0x00;
    static constexpr std::uint8_t kMetaTrackName = 0x03;
    static constexpr std::uint8_t kMetaMarker = 0x06;
    static constexpr std::uint8_t kMetaEndOfTrack = 0x2F;
    static constexpr std::uint8_t kMetaTempo = 0x51;
    static constexpr std::uint8_t kMetaTimeSignature = 0x58;

    /**
     * Packs a channel message the way the note events take it: bits 0-7 channel, 8-15 note,
     * 16-23 velocity. Each part keeps its low 8 bits.
     */
    static constexpr std::uint32_t packMessage(int channel, int note, int velocity)
    {
        return (static_cast<std::uint32_t>(channel) & 0xFFu) |
               ((static_cast<std::uint32_t>(note) & 0xFFu) << 8) |
               ((static_cast<std::uint32_t>(velocity) & 0xFFu) << 16);
    }

    /**
     * Note on from a packed message. The status is (channel - 0x70) mod 256, which is
     * 0x90 + channel for the channels 0..15; the note and velocity bytes are stored as they are
     * (and written as at most 127).
     */
    static MidiEvent noteOn(std::uint32_t delta, std::uint32_t packedMessage);
    /** Note off from a packed message: status channel + 0x80 (mod 256). */
    static MidiEvent noteOff(std::uint32_t delta, std::uint32_t packedMessage);
    /** Tempo in microseconds per quarter note; written as 24 bits. */
    static MidiEvent tempo(std::uint32_t delta, std::uint32_t microsecondsPerQuarter);
    /** Time signature: numerator, denominator power, clocks per click, 32nds per quarter. */
    static MidiEvent timeSignature(std::uint32_t delta, const std::array<std::uint8_t, 4>& bytes);
    /** Track name: the text's bytes, no terminator. */
    static MidiEvent trackName(std::uint32_t delta, std::string_view text);
    /** Marker (a named point in time, such as a chord's name): the text's bytes, no terminator. */
    static MidiEvent marker(std::uint32_t delta, std::string_view text);
    static MidiEvent endOfTrack(std::uint32_t delta);

    std::uint32_t deltaTime() const { return m_delta; }
    void setDeltaTime(std::uint32_t delta) { m_delta = delta; }

    std::uint8_t status() const { return m_status; }
    void setStatus(std::uint8_t status) { m_status = status; }
    /** The low nibble of the status (meaningful for channel events). */
    std::uint8_t channel() const { return static_cast<std::uint8_t>(m_status & 0x0F); }

    /** Data bytes 1..6; byte 1 is the note or the meta type. Out of range reads 0. */
    std::uint8_t dataByte(int index) const;
    void setDataByte(int index, std::uint8_t value);
    std::uint8_t metaType() const { return dataByte(1); }

    std::uint16_t sequenceNumber() const { return m_sequenceNumber; }
    void setSequenceNumber(std::uint16_t number) { m_sequenceNumber = number; }
    std::uint32_t tempoValue() const { return m_tempo; }
    void setTempoValue(std::uint32_t microsecondsPerQuarter) { m_tempo = microsecondsPerQuarter; }

    /** The length written for meta and system exclusive events. */
    std::uint32_t dataLength() const { return m_dataLength; }
    void setDataLength(std::uint32_t length) { m_dataLength = length; }
    /** The data buffer (texts, system exclusive data, unknown meta types). */
    const std::vector<std::uint8_t>& data() const { return m_data; }
    /** Replaces the data buffer and sets the data length to its size. */
    void setData(std::vector<std::uint8_t> bytes);

    /** Appends the event as it stands in a file: delta, status (always), then its payload. */
    void appendTo(std::vector<std::uint8_t>& out) const;

    friend bool operator==(const MidiEvent&, const MidiEvent&) = default;

private:
    std::uint32_t m_delta = 0;
    std::uint8_t m_status = 0;
    std::array<std::uint8_t, 6> m_bytes{}; // data bytes 1..6
    std::uint16_t m_sequenceNumber = 0;
    std::uint32_t m_tempo = 0;
    std::uint32_t m_dataLength = 0;
    std::vector<std::uint8_t> m_data;
};

} // namespace midi
