#include "music/ChordCollection.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace music;
using Names = std::vector<std::string>;

namespace {

ChordTypeList typesOf(const std::vector<std::pair<std::string, std::string>>& entries)
{
    ChordTypeList list;
    for (const auto& [name, construction] : entries)
        list.add(name, construction);
    return list;
}

template <class Item> std::vector<std::string> namesOf(const std::vector<Item>& items)
{
    std::vector<std::string> names;
    for (const Item& item : items)
        names.push_back(item.name);
    return names;
}

} // namespace

TEST(GenerateList, BuildsChordsUpwardFromOctaveZero)
{
    ChordCollection collection;
    collection.generateList(typesOf({{"13", "1;3;b7;9;13;"}}));
    const Chord& b13 = collection.baseGroups()[0].sections[0].subsections[0].chords[11];
    EXPECT_EQ(b13.name, "B13");
    EXPECT_EQ(b13.slots, (std::array<NoteValue, 5>{11, 15, 21, 25, 32}));
}

TEST(GenerateList, SortsByChordAndByNoteAndRemovesEmptyParts)
{
    // No diads and no sevenths; one invalid type and one of six intervals.
    ChordCollection collection;
    collection.generateList(typesOf({{"maj", "1;3;5;"},
                                     {"broken", "1;x;"},
                                     {"m", "1;b3;5;"},
                                     {"9", "1;3;5;b7;9;"},
                                     {"13full", "1;3;5;b7;9;13;"},
                                     {"none", "135"}}));
    const auto& groups = collection.baseGroups();
    ASSERT_EQ(namesOf(groups), (Names{"Sorted by chord", "Sorted by note"}));
    // The type of six intervals is never filed among the "Ninths": its chords have a section
    // of their own, and their names say which interval they leave out.
    EXPECT_EQ(namesOf(groups[0].sections), (Names{"Triads", "Ninths", "Cut to five notes"}));
    EXPECT_EQ(namesOf(groups[0].sections[0].subsections), (Names{"maj", "m"}));
    EXPECT_EQ(namesOf(groups[0].sections[1].subsections), (Names{"9"}));
    EXPECT_EQ(namesOf(groups[0].sections[2].subsections), (Names{"13full"}));
    EXPECT_EQ(groups[0].sections[2].subsections[0].chords[0].name, "C13full (no 13)");
    const auto& majors = groups[0].sections[0].subsections[0].chords;
    EXPECT_EQ(namesOf(majors), (Names{"Cmaj", "C#maj", "Dmaj", "D#maj", "Emaj", "Fmaj", "F#maj",
                                      "Gmaj", "G#maj", "Amaj", "A#maj", "Bmaj"}));
    EXPECT_EQ(majors[1].slots, (std::array<NoteValue, 5>{1, 5, 8, 120, 120}));

    ASSERT_EQ(namesOf(groups[1].sections),
              (Names{"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"}));
    const auto& d = groups[1].sections[2];
    EXPECT_FALSE(d.scaleFlag);
    ASSERT_EQ(namesOf(d.subsections), (Names{"triads", "ninths"}));
    // More than five intervals: only the first five notes are kept, and the name says so.
    ASSERT_EQ(namesOf(d.subsections[1].chords), (Names{"D9", "D13full (no 13)"}));
    EXPECT_EQ(d.subsections[1].chords[1].slots, (std::array<NoteValue, 5>{2, 6, 9, 12, 16}));
}

TEST(GenerateList, NamesTheIntervalsThatAChordOfFiveSlotsLeavesOut)
{
    // Construction, the mark a chord's name gets, and the warning when such a type is defined.
    const struct
    {
        const char* construction;
        const char* mark;
        const char* warning;
    } cases[] = {
        {"1;3;5;b7;9;", "", ""},
        {"1;3;5;b7;9;11;13;", " (no 11, 13)",
         "A chord holds five notes: the chords of this type leave out 11, 13 and are named with "
         "\"(no 11, 13)\"."},
        {"1;b3;b5;6;b9;#9th;", " (no #9th)",
         "A chord holds five notes: the chords of this type leave out #9th and are named with "
         "\"(no #9th)\"."},
        {"1;3;5;b7;9;x;", "", ""}, // invalid: nothing to leave out
    };
    for (const auto& c : cases) {
        const IntervalList intervals = IntervalList::parse(c.construction);
        EXPECT_EQ(ChordCollection::droppedMark(intervals), c.mark) << c.construction;
        EXPECT_EQ(ChordCollection::droppedWarning(intervals), c.warning) << c.construction;
    }
}

TEST(GenerateList, LeavesNothingFromAnEmptyOrUselessList)
{
    ChordCollection collection;
    collection.generateList(typesOf({{"one", "1;"}}));
    ASSERT_EQ(collection.baseGroups().size(), 2u);
    EXPECT_TRUE(collection.baseGroups()[0].sections.empty()); // one interval: no diad
    EXPECT_EQ(namesOf(collection.baseGroups()[1].sections[0].subsections), (Names{"notes"}));

    collection.generateList(ChordTypeList());
    EXPECT_TRUE(collection.baseGroups()[0].sections.empty());
    EXPECT_TRUE(collection.baseGroups()[1].sections.empty());
}

