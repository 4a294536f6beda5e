#include "part/ChordTransforms.h"
#include "part/ChordName.h"
#include "part/ChordOrder.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

using namespace part;

namespace {

PartChord chordOf(std::string name, std::initializer_list<music::NoteValue> notes)
{
    PartChord c;
    c.name = std::move(name);
    c.setNotes(notes);
    return c;
}

Part partOf(std::initializer_list<PartChord> chords)
{
    Part p = Part::makeNew();
    for (const PartChord& c : chords)
        p.append(c);
    return p;
}

/** "0 4 7" */
std::string notesText(const PartChord& c)
{
    std::string out;
    for (int i = 0; i < c.noteCount; ++i)
        out += (i ? " " : "") + std::to_string(c.notes[static_cast<std::size_t>(i)]);
    return out;
}

/** "C:0 4 7 | G:7 11 14" */
std::string describe(const Part& p)
{
    std::string out;
    for (const PartChord& c : p.chords())
        out += (out.empty() ? "" : " | ") + c.name + ":" + notesText(c);
    return out;
}

/** A random part of chords with 1..7 notes within low..high and assorted names. */
Part randomPart(std::mt19937& rng, int low = 0, int high = 119)
{
    Part p = Part::makeNew();
    const int chords = static_cast<int>(rng() % 6) + 1;
    for (int i = 0; i < chords; ++i) {
        PartChord c;
        c.noteCount = static_cast<std::uint8_t>(rng() % 7 + 1);
        for (int n = 0; n < c.noteCount; ++n)
            c.notes[static_cast<std::size_t>(n)] = static_cast<music::NoteValue>(
                low + static_cast<int>(rng() % static_cast<unsigned>(high - low + 1)));
        const char* names[] = {"C", "F#m7", "A#maj9/G", "Intro", "G6/9", "", "(m3)"};
        c.name = names[rng() % 7];
        c.pattern = static_cast<std::uint16_t>(rng() % 3);
        c.length = static_cast<std::uint8_t>(rng() % 64);
        p.append(c);
    }
    return p;
}

} // namespace

TEST(ChordName, TransposingRespellsTheRootAndSlashBassOrMarksTheName)
{
    struct Case
    {
        const char* name;
        int shift;
        const char* expected;
    } const cases[] = {
        {"Am7", 2, "Bm7"},
        {"F#m", 2, "G#m"},
        {"B", 1, "C"},
        {"C", -1, "B"},
        {"Bbm", 2, "Cm"},       // a typed flat comes out with the program's sharps
        {"C/E", 1, "C#/F"},     // the slash bass follows
        {"C6/9", 2, "D6/9"},    // "/9" is no bass
        {"Cmaj7", 12, "Cmaj7"}, // whole octaves change no name
        {"Intro", 2, "Intro [+2]"},
        {"Intro [+2]", 3, "Intro [+5]"},
        {"Intro [+2]", -2, "Intro"},
        {"Intro", 7, "Intro [-5]"}, // counted the short way round
        {"(m3)", 1, "(m3) [+1]"},
        {"", 3, "[+3]"},
        {"[+3]", -3, ""},
        {"am", 2, "am [+2]"}, // a lower-case letter is no root
    };
    for (const Case& c : cases)
        EXPECT_EQ(ChordName::transposed(c.name, c.shift), c.expected) << c.name << " " << c.shift;
}

TEST(ChordTransforms, TransposeMovesNotesAndNamesOfTheSelectionOnly)
{
    const Part p = partOf(
        {chordOf("Am7", {9, 12, 16, 19}), chordOf("F#m", {6, 9, 13}), chordOf("Verse", {0, 4, 7})});
    const ChordEdit up = transposeChords(p, {1, 2, 7}, 2);
    ASSERT_TRUE(up) << up.result.message();
    EXPECT_EQ(describe(up.part), "Am7:9 12 16 19 | G#m:8 11 15 | Verse [+2]:2 6 9");
    EXPECT_EQ(up.markedNames, std::vector<int>{2});
}

TEST(ChordTransforms, NotesLeavingTheRangeRefuseTheWholeEdit)
{
    const Part p =
        partOf({chordOf("C", {0, 4, 7}), chordOf("B", {107, 111, 114}), chordOf("D", {2, 6, 9})});
    struct Case
    {
        int shift;
        std::vector<int> outOfRange;
    } const cases[] = {{6, {1}}, {-1, {0}}, {-3, {0, 2}}, {5, {}}, {-2, {0}}};
    for (const Case& c : cases) {
        const ChordEdit edit = transposeChords(p, allChords(p), c.shift);
        EXPECT_EQ(edit.outOfRange, c.outOfRange) << c.shift;
        EXPECT_EQ(bool(edit), c.outOfRange.empty()) << c.shift;
        if (!edit) {
            EXPECT_EQ(edit.part, p) << "a refused edit changes nothing";
            EXPECT_NE(edit.result.message().find("note range"), std::string::npos);
        }
    }
}

