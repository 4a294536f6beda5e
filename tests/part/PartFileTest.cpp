#include "part/PartFile.h"
#include "DefaultDataBuilder.h"
#include "TempFolder.h"
#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "part/PartPresetList.h"
#include "part/PartTextFormat.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

using namespace part;

namespace {

/** Whatever the bytes, the reader makes up no records they cannot hold and no oversized chord. */
Part expectNoMadeUpRecords(std::string_view bytes, const std::string& what)
{
    const Part read = PartFile::parse(bytes);
    EXPECT_LE(read.patterns().count(), static_cast<int>(bytes.size() / 1547 + 1)) << what;
    EXPECT_LE(read.count(), static_cast<int>(bytes.size() / 4 + 1)) << what;
    for (const PartChord& chord : read.chords())
        EXPECT_LE(chord.noteCount, PartChord::kMaxNotes) << what;
    return read;
}

} // namespace

TEST(PartFile, AnEmptyPartIsWrittenFieldByField)
{
    const std::string expected = "\n0\n"          // pattern list: name, count
                                 "\n0\n"          // chord list: name, count
                                 "4\n0\n"         // base octave, current pattern
                                 "65000\n65000\n" // no selection
                                 "126\n4\n"       // tempo
                                 "1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n"; // flags
    EXPECT_EQ(PartFile::serialize(Part()), expected);
    // Read back, a part without patterns gets one empty pattern.
    EXPECT_EQ(PartFile::parse(expected), Part::makeNew());
}

TEST(PartFile, APatternBlockIsAlways1547LinesWithValueBeforeKind)
{
    Pattern pattern("Arp");
    pattern.setTrackOctave(1, 9);
    pattern.setCell(1, 2, PatternCell{CellKind::ChanceChordNote, 3, 2});
    pattern.setCell(7, 63, PatternCell{static_cast<CellKind>(200), 255, 255});
    std::string bytes;
    textformat::writePattern(bytes, Pattern());
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\n'), 1547) << "an empty name keeps its line";
    bytes.clear();
    textformat::writePattern(bytes, pattern);
    std::vector<std::string> lines;
    for (music::TextLineReader in(bytes); !in.atEnd();)
        lines.push_back(in.readLine());
    ASSERT_EQ(lines.size(), 1547u);
    // Line numbers from 1 as a text editor shows them.
    const std::vector<std::pair<int, std::string>> expected = {
        {1, "Arp"}, {2, "64"},  {3, "8"},   {4, "0"},      {5, "0"},      {6, "0"},     {197, "9"},
        {204, "3"}, {205, "4"}, {206, "2"}, {1545, "255"}, {1546, "200"}, {1547, "255"}};
    for (const auto& [line, text] : expected)
        EXPECT_EQ(lines[static_cast<std::size_t>(line - 1)], text) << "line " << line;
    std::string edited = bytes; // declared row and track counts are ignored
    edited.replace(0, 9, "Arp\n32\n4\n");
    const std::string both = bytes + edited;
    music::TextLineReader in(both);
    EXPECT_EQ(textformat::readPattern(in), pattern) << "unknown kinds survive as their byte";
    EXPECT_EQ(textformat::readPattern(in), pattern);
}

TEST(PartFile, ReadsNumbersAsTheLineRulesSay)
{
    std::string lf = "\n1\n"; // the pattern list, then chord list name, count, chords, fields
    textformat::writePattern(lf, Pattern());
    lf += "Chords   \n2\nAm  \n3\n-1\n300\n9\n12\n16\n G\n9\n0\n16\n7\n11\n14\n19\n23\n26\n"
          "31\n35\n38\n4abc\n70000\n  12\n-3\n+120\n4\n1\n0\n-1\n";
    std::string crlf;
    for (const char c : lf)
        crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    // Counts and notes wrap to their width, a chord keeps seven of nine notes and skips the rest,
    // and missing flag lines read as 0.
    const std::string expected = "Chords\n2\nAm\n3\n65535\n44\n9\n12\n16\n"
                                 " G\n7\n0\n16\n7\n11\n14\n19\n23\n26\n31\n"
                                 "4\n4464\n12\n65533\n120\n4\n"
                                 "1\n0\n4294967295\n0\n0\n0\n0\n0\n0\n0\n0\n0\n";
    for (const std::string& bytes : {lf, crlf}) {
        const std::string written = PartFile::serialize(PartFile::parse(bytes));
        EXPECT_EQ(written.substr(written.find("Chords")), expected) << bytes.size();
    }
}

