#include "music/ScaleList.h"

#include <gtest/gtest.h>

using music::ScaleList;

TEST(ScaleList, TakesTheLeadingRunOfTwelveOrMoreLetters)
{
    struct Case
    {
        const char* input;
        bool ok;
        const char* stored;
        int notes;
    };
    const Case cases[] = {
        {"xoxxoxoxxoxo", true, "xoxxoxoxxoxo", 7},
        {"XOXXOXOXXOXO", true, "xoxxoxoxxoxo", 7},
        {"xoxxoxoxxoxoxx", true, "xoxxoxoxxoxoxx", 7}, // kept whole, twelve count
        {"xoxxoxoxxoxo and more", true, "xoxxoxoxxoxo", 7},
        {"xoxxoxoxxox", false, "", 0},
        {"xoxxo xoxxoxo", false, "", 0},
        {"", false, "", 0},
        {"oooooooooooo", true, "oooooooooooo", 0},
    };
    for (const Case& c : cases) {
        ScaleList list;
        const music::Result result = list.addFromInput("s", c.input);
        EXPECT_EQ(result.ok(), c.ok) << c.input;
        if (!c.ok) {
            EXPECT_EQ(result.message(), "Error in String");
            EXPECT_TRUE(list.isEmpty());
            continue;
        }
        ASSERT_EQ(list.count(), 1);
        EXPECT_EQ(list.at(0).pattern(), c.stored);
        EXPECT_EQ(list.at(0).noteCount(), c.notes);
    }
}

TEST(ScaleType, CountsUpperCaseXAndOnlyTheFirstTwelveLetters)
{
    EXPECT_EQ(music::ScaleType("s", "XoXoxxoxoxoxxxxx").noteCount(), 7);
    EXPECT_EQ(music::ScaleType("s", "xox").noteCount(), 2);
}

TEST(ScaleType, ListsItsPitchClassesFromTheRootWrappingPastB)
{
    const music::ScaleType major("major", "xoxoxxoxoxox");
    EXPECT_EQ(major.pitchClassesFrom(9),
              (std::vector<music::PitchClass>{9, 11, 1, 2, 4, 6, 8})); // A major
}

TEST(ScaleListFile, RoundTripsAndFollowsTheLineRules)
{
    ScaleList list;
    list.add("major", "xoxoxxoxoxox");
    list.add("wide", "xxxxxxxxxxxxxx");
    const std::string bytes = list.toBytes();
    EXPECT_EQ(bytes, "Tonalmancer_Scales\n2\nmajor\nxoxoxxoxoxox\nwide\nxxxxxxxxxxxxxx\n");
    ScaleList back;
    ASSERT_TRUE(back.read(bytes).ok());
    EXPECT_EQ(back.scales(), list.scales());

    ASSERT_TRUE(back.read("tonalmancer_scales\r\n0\r\n").ok());
    EXPECT_TRUE(back.isEmpty());
    ASSERT_TRUE(back.read("TONALMANCER_SCALES\r\n257\r\nmajor \r\nxoxoxxoxoxox\r\n").ok());
    ASSERT_EQ(back.count(), 1);
    EXPECT_EQ(back.at(0).name(), "major");
    EXPECT_EQ(back.at(0).pattern(), "xoxoxxoxoxox");
}

TEST(ScaleListFile, UsesItsOwnMessagesWithoutFullStops)
{
    ScaleList list;
    EXPECT_EQ(list.read("Tonalmancer_Chords\n0\n").message(), "Seems to be no valid file");
    EXPECT_EQ(list.load("/nonexistent/x.scl").message(), "Error opening file");
    EXPECT_EQ(list.save("/nonexistent/dir/x.scl").message(), "Error opening file");
}

TEST(ScaleList, StopsAtTheLimitOfItsOneByteCount)
{
    ScaleList list;
    for (int i = 0; i < 255; ++i)
        ASSERT_TRUE(list.add("s", "xoxoxxoxoxox"));
    EXPECT_FALSE(list.add("one too many", "xoxoxxoxoxox"));
    EXPECT_FALSE(list.addFromInput("one too many", "xoxoxxoxoxox").ok());
    ScaleList back;
    ASSERT_TRUE(back.read(list.toBytes()).ok());
    EXPECT_EQ(back.scales().size(), 255u);
}
