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
bool writeTrack(music::SafeFileWriter& out, const MidiTrack& track)
{
    const std::uint64_t chunkStart = out.tell();
    const auto placeholder = chunkHeader(MidiTrack::kChunkId, 0);
    if (!out.write(placeholder.data(), placeholder.size()))
        return false;
    const std::uint64_t firstEvent = out.tell();

    if (!out.write(track.bytes().data(), track.bytes().size()))
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

void MidiFile::addEvent(const MidiEvent& event)
{
    if (m_tracks.empty())
        return;
    m_tracks.back().addEvent(event);
}

void MidiFile::addNoteOn(std::uint32_t delta, std::uint32_t packedMessage)
{
    // The status and data bytes as MidiEvent::noteOn makes them, without the event object.
    if (m_tracks.empty())
        return;
    m_tracks.back().addChannelEvent(delta, static_cast<std::uint8_t>((packedMessage & 0xFF) - 0x70),
                                    static_cast<std::uint8_t>(packedMessage >> 8),
                                    static_cast<std::uint8_t>(packedMessage >> 16));
}

void MidiFile::addNoteOff(std::uint32_t delta, std::uint32_t packedMessage)
{
    if (m_tracks.empty())
        return;
    m_tracks.back().addChannelEvent(
        delta, static_cast<std::uint8_t>((packedMessage & 0xFF) + MidiEvent::kNoteOff),
        static_cast<std::uint8_t>(packedMessage >> 8),
        static_cast<std::uint8_t>(packedMessage >> 16));
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
    std::size_t size = header.size();
    for (const MidiTrack& track : m_tracks)
        size += 8 + track.bytes().size();
    std::vector<std::uint8_t> out;
    out.reserve(size);
    out.insert(out.end(), header.begin(), header.end());
    for (const MidiTrack& track : m_tracks) {
        const auto chunk =
            chunkHeader(MidiTrack::kChunkId, static_cast<std::uint32_t>(track.bytes().size()));
        out.insert(out.end(), chunk.begin(), chunk.end());
        track.appendEventsTo(out);
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
    for (const MidiTrack& track : m_tracks) {
        if (!ok)
            break;
        ok = writeTrack(out, track);
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
