// Transposing and mirroring the notes of a machine's patterns, and counting notes and waves, on
// the reference song's generator "Lead" (track parameter 2 is its note) with a second pattern
// "Edge" at the ends of the tracker's range. Note bytes: octave * 16 + pitch class + 1.

#include "song_reference.h"
#include "song_test_support.h"

#include "song/MachineEdits.h"
#include "song/NoteTransforms.h"
#include "song/PatternUsage.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace songtest;
using song::BuzzSong;

constexpr int kNote = 2;
constexpr int kOff = 255;

int note(int pitchClass, int octave)
{
    return octave * 16 + pitchClass + 1;
}

/** Intro: C-4 (track 0, row 0), E-4 (track 1, row 1). Edge: B-9, C-0 | off, 0x0E (no note). */
BuzzSong songWithEdges()
{
    BuzzSong song = readReference();
    const auto edge = song.createPattern(1, "Edge", 2);
    EXPECT_TRUE(edge);
    song.setCellValue(1, *edge, 0, 0, kNote, note(11, 9));
    song.setCellValue(1, *edge, 1, 0, kNote, note(0, 0));
    song.setCellValue(1, *edge, 0, 1, kNote, kOff);
    song.setCellValue(1, *edge, 1, 1, kNote, 0x0E);
    return song;
}

/** The note cells in the order Intro t0r0, Intro t1r1, Edge t0r0, t0r1, t1r0, t1r1. */
std::vector<int> notes(const BuzzSong& song)
{
    std::vector<int> values;
    for (const auto& [pattern, track, row] : std::initializer_list<std::tuple<int, int, int>>{
             {0, 0, 0}, {0, 1, 1}, {1, 0, 0}, {1, 0, 1}, {1, 1, 0}, {1, 1, 1}})
        values.push_back(song.cellValue(1, static_cast<std::size_t>(pattern),
                                        static_cast<std::size_t>(row),
                                        static_cast<std::size_t>(track), kNote)
                             .value_or(-1));
    return values;
}

TEST(NoteTransforms, MoveNotesKeepOffsAndReportWhatWouldLeaveTheRange)
{
    using Transform = std::function<song::NoteTransformReport(BuzzSong&)>;
    const auto by = [](int semitones) -> Transform {
        return [semitones](BuzzSong& s) { return song::transposeNotes(s, {1}, semitones); };
    };
    const auto around = [](music::NoteValue centre) -> Transform {
        return [centre](BuzzSong& s) { return song::invertNotes(s, {1}, centre); };
    };
    const std::string b9 = "\"Lead\" pattern \"Edge\" row 0 track 0: B-9";
    const std::string c0 = "\"Lead\" pattern \"Edge\" row 1 track 0: C-0";
    const struct
    {
        const char* what;
        Transform transform;
        std::vector<int> after;
        std::size_t changed;
        std::vector<std::string> outOfRange;
    } cases[] = {
        {"up 2", by(2), {note(2, 4), note(6, 4), note(11, 9), note(2, 0), kOff, 0x0E}, 3, {b9}},
        {"down 1", by(-1), {note(11, 3), note(3, 4), note(10, 9), note(0, 0), kOff, 0x0E}, 3, {c0}},
        {"up an octave",
         by(12),
         {note(0, 5), note(4, 5), note(11, 9), note(0, 1), kOff, 0x0E},
         3,
         {b9}},
        {"nothing", by(0), {note(0, 4), note(4, 4), note(11, 9), note(0, 0), kOff, 0x0E}, 0, {}},
        // Around C-4 (48): E-4 (52) to G#3 (44), C-0 (0) to C-8 (96), B-9 (119) to -23.
        {"around C4",
         around(48),
         {note(0, 4), note(8, 3), note(11, 9), note(0, 8), kOff, 0x0E},
         2,
         {b9}},
        // Around F#6 (78): C-4 (48) to C-9 (108), C-0 to 156: out.
        {"around F#6",
         around(78),
         {note(0, 9), note(8, 8), note(1, 3), note(0, 0), kOff, 0x0E},
         3,
         {c0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        BuzzSong song = songWithEdges();
        const song::NoteTransformReport report = c.transform(song);
        EXPECT_EQ(notes(song), c.after);
        EXPECT_EQ(report.changed, c.changed);
        EXPECT_EQ(report.describe(song), c.outOfRange);
        expectRoundTrip(song);
    }
    // Machines without note parameters, and indices out of range, are left alone.
    BuzzSong song = songWithEdges();
    EXPECT_EQ(song::transposeNotes(song, {0, 7}, 5).changed, 0u);
    expectSameModel(song, songWithEdges());
}

TEST(PatternUsage, CountsNotesOffsAndWavesPerPattern)
{
    BuzzSong song = songWithEdges();
    std::size_t sampler = 0;
    ASSERT_TRUE(song::addMachine(
                    song,
                    entry("TestSampler", 1, {{"Note", 0, true}, {"Wave", 2, true, 0, 1}}, 1, 4), 2,
                    nullptr, std::nullopt, sampler)
                    .ok());
    ASSERT_TRUE(song.createPattern(sampler, "P", 4));
    const int cells[][3] = {
        {0, note(0, 4), 3}, {1, note(0, 4), 3}, {2, kOff, 0}, {3, note(4, 4), 5}};
    for (const auto& [row, n, wave] : cells) {
        song.setCellValue(sampler, 0, static_cast<std::size_t>(row), 0, 0, n);
        song.setCellValue(sampler, 0, static_cast<std::size_t>(row), 0, 1, wave);
    }

    const std::vector<song::PatternUsage> lead = song::patternUsage(song, 1);
    ASSERT_EQ(lead.size(), 2u);
    EXPECT_EQ(lead[0], (song::PatternUsage{"Intro", {{note(0, 4), 1}, {note(4, 4), 1}}, 0, {}}));
    EXPECT_EQ(lead[1],
              (song::PatternUsage{"Edge", {{note(11, 9), 1}, {note(0, 0), 1}, {0x0E, 1}}, 1, {}}));
    EXPECT_EQ(song::patternUsage(song, sampler),
              (std::vector<song::PatternUsage>{
                  {"P", {{note(0, 4), 2}, {note(4, 4), 1}}, 1, {{3, 2}, {5, 1}}}}));
    EXPECT_TRUE(song::patternUsage(song, 9).empty());
    EXPECT_EQ(song::trackerNoteName(static_cast<std::uint8_t>(note(1, 5))), "C#5");
}

} // namespace
