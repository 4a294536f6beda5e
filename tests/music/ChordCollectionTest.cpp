#include "music/ChordCollection.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using music::Chord;
using music::ChordCollection;
using music::ChordTypeList;

namespace {

ChordTypeList typesOf(const std::vector<std::pair<std::string, std::string>>& entries)
{
    ChordTypeList list;
    for (const auto& [name, construction] : entries)
        list.add(name, construction);
    return list;
}

std::vector<std::string> sectionNames(const music::ChordBaseGroup& group)
{
    std::vector<std::string> names;
    for (const auto& section : group.sections)
        names.push_back(section.name);
    return names;
}

std::vector<std::string> subsectionNames(const music::ChordSection& section)
{
    std::vector<std::string> names;
    for (const auto& subsection : section.subsections)
        names.push_back(subsection.name);
    return names;
}

} // namespace

TEST(GenerateList, BuildsChordsUpwardFromOctaveZero)
{
    ChordCollection collection;
    collection.generateList(typesOf({{"13", "1;3;b7;9;13;"}}));
    const Chord& b13 = collection.baseGroups()[0].sections[0].subsections[0].chords[11];
    EXPECT_EQ(b13.name, "B13");
    EXPECT_EQ(b13.slots, (std::array<music::NoteValue, 5>{11, 15, 21, 25, 32}));
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
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups[0].name, "Sorted by chord");
    EXPECT_EQ(groups[1].name, "Sorted by note");

    EXPECT_EQ(sectionNames(groups[0]), (std::vector<std::string>{"Triads", "Ninths"}));
    EXPECT_EQ(subsectionNames(groups[0].sections[0]), (std::vector<std::string>{"maj", "m"}));
    EXPECT_EQ(subsectionNames(groups[0].sections[1]), (std::vector<std::string>{"9"}));
    const auto& majors = groups[0].sections[0].subsections[0].chords;
    ASSERT_EQ(majors.size(), 12u);
    EXPECT_EQ(majors[0].name, "Cmaj");
    EXPECT_EQ(majors[1].name, "C#maj");
    EXPECT_EQ(majors[1].slots, (std::array<music::NoteValue, 5>{1, 5, 8, 120, 120}));

    ASSERT_EQ(groups[1].sections.size(), 12u);
    const auto& d = groups[1].sections[2];
    EXPECT_EQ(d.name, "D");
    EXPECT_FALSE(d.scaleFlag);
    EXPECT_EQ(subsectionNames(d), (std::vector<std::string>{"triads", "ninths"}));
    ASSERT_EQ(d.subsections[1].chords.size(), 2u);
    EXPECT_EQ(d.subsections[1].chords[0].name, "D9");
    // More than five intervals: only the first five notes are kept.
    EXPECT_EQ(d.subsections[1].chords[1].name, "D13full");
    EXPECT_EQ(d.subsections[1].chords[1].slots, (std::array<music::NoteValue, 5>{2, 6, 9, 12, 16}));
}

TEST(GenerateList, LeavesNothingFromAnEmptyOrUselessList)
{
    ChordCollection collection;
    collection.generateList(typesOf({{"one", "1;"}}));
    ASSERT_EQ(collection.baseGroups().size(), 2u);
    EXPECT_TRUE(collection.baseGroups()[0].sections.empty()); // one interval: no diad
    EXPECT_EQ(subsectionNames(collection.baseGroups()[1].sections[0]),
              (std::vector<std::string>{"notes"}));

    collection.generateList(ChordTypeList());
    EXPECT_TRUE(collection.baseGroups()[0].sections.empty());
    EXPECT_TRUE(collection.baseGroups()[1].sections.empty());
}