TEST(ChordTransforms, TransposingThereAndBackGivesThePartBack)
{
    std::mt19937 rng(20240611);
    for (int run = 0; run < 300; ++run) {
        const Part p = randomPart(rng, 24, 95);
        const int shift = static_cast<int>(rng() % 49) - 24;
        const ChordEdit there = transposeChords(p, allChords(p), shift);
        ASSERT_TRUE(there) << "24..95 moved by up to 24 stays in range";
        const ChordEdit back = transposeChords(there.part, allChords(p), -shift);
        ASSERT_TRUE(back) << "the way back always fits when the way there did";
        EXPECT_EQ(back.part, p) << describe(p) << " by " << shift;
    }
}

TEST(ChordTransforms, NormalizeGivesClosePositionFromTheBaseOctaveKeepingNoteOrder)
{
    struct Case
    {
        const char* what;
        PartChord chord;
        const char* expected;
    } const cases[] = {
        {"C-E-G in octave 6", chordOf("C", {72, 76, 79}), "0 4 7"},
        {"open voicing closes", chordOf("C", {24, 43, 64}), "0 7 4"},
        {"first inversion stays one", chordOf("C", {12, 4, 7}), "12 4 7"},
        {"lowest note not first", chordOf("C", {36, 28, 31}), "12 4 7"},
        {"doubled root keeps its octave", chordOf("C5(8)", {48, 55, 60}), "0 7 12"},
        {"a ninth comes into the octave", chordOf("Cmaj9", {0, 4, 7, 11, 14}), "0 4 7 11 2"},
        {"one note", chordOf("A", {93}), "9"},
        {"no notes", chordOf("x", {}), ""},
    };
    for (const Case& c : cases) {
        const Part p = normalizeChords(partOf({c.chord}), {0});
        EXPECT_EQ(notesText(p.chord(0)), c.expected) << c.what;
    }
}

TEST(ChordTransforms, InvertTakesTheLowestNoteUpAnOctave)
{
    struct Case
    {
        const char* what;
        PartChord chord;
        int times;
        const char* expected;
    } const cases[] = {
        {"first inversion", chordOf("C", {0, 4, 7}), 1, "12 4 7"},
        {"second inversion", chordOf("C", {0, 4, 7}), 2, "12 16 7"},
        {"second inversion again is root position an octave up", chordOf("C", {12, 16, 7}), 1,
         "12 16 19"},
        {"equal lowest notes: the first goes", chordOf("C", {0, 0, 7}), 1, "12 0 7"},
    };
    for (const Case& c : cases) {
        Part p = partOf({c.chord});
        for (int i = 0; i < c.times; ++i)
            p = invertChords(p, {0}).part;
        EXPECT_EQ(notesText(p.chord(0)), c.expected) << c.what;
    }
    const Part top = partOf({chordOf("B", {110, 114, 117})});
    EXPECT_FALSE(invertChords(top, {0})) << "110 + 12 leaves the range";
}

TEST(ChordTransforms, MirrorReflectsIntervalsAroundTheAxisInTheChordsOwnOctave)
{
    struct Case
    {
        const char* what;
        PartChord chord;
        MirrorAxis axis;
        const char* expected;
    } const cases[] = {
        {"around E: C# E G#", chordOf("C", {0, 4, 7}), {4, false}, "8 4 1"},
        {"around C: F minor", chordOf("C", {0, 4, 7}), {0, false}, "12 8 5"},
        {"between D# and E: C minor", chordOf("C", {0, 4, 7}), {3, true}, "7 3 0"},
        {"in octave 4 it stays there", chordOf("C", {48, 52, 55}), {4, false}, "56 52 49"},
        {"an axis far above changes nothing of the register",
         chordOf("C", {0, 4, 7}),
         {11, false},
         "10 6 3"},
    };
    for (const Case& c : cases) {
        const ChordEdit edit = mirrorChords(partOf({c.chord}), {0}, c.axis);
        ASSERT_TRUE(edit) << c.what;
        EXPECT_EQ(notesText(edit.part.chord(0)), c.expected) << c.what;
        EXPECT_EQ(edit.part.chord(0).name, c.chord.name) << "names are kept";
    }

    std::mt19937 rng(7);
    for (int run = 0; run < 200; ++run) {
        const Part p = randomPart(rng, 0, 80);
        const MirrorAxis axis{static_cast<music::PitchClass>(rng() % 12), rng() % 2 == 0};
        const ChordEdit once = mirrorChords(p, allChords(p), axis);
        ASSERT_TRUE(once) << "a mirror moves the highest note up by at most 11";
        const ChordEdit twice = mirrorChords(once.part, allChords(p), axis);
        ASSERT_TRUE(twice);
        EXPECT_EQ(twice.part, p) << "mirroring twice around one axis gives the chords back";
    }
}

