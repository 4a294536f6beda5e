#include "song/SongWriter.h"

#include "music/SafeFileWriter.h"
#include "song/FileErrorCode.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace song {

namespace {

using Code = FileErrorCode;

/**
 * Little-endian writes into a SafeFileWriter or a byte buffer, with the write position. Only a
 * seek back to the start is needed (to write the header again).
 */
class Output
{
public:
    explicit Output(music::SafeFileWriter& file) : m_file(&file) {}
    explicit Output(std::string& buffer) : m_buffer(&buffer) {}

    bool bytes(const void* data, std::size_t size)
    {
        if (m_file != nullptr) {
            if (!m_file->write(data, size))
                return false;
        } else if (size != 0) {
            // Overwrite what is already there (the header, written twice), append the rest.
            const auto* text = static_cast<const char*>(data);
            const auto at = static_cast<std::size_t>(m_position);
            const std::size_t overlap = std::min(size, m_buffer->size() - at);
            std::copy(text, text + overlap, m_buffer->begin() + static_cast<std::ptrdiff_t>(at));
            m_buffer->append(text + overlap, size - overlap);
        }
        m_position += size;
        return true;
    }
    bool seekToStart()
    {
        if (m_file != nullptr && !m_file->seek(0))
            return false;
        m_position = 0;
        return true;
    }
    bool bytes(const std::vector<std::uint8_t>& data) { return bytes(data.data(), data.size()); }
    bool u8(std::uint8_t value) { return bytes(&value, 1); }
    bool u16(std::uint16_t value)
    {
        const std::array<std::uint8_t, 2> b = {static_cast<std::uint8_t>(value),
                                               static_cast<std::uint8_t>(value >> 8)};
        return bytes(b.data(), b.size());
    }
    bool u32(std::uint32_t value)
    {
        const std::array<std::uint8_t, 4> b = {
            static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8),
            static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 24)};
        return bytes(b.data(), b.size());
    }
    bool i32(std::int32_t value) { return u32(static_cast<std::uint32_t>(value)); }
    /** A string with its terminating zero byte. */
    bool string(const std::string& text) { return bytes(text.c_str(), text.size() + 1); }
    /** A four-character section name, padded with zeros. */
    bool name(const std::string& text)
    {
        std::array<char, 4> b{};
        std::memcpy(b.data(), text.data(), std::min<std::size_t>(4, text.size()));
        return bytes(b.data(), b.size());
    }
    std::uint64_t position() const { return m_position; }

private:
    music::SafeFileWriter* m_file = nullptr;
    std::string* m_buffer = nullptr;
    std::uint64_t m_position = 0;
};

music::Result fail(int code)
{
    return music::Result::failure({}, code);
}

class Writer
{
public:
    Writer(const BuzzSong& song, Output out) : m_song(song), m_out(out) {}

    music::Result run();

private:
    using Section = music::Result (Writer::*)();
    music::Result section(const std::string& name, Section write);
    music::Result header();
    music::Result version();
    music::Result parameterSets();
    music::Result connections();
    music::Result waveTable();
    music::Result waveData();
    music::Result patterns();
    music::Result sequences();
    music::Result midi();
    music::Result parameterWindows();
    music::Result machines();

    const BuzzSong& m_song;
    Output m_out;
    std::vector<SectionEntry> m_directory; // filled as the sections are written
};

music::Result Writer::section(const std::string& name, Section write)
{
    const std::uint64_t start = m_out.position();
    if (music::Result r = (this->*write)(); !r)
        return r;
    m_directory.push_back({name, static_cast<std::uint32_t>(start),
                           static_cast<std::uint32_t>(m_out.position() - start)});
    return music::Result::success();
}

music::Result Writer::header()
{
    const std::size_t count = 8 + (m_song.hasWaveData() ? 2 : 0) + m_song.rawSections().size();
    if (!m_out.bytes("Buzz", 4) || !m_out.u32(static_cast<std::uint32_t>(count)))
        return fail(Code::kWriteHeader);
    for (std::size_t i = 0; i < BuzzSong::kDirectoryEntries; ++i) {
        SectionEntry entry;
        if (i < m_directory.size())
            entry = m_directory[i];
        else if (m_directory.empty() && i < count)
            entry.name = "AAAA"; // placeholders until the sections are written
        if (!m_out.name(entry.name) || !m_out.u32(entry.offset) || !m_out.u32(entry.size))
            return fail(Code::kWriteDirectoryEntry);
    }
    return music::Result::success();
}

