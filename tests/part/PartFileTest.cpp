#include "part/PartFile.h"
#include "DefaultDataBuilder.h"
#include "TempFolder.h"
#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "part/PartTextFormat.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#ifndef _WIN32
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace part;

namespace {

std::vector<std::string> linesOf(const std::string& bytes)
{
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < bytes.size()) {
        const std::size_t end = bytes.find('\n', start);
        lines.push_back(bytes.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

std::string join(const std::vector<std::string>& lines, const char* ending = "\n")
{
    std::string out;
    for (const std::string& line : lines)
        out += line + ending;
    return out;
}

} // namespace

TEST(PartFile, AnEmptyPartIsWrittenFieldByField)
{
    Part p;
    const std::string expected = "\n0\n"          // pattern list: name, count
                                 "\n0\n"          // chord list: name, count
                                 "4\n0\n"         // base octave, current pattern
                                 "65000\n65000\n" // no selection
                                 "126\n4\n"       // tempo
                                 "1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n"; // flags
    EXPECT_EQ(PartFile::serialize(p), expected);
    EXPECT_EQ(PartFile::parse(expected), p);
}

TEST(PartFile, APatternBlockIsAlways1547LinesWithValueBeforeKind)
{
    Pattern pattern("Arp");
    pattern.setTrackOctave(1, 9);
    pattern.setCell(1, 2, PatternCell{CellKind::ChanceChordNote, 3, 2});
    pattern.setCell(7, 63, PatternCell{static_cast<CellKind>(200), 255, 255});

    for (const Pattern& p : {Pattern(), Pattern(""), pattern}) {
        std::string bytes;
        textformat::writePattern(bytes, p);
        EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\n'), 1547);
        EXPECT_EQ(textformat::kPatternBlockLines, 1547);
    }
    std::string bytes;
    textformat::writePattern(bytes, pattern);
    const std::vector<std::string> lines = linesOf(bytes);
    // Line numbers from 1 as a text editor shows them.
    const std::vector<std::pair<int, std::string>> expected = {
        {1, "Arp"}, {2, "64"},  {3, "8"},   {4, "0"},      {5, "0"},      {6, "0"},     {197, "9"},
        {204, "3"}, {205, "4"}, {206, "2"}, {1545, "255"}, {1546, "200"}, {1547, "255"}};
    for (const auto& [line, text] : expected)
        EXPECT_EQ(lines[static_cast<std::size_t>(line - 1)], text) << "line " << line;

    music::TextLineReader in(bytes);
    EXPECT_EQ(textformat::readPattern(in), pattern) << "unknown kinds survive as their byte";
}

TEST(PartFile, DeclaredRowAndTrackCountsAreIgnored)
{
    std::string bytes;
    Pattern pattern("p");
    pattern.setCell(7, 63, PatternCell{CellKind::Off, 0, 0});
    textformat::writePattern(bytes, pattern);
    std::vector<std::string> lines = linesOf(bytes);
    lines[1] = "32";
    lines[2] = "4";
    const std::string edited = join(lines);
    music::TextLineReader in(edited);
    const Pattern read = textformat::readPattern(in);
    EXPECT_EQ(read, pattern);
    std::string again;
    textformat::writePattern(again, read);
    EXPECT_EQ(again, bytes);
}

TEST(PartFile, RoundTripsByteForByte)
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

    const std::string bytes = PartFile::serialize(p);
    const Part read = PartFile::parse(bytes);
    EXPECT_EQ(PartFile::serialize(read), bytes);
    EXPECT_EQ(read.pitchClassFlags()[11], 4000000000u);
    EXPECT_EQ(read.name(), "  leading blanks stay");
    EXPECT_EQ(read.chord(0).notes[6], 0);
    EXPECT_EQ(read.chord(1).noteCount, 7);
    EXPECT_EQ(read.count(), p.count());
    EXPECT_EQ(read.patterns(), p.patterns());
}

TEST(PartFile, ReadsNumbersAsTheLineRulesSay)
{
    Part p;
    p.patterns().append(Pattern());
    std::vector<std::string> lines = linesOf(PartFile::serialize(p));
    // After the pattern list (2 + 1547 lines): chord list name, count, chords, then the fields.
    std::vector<std::string> tail = {"Chords   ", "2",  "Am  ", "3",  "-1", "300", "9",    "12",
                                     "16",        " G", "9",    "0",  "16", "7",   "11",   "14",
                                     "19",        "23", "26",   "31", "35", "38",  "4abc", "70000",
                                     "  12",      "-3", "+120", "4",  "1",  "0",   "-1"};
    lines.resize(2 + 1547);
    lines.insert(lines.end(), tail.begin(), tail.end());

    for (const char* ending : {"\n", "\r\n"}) {
        const Part read = PartFile::parse(join(lines, ending));
        ASSERT_EQ(read.count(), 2) << "line end " << (ending[0] == '\r' ? "CRLF" : "LF");
        EXPECT_EQ(read.name(), "Chords");
        EXPECT_EQ(read.chord(0).name, "Am");
        EXPECT_EQ(read.chord(0).pattern, 65535);
        EXPECT_EQ(read.chord(0).length, 300 - 256);
        EXPECT_EQ(read.chord(1).name, " G");
        EXPECT_EQ(read.chord(1).noteCount, 7) << "a chord keeps seven of nine notes";
        EXPECT_EQ(read.chord(1).notes[6], 31);
        EXPECT_EQ(read.baseOctave(), 4);
        EXPECT_EQ(read.currentPattern(), 70000 - 65536);
        EXPECT_EQ(read.selectionFirst(), 12);
        EXPECT_EQ(read.selectionLast(), 65533);
        EXPECT_EQ(read.beatsPerMinute(), 120);
        EXPECT_EQ(read.ticksPerBeat(), 4);
        EXPECT_EQ(read.pitchClassFlags()[0], 1u);
        EXPECT_EQ(read.pitchClassFlags()[1], 0u);
        EXPECT_EQ(read.pitchClassFlags()[2], 4294967295u);
        EXPECT_EQ(read.pitchClassFlags()[3], 0u) << "missing lines read as 0";
    }
}

TEST(PartFile, ShortAndForeignFilesReadWithoutHarm)
{
    const std::string good = defaults::defaultPartBytes();
    for (std::size_t size = 0; size < good.size(); size += 97) {
        const Part read = PartFile::parse(std::string_view(good).substr(0, size));
        EXPECT_LE(read.patterns().count(), 3);
        EXPECT_LE(read.count(), 7);
    }

    std::string noise(20000, '\0');
    std::uint32_t state = 7;
    for (char& c : noise) {
        state = state * 1103515245u + 12345u;
        c = static_cast<char>(state >> 24);
    }
    const Part fromNoise = PartFile::parse(noise);
    EXPECT_LE(fromNoise.patterns().count(), 20000 / 1547 + 1);

    struct Case
    {
        const char* what;
        std::string bytes;
        int maxPatterns;
        int maxChords;
    } cases[] = {
        {"empty file", "", 0, 0},
        {"huge pattern count, nothing after", "x\n65535\n", 0, 0},
        {"huge pattern count, one byte after", "x\n65535\n1", 1, 0},
        {"huge chord count", "\n0\n\n65535\n" + std::string(400, '\n'), 0, 101},
        {"huge note count", "\n0\n\n1\nC\n255\n0\n16\n", 0, 1},
    };
    for (const Case& c : cases) {
        const Part read = PartFile::parse(c.bytes);
        EXPECT_LE(read.patterns().count(), c.maxPatterns) << c.what;
        EXPECT_LE(read.count(), c.maxChords) << c.what;
        for (const PartChord& chord : read.chords())
            EXPECT_LE(chord.noteCount, PartChord::kMaxNotes) << c.what;
    }
    const Part empty = PartFile::parse("");
    EXPECT_EQ(empty.baseOctave(), 0) << "a file without fields gives zeros";
    EXPECT_EQ(empty.selectionFirst(), 0);
    EXPECT_EQ(empty.pitchClassFlags(), PitchClassFlags{});
}

TEST(PartFile, LoadAndSaveReportTheirMessages)
{
    TempFolder folder;
    const Part original = defaults::defaultPart();
    Part p = original;

    EXPECT_EQ(PartFile::load(folder.path() / "missing.prt", p).message(), "unable to open file");
    EXPECT_EQ(PartFile::load(folder.path(), p).message(), "unable to open file");
    EXPECT_FALSE(PartFile::loadDefault(folder.path() / "default.prt", p));
    EXPECT_EQ(p, original) << "a failed load changes nothing";

    const auto target = folder.path() / "a.prt";
    ASSERT_TRUE(PartFile::save(target, original).ok());
    Part loaded;
    ASSERT_TRUE(PartFile::load(target, loaded).ok());
    EXPECT_EQ(loaded, original);
    EXPECT_TRUE(PartFile::loadDefault(target, loaded));
}

TEST(PartFile, AFailedSaveLeavesTheOldFileAsItWas)
{
    TempFolder folder;
    const auto blocker = folder.path() / "plain";
    ASSERT_TRUE(music::writeFileSafely(blocker, "not a folder\n"));
    EXPECT_EQ(PartFile::save(blocker / "x.prt", Part()).message(), "unable to open file");
    EXPECT_EQ(music::readFileBytes(blocker), "not a folder\n");

#ifndef _WIN32
    const auto target = folder.path() / "old.prt";
    const std::string old = PartFile::serialize(Part::makeNew());
    ASSERT_TRUE(music::writeFileSafely(target, old));
    Part big = defaults::defaultPart(); // three patterns: far more than the 4 KiB allowed below
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        const music::Result result = PartFile::save(target, big);
        _exit(!result.ok() && result.message() == "unable to open file" ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the save must fail with the format's message";
    EXPECT_EQ(music::readFileBytes(target), old);
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"old.prt", "plain"})) << "no temporary left";
#endif
}

TEST(PartFile, SongFilesReadAsForeignFilesWithoutHarm)
{
    const char* fromEnv = std::getenv("TM_SONG_CORPUS");
    const std::filesystem::path corpus = fromEnv ? fromEnv : TM_SONG_CORPUS_DEFAULT;
    std::error_code error;
    if (!std::filesystem::is_directory(corpus, error))
        GTEST_SKIP() << "no song corpus at " << corpus << " (set TM_SONG_CORPUS)";
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(corpus)) {
        const std::optional<std::string> bytes = music::readFileBytes(entry.path());
        if (!bytes)
            continue;
        ++files;
        const Part read = PartFile::parse(*bytes);
        EXPECT_LE(read.patterns().count(), static_cast<int>(bytes->size() / 1547 + 1))
            << entry.path();
        for (const PartChord& chord : read.chords())
            EXPECT_LE(chord.noteCount, PartChord::kMaxNotes) << entry.path();
    }
    EXPECT_GT(files, 0);
}
