#include "music/Note.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

TEST(NoteValue, SplitsIntoOctaveAndPitchClassAndTreats120AndAboveAsEmpty)
{
    EXPECT_EQ(std::string(music::noteName(music::pitchClassOf(119))), "B");
    EXPECT_EQ(music::octaveOf(119), 9);
    EXPECT_EQ(music::noteValue(5, 0), 60);
    EXPECT_TRUE(music::isEmptyNote(120) && music::isEmptyNote(255) && !music::isEmptyNote(119));
}

TEST(NoteName, ParsesSharpsOnly)
{
    const std::pair<const char*, int> cases[] = {{"C#", 1}, {"a#", 10}, {"B", 11},  {"Db", -1},
                                                 {"H", -1}, {"", -1},   {"C##", -1}};
    for (const auto& [name, pitchClass] : cases) {
        const auto parsed = music::parseNoteName(name);
        EXPECT_EQ(parsed ? int(*parsed) : -1, pitchClass) << name;
    }
}

TEST(NoteNameWithOctave, ReadsBackEveryNameItWritesAndRejectsTheRest)
{
    for (int value = 0; value < music::kEmptyNote; ++value)
        EXPECT_EQ(music::parseNoteNameWithOctave(music::noteNameWithOctave(value)), value);
    const std::pair<const char*, int> cases[] = {{"E2", 28},  {"g5", 67}, {"C#0", 1},  {"B9", 119},
                                                 {"C10", -1}, {"E", -1},  {"2", -1},   {"E-1", -1},
                                                 {"Eb2", -1}, {"", -1},   {"E2 ", -1}, {"H3", -1}};
    for (const auto& [text, value] : cases) {
        const auto parsed = music::parseNoteNameWithOctave(text);
        EXPECT_EQ(parsed ? int(*parsed) : -1, value) << text;
    }
}