music::Result Writer::version()
{
    if (!m_out.string(SongWriter::kBanner))
        return fail(Code::kWriteHeader);
    return music::Result::success();
}

music::Result Writer::parameterSets()
{
    if (!m_out.u32(static_cast<std::uint32_t>(m_song.parameterSets().size())))
        return fail(Code::kWriteParameterSetCount);
    for (const MachineParameterSet& set : m_song.parameterSets()) {
        if (!m_out.string(set.machineName) || !m_out.string(set.dllName) ||
            !m_out.u32(set.globalCount) || !m_out.u32(set.trackCount))
            return fail(Code::kWriteParameterSet);
        for (const ParameterDescription& d : set.parameters) {
            if (!m_out.u8(d.type) || !m_out.string(d.name) || !m_out.i32(d.minimum) ||
                !m_out.i32(d.maximum) || !m_out.i32(d.noValue) || !m_out.i32(d.flags) ||
                !m_out.i32(d.defaultValue))
                return fail(Code::kWriteParameterSet);
        }
    }
    return music::Result::success();
}

music::Result Writer::connections()
{
    if (!m_out.u16(static_cast<std::uint16_t>(m_song.connections().size())))
        return fail(Code::kWriteConnectionCount);
    for (const SongConnection& c : m_song.connections()) {
        if (!m_out.u16(c.source) || !m_out.u16(c.destination) || !m_out.u16(c.amplitude) ||
            !m_out.u16(c.panning))
            return fail(Code::kWriteConnection);
    }
    return music::Result::success();
}

music::Result Writer::waveTable()
{
    if (!m_out.bytes(m_song.waveTable()))
        return fail(Code::kWriteRawSection);
    return music::Result::success();
}

music::Result Writer::waveData()
{
    const std::span<const std::uint8_t> data = m_song.waveData();
    if (!m_out.bytes(data.data(), data.size()))
        return fail(Code::kWriteRawSection);
    return music::Result::success();
}

music::Result Writer::patterns()
{
    // Exactly one block per machine, as the reader expects; a machine without one gets an empty
    // one.
    for (std::size_t m = 0; m < m_song.machineCount(); ++m) {
        const MachinePatterns empty{m_song.machines()[m].trackCount, {}};
        const MachinePatterns& source =
            m < m_song.patternBlocks().size() ? m_song.patternBlocks()[m] : empty;
        if (!m_out.u16(static_cast<std::uint16_t>(source.patterns.size())) ||
            !m_out.u16(source.trackCount))
            return fail(Code::kWritePatternBlock);
        for (const SongPattern& p : source.patterns) {
            if (!m_out.string(p.name) || !m_out.u16(p.rows))
                return fail(Code::kWritePattern);
            for (const auto& input : p.inputs) {
                if (!m_out.bytes(input))
                    return fail(Code::kWritePattern);
            }
            if (!m_out.bytes(p.globalRows) || !m_out.bytes(p.trackRows))
                return fail(Code::kWritePattern);
        }
    }
    return music::Result::success();
}

music::Result Writer::sequences()
{
    if (!m_out.u32(m_song.songEnd()) || !m_out.u32(m_song.loopStart()) ||
        !m_out.u32(m_song.loopEnd()) ||
        !m_out.u16(static_cast<std::uint16_t>(m_song.sequences().size())))
        return fail(Code::kWriteSongLength);
    for (const SongSequence& s : m_song.sequences()) {
        const auto count = static_cast<std::uint32_t>(s.events.size());
        if (!m_out.u16(s.machine) || !m_out.u32(count))
            return fail(Code::kWriteSequence);
        if (count == 0)
            continue;
        const std::uint8_t positionWidth = SongWriter::positionWidth(s);
        const std::uint8_t valueWidth = SongWriter::valueWidth(m_song, s);
        if (!m_out.u8(positionWidth) || !m_out.u8(valueWidth))
            return fail(Code::kWriteSequence);
        for (const SequenceEvent& e : s.events) {
            const bool ok = (positionWidth == 1 ? m_out.u8(static_cast<std::uint8_t>(e.position))
                                                : m_out.u16(e.position)) &&
                            (valueWidth == 2 ? m_out.u16(e.value)
                                             : m_out.u8(static_cast<std::uint8_t>(e.value)));
            if (!ok)
                return fail(Code::kWriteSequenceEvent);
        }
    }
    return music::Result::success();
}

