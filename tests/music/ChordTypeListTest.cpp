#include "music/ChordTypeList.h"

#include <gtest/gtest.h>

#include <string>

using music::ChordTypeList;

TEST(ChordTypeList, AddingFiltersTheConstructionTextAndDefiningRefusesInvalidOnes)
{
    ChordTypeList list;
    list.add("m", "1; b3; 5;");
    list.add("bad", "1,b3,5;");
    list.add("upper", "1;B3;5;");
    EXPECT_EQ(list.at(0).construction(), "1;b3;5;");
    EXPECT_EQ(list.at(1).construction(), "1b35;");
    EXPECT_TRUE(list.at(1).intervals().isError());
    EXPECT_EQ(list.at(2).construction(), "1;3;5;"); // the upper-case letter is dropped

    // Defining a type (rather than reading one) refuses what the user typed unless it parses as
    // it stands: a character the filter would drop must not change the chord.
    EXPECT_TRUE(list.addChecked("m7", " 1; b3; 5; b7;").ok());
    EXPECT_EQ(list.at(3).construction(), "1;b3;5;b7;");
    for (const char* text : {"1,b3,5;", "", "135", "1;#9;", "1;B3;5;", "1;b3;5;x", "1;\t3;"}) {
        const music::Result result = list.addChecked("x", text);
        EXPECT_FALSE(result.ok()) << text;
        EXPECT_EQ(result.message(), "No valid construction string");
    }
    EXPECT_EQ(list.count(), 4);
}

TEST(ChordTypeListFile, ReadsWhatItWritesByteForByte)
{
    ChordTypeList list;
    list.add("maj", "1;3;5;");
    list.add("", "1;5;");
    list.add("  lead", "1;#9th;");
    const std::string bytes = list.toBytes();
    EXPECT_EQ(bytes, "Tonalmancer_ConstructChords\n3\nmaj\n1;3;5;\n\n1;5;\n  lead\n1;#9th;\n");

    ChordTypeList back;
    ASSERT_TRUE(back.read(bytes).ok());
    EXPECT_EQ(back.types(), list.types());
    EXPECT_EQ(back.toBytes(), bytes);
}

TEST(ChordTypeListFile, FollowsTheLineRulesAndReportsMissingFiles)
{
    // Expected: the count of types read, then the first name or the message.
    const std::pair<std::string, const char*> cases[] = {
        {"TONALMANCER_CONSTRUCTCHORDS\n1\nm\n1;b3;5;\n", "1 m"},
        {"Tonalmancer_ConstructChords\r\n1\r\nm  \r\n1;b3;5;\r\n", "1 m"},
        {"Tonalmancer_ConstructChords\n1\nm\n1;b3;5;", "1 m"}, // no final line feed
        {std::string("Tonalmancer_ConstructChords\n1\nm\0x\n1;\n", 37), "1 m x"},
        {"Tonalmancer_ConstructChords\n0\n", "0 "},
        {"Tonalmancer_ConstructChords\n-255\nm\n1;\n", "1 m"}, // -255 & 0xFF == 1
        {"Tonalmancer_Scales\n1\nm\n1;\n", "0 Seems to be no valid file."},
        {"", "0 Seems to be no valid file."},
    };
    for (const auto& [bytes, expected] : cases) {
        ChordTypeList list;
        list.add("old", "1;");
        const music::Result result = list.read(bytes);
        const std::string first = list.count() > 0 ? list.at(0).name() : "";
        EXPECT_EQ(std::to_string(list.count()) + " " + (result.ok() ? first : result.message()),
                  expected)
            << bytes;
    }
    ChordTypeList list;
    EXPECT_EQ(list.load("/nonexistent/folder/x.ccl").message(), "Error opening file.");
    EXPECT_EQ(list.save("/nonexistent/folder/x.ccl").message(), "Error opening file.");
}

TEST(ChordTypeListFile, KeepsOnlyTheLowEightBitsOfTheCount)
{
    ChordTypeList list;
    for (int i = 0; i < 300; ++i)
        list.add("t" + std::to_string(i), "1;3;");
    const std::string bytes = list.toBytes();
    EXPECT_NE(bytes.find("\n300\n"), std::string::npos); // written in full
    ChordTypeList back;
    ASSERT_TRUE(back.read(bytes).ok());
    ASSERT_EQ(back.count(), 44);
    EXPECT_EQ(back.at(43).name(), "t43");
}

TEST(ChordTypeList, SortingKeepsTiesInOrderAndPutsUnreadableTypesAsNoNotes)
{
    ChordTypeList list;
    list.add("maj", "1;3;5;");
    list.add("bad", "1b35;");    // does not parse: no notes
    list.add("Maj-b", "1;5;3;"); // the same notes written in another order
    list.add("m", "1;b3;5;");
    const auto names = [&list] {
        std::string text;
        for (const auto& type : list.types())
            text += type.name() + " ";
        return text;
    };
    struct Case
    {
        bool byNotes;
        bool upwards;
        const char* expected;
    };
    for (const Case c :
         {Case{true, true, "bad m maj Maj-b "}, Case{true, false, "maj Maj-b m bad "},
          Case{false, true, "bad m maj Maj-b "}, Case{false, false, "Maj-b maj m bad "}}) {
        if (c.byNotes)
            list.sortByNotes(c.upwards);
        else
            list.sortByName(c.upwards);
        EXPECT_EQ(names(), c.expected) << c.byNotes << c.upwards;
    }
    EXPECT_EQ(list.types().back().construction(), "1b35;"); // each name keeps its construction
}
