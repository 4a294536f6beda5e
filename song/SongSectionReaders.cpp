#include "song/SongSectionReaders.h"

#include "music/TextLineReader.h"
#include "song/FileErrorCode.h"

namespace song {

namespace {

using Code = FileErrorCode;

} // namespace

music::Result sectionFailure(int code, std::string message)
{
    return music::Result::failure(std::move(message), code);
}

/** Reads the parameter sets of a PARA section; fails with 141, 135 or 131. */
music::Result readParameterSets(ByteCursor& c, std::vector<MachineParameterSet>& sets)
{
    std::uint32_t count = 0;
    if (!c.u32(count))
        return sectionFailure(Code::kParameterSetCount);
    for (std::uint32_t i = 0; i < count; ++i) {
        MachineParameterSet set;
        if (!c.string(set.machineName) || !c.string(set.dllName) || !c.u32(set.globalCount) ||
            !c.u32(set.trackCount))
            return sectionFailure(Code::kParameterSet);
        // Each description takes at least 22 bytes: check before reserving.
        const std::uint64_t total = std::uint64_t{set.globalCount} + set.trackCount;
        if (total * 22 > c.remaining())
            return sectionFailure(Code::kParameterDescription);
        set.parameters.reserve(static_cast<std::size_t>(total));
        for (std::uint64_t p = 0; p < total; ++p) {
            ParameterDescription d;
            if (!c.u8(d.type) || !c.string(d.name) || !c.i32(d.minimum) || !c.i32(d.maximum) ||
                !c.i32(d.noValue) || !c.i32(d.flags) || !c.i32(d.defaultValue))
                return sectionFailure(Code::kParameterDescription);
            set.parameters.push_back(std::move(d));
        }
        sets.push_back(std::move(set));
    }
    return music::Result::success();
}

std::vector<WaveEntry> parseWaves(const std::vector<std::uint8_t>& table)
{
    std::vector<WaveEntry> waves;
    ByteCursor c(std::string_view(reinterpret_cast<const char*>(table.data()), table.size()));
    std::uint16_t count = 0;
    if (!c.u16(count))
        return waves;
    for (std::uint16_t i = 0; i < count; ++i) {
        WaveEntry wave;
        std::string fileName;
        std::uint32_t volume = 0;
        std::uint8_t flags = 0;
        if (!c.u16(wave.index) || !c.string(fileName) || !c.string(wave.name) || !c.u32(volume) ||
            !c.u8(flags))
            return waves;
        waves.push_back(wave);
        if (flags & 0x80) {
            std::uint16_t envelopes = 0;
            if (!c.u16(envelopes))
                return waves;
            for (std::uint16_t e = 0; e < envelopes; ++e) {
                std::uint16_t points = 0;
                if (!c.seek(c.position() + 10) || !c.u16(points) ||
                    !c.seek(c.position() + std::size_t{points & 0x7FFFu} * 5))
                    return waves;
            }
        }
        std::uint8_t levels = 0;
        if (!c.u8(levels) || !c.seek(c.position() + std::size_t{levels} * 17))
            return waves;
    }
    return waves;
}

music::Result readSongHeader(ByteCursor& c, BuzzSong& song)
{
    std::string magic;
    std::uint32_t count = 0;
    if (!c.text(4, magic))
        return sectionFailure(Code::kHeader);
    if (!music::equalsIgnoringCase(magic, "BUZZ"))
        return sectionFailure(Code::kNotBuzzFile, "Error:\nno Buzzfile");
    if (!c.u32(count))
        return sectionFailure(Code::kHeader);
    song.setMagic(magic);
    song.setSectionCount(count);
    for (std::size_t i = 0; i < BuzzSong::kDirectoryEntries; ++i) {
        SectionEntry entry;
        if (!c.text(4, entry.name) || !c.u32(entry.offset) || !c.u32(entry.size))
            return sectionFailure(Code::kDirectoryEntry);
        song.directory().push_back(std::move(entry));
    }
    return music::Result::success();
}

music::Result readConnections(ByteCursor& c, BuzzSong& song)
{
    std::uint16_t count = 0;
    if (!c.u16(count))
        return sectionFailure(Code::kConnectionCount);
    if (std::size_t{count} * 8 > c.remaining())
        return sectionFailure(Code::kConnection);
    auto& connections = song.connections();
    connections.resize(count);
    for (SongConnection& connection : connections) {
        c.u16(connection.source);
        c.u16(connection.destination);
        c.u16(connection.amplitude);
        c.u16(connection.panning);
    }
    return music::Result::success();
}

music::Result readSequences(ByteCursor& c, BuzzSong& song)
{
    std::uint32_t end = 0;
    std::uint32_t loopStart = 0;
    std::uint32_t loopEnd = 0;
    std::uint16_t count = 0;
    if (!c.u32(end) || !c.u32(loopStart) || !c.u32(loopEnd) || !c.u16(count))
        return sectionFailure(Code::kSongLength);
    song.setSongLength(end, loopStart, loopEnd);
    auto& sequences = song.sequences();
    for (std::uint16_t i = 0; i < count; ++i) {
        SongSequence sequence;
        std::uint32_t events = 0;
        if (!c.u16(sequence.machine) || !c.u32(events)) {
            sequences.clear();
            return sectionFailure(Code::kSequenceHeader);
        }
        if (events != 0) {
            if (!c.u8(sequence.positionWidth) || !c.u8(sequence.eventWidth)) {
                sequences.clear();
                return sectionFailure(Code::kSequenceHeader);
            }
            if (sequence.eventWidth > 2 || sequence.positionWidth > 2 ||
                sequence.positionWidth == 0) {
                sequences.clear();
                return sectionFailure(Code::kEventWidth);
            }
            if (sequence.eventWidth == 0) {
                sequences.clear();
                return sectionFailure(Code::kEventWidthZero);
            }
            const std::uint64_t width = sequence.positionWidth + sequence.eventWidth;
            if (std::uint64_t{events} * width > c.remaining()) {
                sequences.clear();
                return sectionFailure(Code::kSequenceEvent);
            }
            sequence.events.resize(events);
            for (SequenceEvent& event : sequence.events) {
                c.sized(sequence.positionWidth, event.position);
                c.sized(sequence.eventWidth, event.value);
            }
        }
        sequences.push_back(std::move(sequence));
    }
    return music::Result::success();
}

// MIDI and PDLG entries: a probe byte of 0 ends the list. Otherwise the position is noted after
// the probe and the reader steps back one byte from it, so the entry is read from the probe byte
// on. Stepping back from the position before the probe instead would take the byte in front of
// the entry into its name and lose track of every later entry (songs with two open parameter
// windows would no longer load).
music::Result readMidiBindings(ByteCursor& c, BuzzSong& song)
{
    for (;;) {
        std::uint8_t probe = 0;
        if (!c.u8(probe))
            return sectionFailure(Code::kMidiProbe);
        if (probe == 0)
            return music::Result::success();
        const std::size_t noted = c.position();
        MidiBinding binding;
        if (!c.seek(noted - 1) || !c.string(binding.machineName) || !c.array(binding.bytes))
            return sectionFailure(Code::kMidiEntry);
        song.midiBindings().push_back(std::move(binding));
    }
}

music::Result readParameterWindows(ByteCursor& c, BuzzSong& song)
{
    std::uint8_t flag = 0;
    if (!c.u8(flag))
        return sectionFailure(Code::kPdlg);
    song.setParameterWindowFlag(flag);
    for (;;) {
        std::uint8_t probe = 0;
        if (!c.u8(probe))
            return sectionFailure(Code::kPdlg);
        if (probe == 0)
            return music::Result::success();
        const std::size_t noted = c.position();
        ParameterWindow window;
        if (!c.seek(noted - 1) || !c.string(window.machineName) || !c.array(window.data))
            return sectionFailure(Code::kPdlg);
        song.parameterWindows().push_back(std::move(window));
    }
}

music::Result readPatterns(ByteCursor& c, BuzzSong& song)
{
    auto& blocks = song.patternBlocks();
    for (std::size_t m = 0; m < song.machineCount(); ++m) {
        const SongMachine& machine = song.machines()[m];
        const std::size_t inputCount = song.inputsOf(m).size();
        MachinePatterns block;
        std::uint16_t patternCount = 0;
        if (!c.u16(patternCount) || !c.u16(block.trackCount))
            return sectionFailure(Code::kPatternBlockHeader);
        for (std::uint16_t p = 0; p < patternCount; ++p) {
            SongPattern pattern;
            if (!c.string(pattern.name) || !c.u16(pattern.rows))
                return sectionFailure(Code::kPatternHeader);
            const std::uint64_t rows = pattern.rows;
            const std::uint64_t inputBytes = rows * 4 + 2;
            if (inputBytes * inputCount > c.remaining())
                return sectionFailure(Code::kPatternRows);
            pattern.inputs.resize(inputCount);
            for (auto& input : pattern.inputs)
                c.bytes(inputBytes, input);
            if (!c.bytes(rows * machine.globalRowSize, pattern.globalRows) ||
                !c.bytes(rows * machine.trackRowSize * block.trackCount, pattern.trackRows))
                return sectionFailure(Code::kPatternRows);
            block.patterns.push_back(std::move(pattern));
        }
        blocks.push_back(std::move(block));
    }
    return music::Result::success();
}
} // namespace song
