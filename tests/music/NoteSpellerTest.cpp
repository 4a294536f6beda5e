#include "music/NoteSpeller.h"
#include "music/ScaleList.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

using namespace music;

namespace {

/** How the speller writes the twelve pitch classes from C, separated by blanks. */
std::string allTwelve(const NoteSpeller& speller)
{
    std::string out;
    for (int pc = 0; pc < 12; ++pc)
        out += (pc == 0 ? "" : " ") + speller.spell(pc).text();
    return out;
}

const ScaleList& shippedScales()
{
    static const ScaleList scales = [] {
        ScaleList s;
        EXPECT_TRUE(s.load(std::filesystem::path(TM_SOURCE_DIR) / "data" / "default.scl").ok());
        return s;
    }();
    return scales;
}

} // namespace

TEST(SpelledNote, ParsesAndWritesNoteNames)
{
    // Text, then its name written back and its pitch class; "" for text that is no note.
    const std::vector<std::tuple<const char*, const char*, int>> cases = {
        {"C", "C", 0},   {"eb", "Eb", 3},   {"F#", "F#", 6},   {"bb", "Bb", 10}, {"Cb", "Cb", 11},
        {"B#", "B#", 0}, {"Bbb", "Bbb", 9}, {"f##", "F##", 7}, {"", "", 0},      {"H", "", 0},
        {"C#b", "", 0},  {"Cbbb", "", 0},   {"#", "", 0},      {"C# ", "", 0},
    };
    for (const auto& [text, written, pc] : cases) {
        const auto note = SpelledNote::parse(text);
        if (*written == '\0') {
            EXPECT_FALSE(note.has_value()) << text;
            continue;
        }
        ASSERT_TRUE(note.has_value()) << text;
        EXPECT_EQ(note->text(), written);
        EXPECT_EQ(note->pitchClass(), pc) << text;
    }
}

TEST(SpelledNote, SpellsDegreesAboveARootOnTheirOwnLetters)
{
    const SpelledNote c{0, 0};
    const SpelledNote e{2, 0};
    const SpelledNote ab{5, -1};
    EXPECT_EQ(SpelledNote::above(c, 9, 7)->text(), "Bbb"); // the seventh of Cdim7
    EXPECT_EQ(SpelledNote::above(e, 8, 5)->text(), "B#");  // the fifth of Eaug
    EXPECT_EQ(SpelledNote::above(ab, 4, 3)->text(), "C");
    EXPECT_EQ(SpelledNote::above(ab, 15, 9)->text(), "B"); // #9 of Ab
    EXPECT_EQ(SpelledNote::above(c, 21, 13)->text(), "A");
    EXPECT_EQ(SpelledNote::above(c, 6, 3)->text(), "E##");
    EXPECT_FALSE(SpelledNote::above(c, 7, 3).has_value()); // G is too far from any E
}

TEST(NoteSpeller, WritesEachPitchClassForTheKey)
{
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"", "C Db D Eb E F F# G Ab A Bb B"},
        {"C", "C Db D Eb E F F# G Ab A Bb B"},
        {"Eb", "C Db D Eb E F Gb G Ab A Bb B"},
        {"E", "C C# D D# E F F# G G# A A# B"},
        {"F#", "C C# D D# E E# F# G G# A A# B"},
        {"Gb", "C Db D Eb E F Gb G Ab A Bb Cb"},
        {"Db major", "C Db D Eb E F Gb G Ab A Bb B"},
        {"a minor", "C Db D Eb E F F# G G# A Bb B"},
        {"Cm", "C Db D Eb E F Gb G Ab A Bb B"},
        {"Bbm", "C Db D Eb E F Gb G Ab A Bb B"},
        {"C# minor", "B# C# D D# E F F# G G# A A# B"},
        {"D dorian", "C Db D Eb E F F# G Ab A Bb B"},
        {"Eb mixolydian", "C Db D Eb E F Gb G Ab A Bb B"},
        {"E minor pentatonic", "C C# D D# E F F# G G# A A# B"},
    };
    for (const auto& [key, expected] : cases) {
        NoteSpeller speller;
        if (*key != '\0') {
            ASSERT_TRUE(NoteSpeller::parseKey(key, &shippedScales(), speller).ok()) << key;
        }
        EXPECT_EQ(allTwelve(speller), expected) << key;
    }
}

TEST(NoteSpeller, ScalesTakeTheTonicWithFewerAccidentals)
{
    const ScaleType& major = *shippedScales().find("major");
    const ScaleType& minor = *shippedScales().find("natural minor");
    EXPECT_EQ(NoteSpeller::forScale(major, 1).keyName(), "Db major");
    EXPECT_EQ(NoteSpeller::forScale(minor, 1).keyName(), "C# natural minor");
    EXPECT_EQ(NoteSpeller::forScale(major, 6).keyName(), "F# major"); // a tie: the usual name
    EXPECT_EQ(NoteSpeller::forScale(minor, 8).keyName(), "G# natural minor");
    EXPECT_EQ(NoteSpeller::forScale(major, 8).spell(1).text(), "Db");
    EXPECT_EQ(NoteSpeller::forScale(major, 8).keyNotes(), (PitchClassSet{8, 10, 0, 1, 3, 5, 7}));
    // Not seven notes: the key of the tonic spells, the scale's notes stay its own.
    const NoteSpeller blues = NoteSpeller::forScale(*shippedScales().find("blues"), 4);
    EXPECT_EQ(blues.spell(7).text(), "G");
    EXPECT_EQ(blues.keyNotes().count(), 6);
}

TEST(NoteSpeller, RefusesTextThatIsNoKey)
{
    for (const char* text : {"", "  ", "H", "C#x", "Q minor", "C lydianish", "Cmajor7", "#"}) {
        NoteSpeller speller;
        const Result r = NoteSpeller::parseKey(text, &shippedScales(), speller);
        EXPECT_FALSE(r.ok()) << text;
        EXPECT_NE(r.message().find(std::string("\"") + text + "\""), std::string::npos)
            << r.message();
        EXPECT_TRUE(speller.keyName().empty());
    }
    NoteSpeller speller;
    EXPECT_FALSE(NoteSpeller::parseKey("D dorian", nullptr, speller).ok());
}