TEST(PartFile, ChordLengthsAbove64AreLoweredTo64WhereverTheyEnter)
{
    // A pattern has 64 rows: a longer length played silence after row 63. The length lines of
    // four chords, and the lengths read back (as 8-bit numbers first: 300 is 44).
    const std::string chords = "list\n5\nA\n1\n0\n64\n0\nB\n1\n0\n65\n0\nC\n1\n0\n255\n0\n"
                               "D\n1\n0\n0\n0\nE\n1\n0\n300\n0\n";
    const std::vector<int> expected = {64, 64, 64, 0, 44};
    const auto lengths = [](const Part& p) {
        std::vector<int> out;
        for (const PartChord& chord : p.chords())
            out.push_back(chord.length);
        return out;
    };
    EXPECT_EQ(lengths(PartFile::parse("\n0\n" + chords)), expected) << "part file";
    // A part preset: name, tempo, selection, base octave, twelve flags, patterns, chords.
    std::string preset = std::string(PartPresetList::kMagic) + "\n1\nP\n126\n4\n0\n0\n4\n";
    for (int flag = 0; flag < 12; ++flag)
        preset += "1\n";
    PartPresetList presets;
    ASSERT_TRUE(presets.parse(preset + "\n0\n" + chords).ok());
    ASSERT_EQ(presets.count(), 1);
    EXPECT_EQ(lengths(presets.presets()[0].part), expected) << "part preset file";

    // Set in memory: the part and the chord keep it within 0..64; renderers read rows(), which
    // holds for a value stored into the field directly.
    Part p;
    PartChord chord;
    chord.length = 200;
    EXPECT_EQ(chord.rows(), 64);
    p.append(chord);
    p.insert(0, chord);
    chord.setLength(-3);
    p.append(chord);
    chord.setLength(1000);
    p.append(chord);
    EXPECT_EQ(lengths(p), (std::vector<int>{64, 64, 0, 64}));
}

TEST(PartFile, ShortDamagedAndForeignFilesReadWithoutHarm)
{
    const std::string good = defaults::defaultPartBytes();
    for (std::size_t size = 0; size < good.size(); size += 97)
        expectNoMadeUpRecords(std::string_view(good).substr(0, size), "cut");
    std::string noise(20000, '\0');
    std::mt19937 random(7);
    for (char& c : noise)
        c = static_cast<char>(random());
    expectNoMadeUpRecords(noise, "noise");
    expectNoMadeUpRecords("x\n65535\n", "huge pattern count, nothing after");
    expectNoMadeUpRecords("x\n65535\n1", "huge pattern count, one byte after");
    expectNoMadeUpRecords("\n0\n\n65535\n" + std::string(400, '\n'), "huge chord count");
    expectNoMadeUpRecords("\n0\n\n1\nC\n255\n0\n16\n", "huge note count");

    const Part empty = expectNoMadeUpRecords("", "empty file");
    std::string expected = "\n1\n";
    textformat::writePattern(expected, Pattern());
    EXPECT_EQ(PartFile::serialize(empty),
              expected + "\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n")
        << "a file without fields gives zeros and one empty pattern";
}

TEST(PartFile, RoundTripsThroughAFileByteForByte)
{
    Part p = defaults::defaultPart();
    p.setSelection(1, 3);
    p.setCurrentPattern(2);
    p.setName("  leading blanks stay");
    p.chord(0).notes[6] = 99; // beyond the note count: not saved
    p.chord(1).noteCount = 9; // more than a chord holds: saved as 7, so the file stays readable
    PitchClassFlags flags = kAllPitchClassesAllowed;
    flags[1] = 0;
    flags[11] = 4000000000u;
    p.setPitchClassFlags(flags);

    TempFolder folder;
    const auto file = folder.path() / "a.prt";
    ASSERT_TRUE(PartFile::save(file, p).ok());
    Part read;
    ASSERT_TRUE(PartFile::loadDefault(file, read));
    EXPECT_EQ(music::readFileBytes(file), PartFile::serialize(read));
    p.chord(0).notes[6] = 0;
    p.chord(1).noteCount = 7;
    EXPECT_EQ(read, p);

    const Part before = read; // failed loads report their message and change nothing
    EXPECT_EQ(PartFile::load(folder.path() / "missing.prt", read).message(), "unable to open file");
    EXPECT_EQ(PartFile::load(folder.path(), read).message(), "unable to open file");
    EXPECT_FALSE(PartFile::loadDefault(folder.path() / "default.prt", read));
    EXPECT_EQ(read, before);
}

TEST(PartFile, AFailedSaveSaysSoAndLeavesTheOldFileAsItWas)
{
    // How a save cut short keeps the old file is the safe writer's test; here, that the part
    // file reports it with its own message.
    TempFolder folder;
    const auto blocker = folder.path() / "plain";
    ASSERT_TRUE(music::writeFileSafely(blocker, "not a folder\n"));
    EXPECT_EQ(PartFile::save(blocker / "x.prt", Part()).message(), "unable to open file");
    EXPECT_EQ(music::readFileBytes(blocker), "not a folder\n");
}
