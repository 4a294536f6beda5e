#include "part/PartTextFormat.h"

#include <algorithm>

namespace part::textformat {

namespace {

std::uint8_t toByte(std::int32_t value)
{
    return static_cast<std::uint8_t>(value & 0xFF);
}

std::uint16_t toWord(std::int32_t value)
{
    return static_cast<std::uint16_t>(value & 0xFFFF);
}

} // namespace

void writeNumber(std::string& out, long long value)
{
    out += std::to_string(value);
    out += '\n';
}

void writeText(std::string& out, const std::string& text)
{
    out += text;
    out += '\n';
}

void writePattern(std::string& out, const Pattern& pattern)
{
    writeText(out, pattern.name());
    writeNumber(out, kRowCount);
    writeNumber(out, kTrackCount);
    for (int t = 0; t < kTrackCount; ++t) {
        writeNumber(out, pattern.trackOctave(t));
        for (int r = 0; r < kRowCount; ++r) {
            const PatternCell& c = pattern.cell(t, r);
            writeNumber(out, c.value);
            writeNumber(out, static_cast<std::uint8_t>(c.kind));
            writeNumber(out, c.octave);
        }
    }
}

Pattern readPattern(music::TextLineReader& in)
{
    Pattern pattern(in.readLine());
    in.readLine(); // the declared row count: a pattern always has 64
    in.readLine(); // the declared track count: always 8
    for (int t = 0; t < kTrackCount; ++t) {
        pattern.setTrackOctave(t, toByte(in.readInt()));
        for (int r = 0; r < kRowCount; ++r) {
            PatternCell c;
            c.value = toByte(in.readInt());
            c.kind = static_cast<CellKind>(toByte(in.readInt()));
            c.octave = toByte(in.readInt());
            pattern.setCell(t, r, c);
        }
    }
    return pattern;
}

void writePatternList(std::string& out, const PatternList& list)
{
    writeText(out, list.name());
    writeNumber(out, static_cast<std::uint16_t>(list.count()));
    for (const Pattern& p : list.patterns())
        writePattern(out, p);
}

void readPatternList(music::TextLineReader& in, PatternList& list)
{
    list.clear();
    list.setName(in.readLine());
    const int count = toWord(in.readInt());
    // A block can only be read from bytes that are there: stop at the end of the data rather
    // than making up to 65535 empty patterns from a few bytes.
    for (int i = 0; i < count && !in.atEnd(); ++i)
        list.append(readPattern(in));
}

void writeChordList(std::string& out, const Part& part)
{
    writeText(out, part.name());
    writeNumber(out, static_cast<std::uint16_t>(part.count()));
    for (const PartChord& chord : part.chords()) {
        writeText(out, chord.name);
        const int noteCount = std::min<int>(chord.noteCount, PartChord::kMaxNotes);
        writeNumber(out, noteCount);
        writeNumber(out, chord.pattern);
        writeNumber(out, chord.rows());
        for (int n = 0; n < noteCount; ++n)
            writeNumber(out, chord.notes[static_cast<std::size_t>(n)]);
    }
}

void readChordList(music::TextLineReader& in, Part& part)
{
    part.clearChords();
    part.setName(in.readLine());
    const int count = toWord(in.readInt());
    for (int i = 0; i < count && !in.atEnd(); ++i) {
        PartChord chord;
        chord.name = in.readLine();
        const int noteCount = toByte(in.readInt());
        chord.pattern = toWord(in.readInt());
        // Lengths above 64 (a pattern's rows) were silence after row 63: read as 64.
        chord.setLength(toByte(in.readInt()));
        // Every declared note line is consumed to stay in step with the file; a chord keeps 7.
        for (int n = 0; n < noteCount; ++n) {
            const std::uint8_t note = toByte(in.readInt());
            if (n < PartChord::kMaxNotes)
                chord.notes[static_cast<std::size_t>(n)] = note;
        }
        chord.noteCount = static_cast<std::uint8_t>(
            noteCount < PartChord::kMaxNotes ? noteCount : PartChord::kMaxNotes);
        part.append(std::move(chord));
    }
}

void writeFlags(std::string& out, const PitchClassFlags& flags)
{
    for (std::uint32_t flag : flags)
        writeNumber(out, flag);
}

PitchClassFlags readFlags(music::TextLineReader& in)
{
    PitchClassFlags flags{};
    for (std::uint32_t& flag : flags)
        flag = static_cast<std::uint32_t>(in.readInt());
    return flags;
}

} // namespace part::textformat
