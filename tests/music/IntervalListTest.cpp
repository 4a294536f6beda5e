#include "music/IntervalList.h"
#include "music/IntervalTable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using music::IntervalList;
using music::IntervalTable;

TEST(IntervalTable, SymbolsParseBackToTheirRow)
{
    for (int semitones = 0; semitones < IntervalTable::kRowCount; ++semitones) {
        const std::string construction = "1;" + std::string(IntervalTable::symbol(semitones)) + ";";
        const IntervalList list = IntervalList::parse(construction);
        ASSERT_FALSE(list.isError()) << construction;
        EXPECT_EQ(list.semitones(), (std::vector<std::uint8_t>{0, std::uint8_t(semitones)}));
    }
    EXPECT_EQ(IntervalTable::symbol(22), "");
    EXPECT_EQ(IntervalTable::name(-1), "");
}

TEST(IntervalParser, FollowsTheFilterAndTerminationRules)
{
    const struct
    {
        const char* text;
        bool error;
        std::vector<std::uint8_t> semitones;
    } cases[] = {
        {"1;b3;5;", false, {0, 3, 7}},
        {"1; b3 ;5;", false, {0, 3, 7}}, // blanks vanish before splitting
        {"1;#9th;", false, {0, 15}},
        {"1;#9;", true, {}},      // #9 without the letters is no symbol
        {"1;B3;", true, {}},      // upper case fails the character filter
        {"1;3;5", false, {0, 4}}, // an unterminated last token is dropped
        {"1;3;5;x", true, {}},    // a bad character anywhere spoils the text
        {"1;\t3;", true, {}},     // a tab is no blank
        {"1;;5;", true, {}},      // an empty token matches nothing
        {";", true, {}},
        {"135", false, {}}, // no ";" at all: an empty list, not an error
        {"", false, {}},
        {"1;b3;5;b7;9;11;13;", false, {0, 3, 7, 10, 14, 17, 21}},
        {"1b35;", true, {}},
        {"22;", true, {}},
        {"1;h;", true, {}}, // admitted letters still have to form a symbol
        {"1;b13;", false, {0, 20}},
    };
    for (const auto& c : cases) {
        const IntervalList list = IntervalList::parse(c.text);
        EXPECT_EQ(list.isError(), c.error) << '"' << c.text << '"';
        EXPECT_EQ(list.semitones(), c.semitones) << '"' << c.text << '"';
        EXPECT_EQ(list.count(), c.error ? IntervalList::kErrorCount : int(c.semitones.size()));
    }
}