music::Result Writer::midi()
{
    for (const MidiBinding& b : m_song.midiBindings()) {
        if (!m_out.string(b.machineName) || !m_out.bytes(b.bytes.data(), b.bytes.size()))
            return fail(Code::kWriteMidiEntry);
    }
    if (!m_out.u8(0))
        return fail(Code::kWriteMidiEnd);
    return music::Result::success();
}

music::Result Writer::parameterWindows()
{
    if (!m_out.u8(m_song.parameterWindowFlag()))
        return fail(Code::kWritePdlg);
    for (const ParameterWindow& w : m_song.parameterWindows()) {
        if (!m_out.string(w.machineName) || !m_out.bytes(w.data.data(), w.data.size()))
            return fail(Code::kWritePdlg);
    }
    if (!m_out.u8(0))
        return fail(Code::kWritePdlg);
    return music::Result::success();
}

music::Result Writer::machines()
{
    if (!m_out.u16(static_cast<std::uint16_t>(m_song.machines().size())))
        return fail(Code::kWriteMachineCount);
    for (const SongMachine& m : m_song.machines()) {
        if (!m_out.string(m.name) || !m_out.u8(m.type) ||
            (!m.isMaster() && !m_out.string(m.dllName)) || !m_out.u32(m.x) || !m_out.u32(m.y) ||
            !m_out.u32(static_cast<std::uint32_t>(m.data.size())) || !m_out.bytes(m.data) ||
            !m_out.u16(static_cast<std::uint16_t>(m.attributes.size())))
            return fail(Code::kWriteMachineRecord);
        for (const MachineAttribute& a : m.attributes) {
            if (!m_out.string(a.name) || !m_out.i32(a.value))
                return fail(Code::kWriteAttribute);
        }
        if (!m_out.bytes(m.globalState) || !m_out.u16(m.trackCount) || !m_out.bytes(m.trackState))
            return fail(Code::kWriteMachineRecord);
    }
    return music::Result::success();
}

music::Result Writer::run()
{
    if (music::Result r = header(); !r)
        return r;
    struct Step
    {
        const char* name;
        Section write;
    };
    std::vector<Step> steps = {{"BVER", &Writer::version},
                               {"PARA", &Writer::parameterSets},
                               {"CONN", &Writer::connections}};
    if (m_song.hasWaveData()) {
        steps.push_back({"WAVT", &Writer::waveTable});
        steps.push_back({"CWAV", &Writer::waveData});
    }
    steps.insert(steps.end(), {{"PATT", &Writer::patterns},
                               {"SEQU", &Writer::sequences},
                               {"MIDI", &Writer::midi},
                               {"PDLG", &Writer::parameterWindows},
                               {"MACH", &Writer::machines}});
    for (const Step& step : steps) {
        if (music::Result r = section(step.name, step.write); !r)
            return r;
    }
    for (const RawSection& raw : m_song.rawSections()) {
        const std::uint64_t start = m_out.position();
        if (!m_out.bytes(raw.bytes))
            return fail(Code::kWriteRawSection);
        m_directory.push_back({raw.name, static_cast<std::uint32_t>(start),
                               static_cast<std::uint32_t>(raw.bytes.size())});
    }
    // The header again, now with the real directory.
    if (!m_out.seekToStart())
        return fail(Code::kWriteHeader);
    return header();
}

} // namespace

std::uint8_t SongWriter::positionWidth(const SongSequence& sequence)
{
    const bool wide = std::any_of(sequence.events.begin(), sequence.events.end(),
                                  [](const SequenceEvent& e) { return e.position > 0xFF; });
    return sequence.positionWidth == 2 || wide ? 2 : 1;
}

std::uint8_t SongWriter::valueWidth(const BuzzSong& song, const SongSequence& sequence)
{
    if (song.patternCount(sequence.machine) > kMaxPatternsForByteValues)
        return 2;
    const bool wide = std::any_of(sequence.events.begin(), sequence.events.end(),
                                  [](const SequenceEvent& e) { return e.value > 0xFF; });
    return wide ? 2 : 1;
}

music::Result SongWriter::write(const BuzzSong& song, const std::filesystem::path& path)
{
    music::SafeFileWriter file(path);
    if (!file.open())
        return fail(Code::kWriteHeader);
    Writer writer(song, Output(file));
    if (music::Result r = writer.run(); !r)
        return r;
    if (!file.commit())
        return fail(Code::kWriteHeader);
    return music::Result::success();
}

music::Result SongWriter::toBytes(const BuzzSong& song, std::string& bytes)
{
    bytes.clear();
    Writer writer(song, Output(bytes));
    return writer.run();
}

} // namespace song