TEST(AddScaleGroup, ListsTheTickedNotesFromTheBaseNoteWrappingPastB)
{
    ChordCollection collection;
    ASSERT_EQ(collection.addBaseGroup("Mine"), 0);
    std::array<bool, 12> ticks{};
    for (int pc : {0, 2, 4, 5, 7, 9, 11})
        ticks[static_cast<std::size_t>(pc)] = true;
    ASSERT_TRUE(collection.addScaleGroup(0, "G major", ticks, 7, true).ok());
    ASSERT_TRUE(collection.addScaleGroup(0, "from C#", ticks, 1, false).ok());
    const auto& sections = collection.baseGroups()[0].sections;
    EXPECT_EQ(sections[0].notes, (std::vector<music::NoteValue>{7, 9, 11, 0, 2, 4, 5}));
    EXPECT_TRUE(sections[0].scaleFlag);
    EXPECT_EQ(sections[1].notes, (std::vector<music::NoteValue>{2, 4, 5, 7, 9, 11, 0}));
    EXPECT_FALSE(sections[1].scaleFlag);
    EXPECT_FALSE(collection.addScaleGroup(5, "nowhere", ticks, 0, true).ok());
}

TEST(ChordListFile, WritesTheFormatLineByLine)
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
}

TEST(ChordListFile, GeneratedListRoundTripsByteForByte)
{
    ChordCollection collection;
    collection.generateList(typesOf({{"5", "1;5;"}, {"m7", "1;b3;5;b7;"}, {"maj", "1;3;5;"}}));
    std::array<bool, 12> ticks{};
    ticks[0] = ticks[3] = ticks[7] = true;
    ASSERT_TRUE(collection.addScaleGroup(1, "C minor triad", ticks, 0, true).ok());
    const std::string bytes = collection.toBytes();

    ChordCollection back;
    ASSERT_TRUE(back.read(bytes).ok());
    EXPECT_EQ(back.baseGroups(), collection.baseGroups());
    EXPECT_EQ(back.toBytes(), bytes);
}

TEST(ChordListFile, ReadsForeignLineEndsCaseAndNulBytes)
{
    const std::string lf =
        "Tonalmancer_Chords\n1\nG\n1\nS\n1\n1\n2\n0\n16\nsub\n1\nCm\n3\n0\n3\n7\n";
    std::string crlf;
    for (const char c : lf)
        crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    std::string upper = lf;
    upper.replace(0, 18, "TONALMANCER_CHORDS");
    std::string nul = lf;
    nul.replace(nul.find("Cm"), 2, std::string("C\0", 2)); // "C " then trailing blank dropped

    ChordCollection reference;
    ASSERT_TRUE(reference.read(lf).ok());
    const auto& section = reference.baseGroups()[0].sections[0];
    EXPECT_TRUE(section.scaleFlag);
    EXPECT_EQ(section.notes, (std::vector<music::NoteValue>{0, 16}));
    EXPECT_TRUE(section.allows(24));  // a C
    EXPECT_FALSE(section.allows(28)); // an E: the listed 16 is no pitch class
    EXPECT_FALSE(section.allows(1));

    for (const std::string& variant : {crlf, upper}) {
        ChordCollection other;
        ASSERT_TRUE(other.read(variant).ok());
        EXPECT_EQ(other.baseGroups(), reference.baseGroups());
    }
    ChordCollection withNul;
    ASSERT_TRUE(withNul.read(nul).ok());
    EXPECT_EQ(withNul.baseGroups()[0].sections[0].subsections[0].chords[0].name, "C");
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
    ASSERT_EQ(chords.size(), 2u);
    EXPECT_EQ(chords[0].slots, (std::array<music::NoteValue, 5>{0, 4, 7, 11, 14}));
    EXPECT_EQ(chords[1].name, "next");
    EXPECT_EQ(chords[1].notes(), (std::vector<music::NoteValue>{5}));
}

TEST(ChordListFile, ReportsWrongMagicAndMissingFiles)
{
    ChordCollection collection;
    collection.addBaseGroup("kept?");
    EXPECT_EQ(collection.read("Tonalmancer_Chord\n0\n").message(), "Seems to be no valid file.");
    EXPECT_TRUE(collection.isEmpty());
    EXPECT_EQ(collection.load("/nonexistent/x.crd").message(), "Error opening file.");
    EXPECT_EQ(collection.save("/nonexistent/dir/x.crd").message(), "Error opening file.");
}