TEST(ChordTransforms, LimitsMoveNotesByOctavesIntoTheRangeAndRefuseNarrowRanges)
{
    const Part p = partOf({chordOf("C", {0, 4, 7, 40, 119}), chordOf("G", {7, 11, 14})});
    const ChordEdit edit = limitChordNotes(p, {0}, 12, 35);
    ASSERT_TRUE(edit);
    EXPECT_EQ(describe(edit.part), "C:12 16 19 28 35 | G:7 11 14");

    EXPECT_TRUE(limitChordNotes(p, {0}, 12, 23)) << "exactly an octave";
    for (const auto& [low, high] : {std::pair{12, 22}, {30, 12}, {-1, 40}, {100, 120}})
        EXPECT_FALSE(limitChordNotes(p, {0}, low, high)) << low << ".." << high;

    std::mt19937 rng(99);
    for (int run = 0; run < 300; ++run) {
        const Part before = randomPart(rng);
        const int low = static_cast<int>(rng() % 100);
        const int high = low + 11 + static_cast<int>(rng() % static_cast<unsigned>(109 - low));
        const ChordEdit limited = limitChordNotes(before, allChords(before), low, high);
        ASSERT_TRUE(limited) << low << ".." << high;
        for (int c = 0; c < before.count(); ++c) {
            for (int n = 0; n < before.chord(c).noteCount; ++n) {
                const auto i = static_cast<std::size_t>(n);
                const int was = before.chord(c).notes[i];
                const int now = limited.part.chord(c).notes[i];
                EXPECT_EQ(now % 12, was % 12) << "a pitch class changed";
                EXPECT_TRUE(now >= low && now <= high) << now << " outside " << low << ".." << high;
                if (was >= low && was <= high) {
                    EXPECT_EQ(now, was) << "a note inside the range moved";
                }
            }
        }
    }
}

TEST(ChordOrder, SortsTheSelectionStablyByNameOrNotes)
{
    const Part p =
        partOf({chordOf("G", {7, 11, 14}), chordOf("am", {9, 12, 16}), chordOf("C", {0, 4, 7}),
                chordOf("Am", {9, 12, 16, 19}), chordOf("F", {5, 9, 12})});
    struct Case
    {
        const char* what;
        ChordSelection selection;
        ChordSortKey key;
        bool down;
        const char* expectedNames;
    } const cases[] = {
        {"names ignore case, equal ones keep order", allChords(p), ChordSortKey::Name, false,
         "am Am C F G"},
        {"names down, equal ones still in order", allChords(p), ChordSortKey::Name, true,
         "G F C am Am"},
        {"by notes from the bass up", allChords(p), ChordSortKey::Notes, false, "C F G am Am"},
        {"by notes down", allChords(p), ChordSortKey::Notes, true, "Am am G F C"},
        {"only the selection moves", {0, 2, 4}, ChordSortKey::Name, false, "C am F Am G"},
    };
    for (const Case& c : cases) {
        const Part sorted = sortChords(p, c.selection, c.key, c.down);
        std::string names;
        for (const PartChord& chord : sorted.chords())
            names += (names.empty() ? "" : " ") + chord.name;
        EXPECT_EQ(names, c.expectedNames) << c.what;
    }
}

TEST(ChordOrder, RemoveDoubleKeepsTheFirstOfNeighboursWithTheSameNotes)
{
    PartChord c1 = chordOf("C", {0, 4, 7});
    PartChord c2 = chordOf("C again", {0, 4, 7});
    c2.pattern = 3; // patterns and names are not compared
    const PartChord inverted = chordOf("C/E", {12, 4, 7});
    const PartChord g = chordOf("G", {7, 11, 14});
    Part p = partOf({c1, c2, c1, g, c1, inverted, inverted});
    p.setSelection(3, 6);

    const Part all = removeDoubleChords(p, allChords(p));
    EXPECT_EQ(describe(all), "C:0 4 7 | G:7 11 14 | C:0 4 7 | C/E:12 4 7");
    EXPECT_EQ(all.selectionFirst(), 1);
    EXPECT_EQ(all.selectionLast(), 3) << "the selection follows the chords that remain";

    const Part some = removeDoubleChords(p, {2, 3, 4, 5, 6});
    EXPECT_EQ(some.count(), 6) << "chord 1 is outside the selection and stays";
    EXPECT_EQ(removeDoubleChords(p, {0}), p);
}
