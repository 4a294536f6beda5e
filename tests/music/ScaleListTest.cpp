#include "music/ScaleList.h"

#include <gtest/gtest.h>

using music::ScaleList;

TEST(ScaleList, TakesTheLeadingRunOfTwelveOrMoreLetters)
{
    // Expected: the count of scales stored, then the pattern and its note count, or the message.
    const std::pair<const char*, const char*> cases[] = {
        {"xoxxoxoxxoxo", "1 xoxxoxoxxoxo 7"},          {"XOXXOXOXXOXO", "1 xoxxoxoxxoxo 7"},
        {"xoxxoxoxxoxoxx", "1 xoxxoxoxxoxoxx 7"}, // kept whole, twelve count
        {"xoxxoxoxxoxo and more", "1 xoxxoxoxxoxo 7"}, {"xoxxoxoxxox", "0 Error in String"},
        {"xoxxo xoxxoxo", "0 Error in String"},        {"", "0 Error in String"},
        {"oooooooooooo", "1 oooooooooooo 0"},
    };
    for (const auto& [input, expected] : cases) {
        ScaleList list;
        const music::Result result = list.addFromInput("s", input);
        const std::string stored =
            list.isEmpty() ? ""
                           : list.at(0).pattern() + " " + std::to_string(list.at(0).noteCount());
        EXPECT_EQ(std::to_string(list.count()) + " " + (result.ok() ? stored : result.message()),
                  expected)
            << input;
    }
}

TEST(ScaleType, CountsTheFirstTwelveLettersAndListsPitchClassesFromTheRootWrappingPastB)
{
    EXPECT_EQ(music::ScaleType("s", "XoXoxxoxoxoxxxxx").noteCount(), 7);
    EXPECT_EQ(music::ScaleType("s", "xox").noteCount(), 2);
    EXPECT_EQ(music::ScaleType("major", "xoxoxxoxoxox").pitchClassesFrom(9),
              (std::vector<music::PitchClass>{9, 11, 1, 2, 4, 6, 8})); // A major
}

TEST(ScaleListFile, RoundTripsFollowsTheLineRulesAndReportsWithItsOwnMessages)
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
    EXPECT_EQ(back.toBytes(), "Tonalmancer_Scales\n1\nmajor\nxoxoxxoxoxox\n");

    // The scale list's messages have no full stops.
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