TEST(AddScaleGroup, ListsTheTickedNotesFromTheBaseNoteWrappingPastB)
{
    ChordCollection collection;
    ASSERT_EQ(collection.addBaseGroup("Mine"), 0);
    const std::array<bool, 12> ticks{true,  false, true,  false, true,  true,
                                     false, true,  false, true,  false, true}; // C major
    ASSERT_TRUE(collection.addScaleGroup(0, "G major", ticks, 7, true).ok());
    ASSERT_TRUE(collection.addScaleGroup(0, "from C#", ticks, 1, false).ok());
    const auto& sections = collection.baseGroups()[0].sections;
    EXPECT_EQ(sections[0].notes, (std::vector<NoteValue>{7, 9, 11, 0, 2, 4, 5}));
    EXPECT_TRUE(sections[0].scaleFlag);
    EXPECT_EQ(sections[1].notes, (std::vector<NoteValue>{2, 4, 5, 7, 9, 11, 0}));
    EXPECT_FALSE(sections[1].scaleFlag);
    EXPECT_FALSE(collection.addScaleGroup(5, "nowhere", ticks, 0, true).ok());
}

TEST(ChordListFile, WritesTheFormatLineByLineAndRoundTripsByteForByte)
{
    ChordCollection collection;
    collection.addBaseGroup("G");
    collection.baseGroups()[0].sections.push_back({"plain", false, {}, {}});
    collection.baseGroups()[0].sections.push_back({"scale", true, {0, 4}, {}});
    collection.baseGroups()[0].sections[0].subsections.push_back(
        {"sub", {Chord::fromNotes("C", {0, 4, 7}), Chord{"gap", {0, 120, 7, 120, 120}}}});
    // Written by hand from the format: flag 0 has no note-count line; a chord writes its note
    // count and that many leading slots, so the gap chord loses its 7.
    const std::string expected = "Tonalmancer_Chords\n1\nG\n2\n"
                                 "plain\n1\n0\nsub\n2\nC\n3\n0\n4\n7\ngap\n2\n0\n120\n"
                                 "scale\n0\n1\n2\n0\n4\n";
    EXPECT_EQ(collection.toBytes(), expected);

    // A generated list with a scale group reads back to the same tree and the same bytes.
    collection.generateList(typesOf(
        {{"5", "1;5;"}, {"m7", "1;b3;5;b7;"}, {"maj", "1;3;5;"}, {"13", "1;3;5;b7;9;11;13;"}}));
    std::array<bool, 12> ticks{};
    ticks[0] = ticks[3] = ticks[7] = true;
    ASSERT_TRUE(collection.addScaleGroup(1, "C minor triad", ticks, 0, true).ok());
    const std::string bytes = collection.toBytes();

    ChordCollection back;
    ASSERT_TRUE(back.read(bytes).ok());
    EXPECT_EQ(back.baseGroups(), collection.baseGroups());
    EXPECT_EQ(back.toBytes(), bytes);
}

TEST(ChordListFile, ReadsForeignLineEndsCaseAndNulBytesButRefusesOtherFiles)
{
    const std::string lf =
        "Tonalmancer_Chords\n1\nG\n1\nS\n1\n1\n2\n0\n16\nsub\n1\nCm\n3\n0\n3\n7\n";
    const std::string crlf = "Tonalmancer_Chords\r\n1\r\nG\r\n1\r\nS\r\n1\r\n1\r\n2\r\n0\r\n16\r\n"
                             "sub\r\n1\r\nCm\r\n3\r\n0\r\n3\r\n7\r\n";
    std::string upper = lf;
    upper.replace(0, 18, "TONALMANCER_CHORDS");
    std::string nul = lf;
    nul.replace(nul.find("Cm"), 2, std::string("C\0", 2)); // "C " then trailing blank dropped

    ChordCollection reference;
    ASSERT_TRUE(reference.read(lf).ok());
    const auto& section = reference.baseGroups()[0].sections[0];
    EXPECT_TRUE(section.scaleFlag);
    EXPECT_EQ(section.notes, (std::vector<NoteValue>{0, 16}));
    // A C is allowed; an E is not (the listed 16 is no pitch class), nor a C#.
    EXPECT_EQ((std::vector<bool>{section.allows(24), section.allows(28), section.allows(1)}),
              (std::vector<bool>{true, false, false}));

    for (const std::string& variant : {crlf, upper}) {
        ChordCollection other;
        ASSERT_TRUE(other.read(variant).ok());
        EXPECT_EQ(other.baseGroups(), reference.baseGroups());
    }
    ChordCollection withNul;
    ASSERT_TRUE(withNul.read(nul).ok());
    EXPECT_EQ(withNul.baseGroups()[0].sections[0].subsections[0].chords[0].name, "C");

    ChordCollection collection; // other files are refused
    collection.addBaseGroup("kept?");
    EXPECT_EQ(collection.read("Tonalmancer_Chord\n0\n").message(), "Seems to be no valid file.");
    EXPECT_TRUE(collection.isEmpty());
    EXPECT_EQ(collection.load("/nonexistent/x.crd").message(), "Error opening file.");
    EXPECT_EQ(collection.save("/nonexistent/dir/x.crd").message(), "Error opening file.");
}

TEST(ChordListFile, KeepsCountsToSixteenBitsAndNotesToOneByte)
{
    // 65537 base groups read as 1; a note value of 256 + 4 reads as 4; a chord announcing seven
    // notes keeps five and stays in step with the lines after it.
    const std::string bytes = "Tonalmancer_Chords\n65537\nG\n1\nS\n1\n0\nsub\n2\n"
                              "wide\n7\n0\n260\n7\n11\n14\n17\n21\nnext\n1\n5\n";
    ChordCollection collection;
    ASSERT_TRUE(collection.read(bytes).ok());
    ASSERT_EQ(collection.baseGroups().size(), 1u);
    const auto& chords = collection.baseGroups()[0].sections[0].subsections[0].chords;
    ASSERT_EQ(namesOf(chords), (Names{"wide", "next"}));
    EXPECT_EQ(chords[0].slots, (std::array<NoteValue, 5>{0, 4, 7, 11, 14}));
    EXPECT_EQ(chords[1].notes(), (std::vector<NoteValue>{5}));
}
