#include "music/Note.h"

#include <gtest/gtest.h>

TEST(NoteValue, SplitsIntoOctaveAndPitchClass)
{
    EXPECT_EQ(music::pitchClassOf(60), 0);
    EXPECT_EQ(music::octaveOf(60), 5);
    EXPECT_EQ(music::noteName(music::pitchClassOf(119)), "B");
    EXPECT_EQ(music::octaveOf(119), 9);
    EXPECT_TRUE(music::isEmptyNote(120));
    EXPECT_TRUE(music::isEmptyNote(255));
    EXPECT_FALSE(music::isEmptyNote(119));
    EXPECT_EQ(music::noteValue(5, 0), 60);
}

TEST(NoteName, ParsesSharpsOnly)
{
    EXPECT_EQ(music::parseNoteName("C#"), 1);
    EXPECT_EQ(music::parseNoteName("a#"), 10);
    EXPECT_EQ(music::parseNoteName("B"), 11);
    EXPECT_FALSE(music::parseNoteName("Db").has_value());
    EXPECT_FALSE(music::parseNoteName("H").has_value());
    EXPECT_FALSE(music::parseNoteName("").has_value());
    EXPECT_FALSE(music::parseNoteName("C##").has_value());
}
