#include "midi/MidiFile.h"

#include "music/SafeFileWriter.h"

#include <string>

namespace midi {

namespace {

constexpr std::uint32_t kHeaderChunkId = 0x4D546864; // "MThd"
constexpr std::uint32_t kHeaderLength = 6;

void putBigEndian32(std::uint8_t* out, std::uint32_t value)
{
    out[0] = static_cast<std::uint8_t>(value >> 24);
    out[1] = static_cast<std::uint8_t>(value >> 16);
    out[2] = static_cast<std::uint8_t>(value >> 8);
    out[3] = static_cast<std::uint8_t>(value);
}

void putBigEndian16(std::uint8_t* out, std::uint16_t value)
{
    out[0] = static_cast<std::uint8_t>(value >> 8);
    out[1] = static_cast<std::uint8_t>(value);
}

std::array<std::uint8_t, 8> chunkHeader(std::uint32_t id, std::uint32_t length)
{
    std::array<std::uint8_t, 8> bytes{};
    putBigEndian32(bytes.data(), id);
    putBigEndian32(bytes.data() + 4, length);
    return bytes;
}

/** Writes one track chunk, patching its length in by seeking back to the chunk header. */
bool writeTrack(music::SafeFileWriter& out, const MidiTrack& track,
                std::vector<std::uint8_t>& buffer)
{
    const std::uint64_t chunkStart = out.tell();
    const auto placeholder = chunkHeader(MidiTrack::kChunkId, 0);
    if (!out.write(placeholder.data(), placeholder.size()))
        return false;
    const std::uint64_t firstEvent = out.tell();

    buffer.clear();
    track.appendEventsTo(buffer);
    if (!out.write(buffer.data(), buffer.size()))
        return false;
    const std::uint64_t end = out.tell();

    const auto header =
        chunkHeader(MidiTrack::kChunkId, static_cast<std::uint32_t>(end - firstEvent));
    return out.seek(chunkStart) && out.write(header.data(), header.size()) && out.seek(end);
}

} // namespace

void MidiFile::addTrack()
{
    m_tracks.emplace_back();
    ++m_trackCount;
}

void MidiFile::addEvent(MidiEvent event)
{
    if (m_tracks.empty())
        return;
    m_tracks.back().addEvent(std::move(event));
}

void MidiFile::addNoteOn(std::uint32_t delta, std::uint32_t packedMessage)
{
    addEvent(MidiEvent::noteOn(delta, packedMessage));
}

void MidiFile::addNoteOff(std::uint32_t delta, std::uint32_t packedMessage)
{
    addEvent(MidiEvent::noteOff(delta, packedMessage));
}

void MidiFile::addTempo(std::uint32_t microsecondsPerQuarter, std::uint32_t delta)
{
    addEvent(MidiEvent::tempo(delta, microsecondsPerQuarter));
}

void MidiFile::addTimeSignature(std::uint32_t delta, const std::array<std::uint8_t, 4>& bytes)
{
    addEvent(MidiEvent::timeSignature(delta, bytes));
}

void MidiFile::addTrackName(std::uint32_t delta, std::string_view text)
{
    addEvent(MidiEvent::trackName(delta, text));
}

void MidiFile::addMarker(std::uint32_t delta, std::string_view text)
{
    addEvent(MidiEvent::marker(delta, text));
}

void MidiFile::addEndOfTrack(std::uint32_t delta)
{
    addEvent(MidiEvent::endOfTrack(delta));
}

std::array<std::uint8_t, MidiFile::kHeaderSize> MidiFile::headerBytes() const
{
    std::array<std::uint8_t, kHeaderSize> bytes{};
    putBigEndian32(bytes.data(), kHeaderChunkId);
    putBigEndian32(bytes.data() + 4, kHeaderLength);
    putBigEndian16(bytes.data() + 8, kFormat);
    putBigEndian16(bytes.data() + 10, m_trackCount);
    putBigEndian16(bytes.data() + 12, kDivision);
    return bytes;
}

std::vector<std::uint8_t> MidiFile::toBytes() const
{
    const auto header = headerBytes();
    std::vector<std::uint8_t> out(header.begin(), header.end());
    std::vector<std::uint8_t> events;
    for (const MidiTrack& track : m_tracks) {
        events.clear();
        track.appendEventsTo(events);
        const auto chunk =
            chunkHeader(MidiTrack::kChunkId, static_cast<std::uint32_t>(events.size()));
        out.insert(out.end(), chunk.begin(), chunk.end());
        out.insert(out.end(), events.begin(), events.end());
    }
    return out;
}

music::Result MidiFile::save(const std::filesystem::path& path) const
{
    music::SafeFileWriter out(path);
    if (!out.open())
        return music::Result::failure(std::string(kOpenFailedMessage));

    const auto header = headerBytes();
    bool ok = out.write(header.data(), header.size());
    std::vector<std::uint8_t> buffer;
    for (const MidiTrack& track : m_tracks) {
        if (!ok)
            break;
        ok = writeTrack(out, track, buffer);
    }
    if (!ok || !out.commit())
        return music::Result::failure(std::string(kWriteFailedMessage));
    return music::Result::success();
}

void MidiFile::release()
{
    if (!m_valid)
        return;
    m_tracks.clear();
    m_trackCount = 0;
    m_valid = false;
}

void MidiFile::initialise()
{
    m_tracks.clear();
    m_trackCount = 0;
    m_valid = true;
}

} // namespace midi
