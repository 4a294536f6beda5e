#include "DefaultDataBuilder.h"
#include "TempFolder.h"
#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "part/PartPresetList.h"
#include "part/PatternPresetList.h"

#include <gtest/gtest.h>

#include <string>

using namespace part;

namespace {

Pattern patternWith(int marker)
{
    Pattern p("marker " + std::to_string(marker));
    p.setCell(marker % 8, marker % 64, PatternCell{CellKind::ChordNote, 1, 2});
    p.setTrackOctave(marker % 8, 11);
    return p;
}

Part smallPart(std::uint16_t bpm)
{
    Part p = Part::makeNew();
    PartChord c;
    c.name = "Am";
    c.setNotes({9, 12, 16});
    p.append(c);
    p.setTempo(bpm, 3);
    p.setSelection(0, 0);
    p.setBaseOctave(5);
    return p;
}

/** The change succeeded and the file now holds exactly what the list holds. */
template <class List>
void expectSaved(const music::Result& change, const List& list, const std::filesystem::path& file)
{
    ASSERT_TRUE(change.ok()) << change.message();
    List again;
    ASSERT_TRUE(again.load(file).ok());
    EXPECT_EQ(again.serialize(), list.serialize());
}

} // namespace

TEST(PresetLists, MagicLinesAreComparedIgnoringCase)
{
    const struct
    {
        std::string firstLine;
        bool patternFile; // which list should accept it
        bool partFile;
    } cases[] = {
        {"Tonalmancer pattern presets", true, false},
        {"TONALMANCER PATTERN PRESETS", true, false},
        {"tonalmancer pattern presets  \r", true, false},
        {"Tonalmancer chord presets", false, true},
        {"TONALMANCER CHORD PRESETS", false, true},
        {" Tonalmancer chord presets", false, false},
        {"Tonalmancer_Chords", false, false},
        {"", false, false},
    };
    for (const auto& c : cases) {
        PatternPresetList patterns;
        patterns.append(Pattern("kept"));
        PartPresetList parts;
        parts.append(PartPreset{});
        EXPECT_EQ(patterns.parse(c.firstLine + "\n\n0\n").message(),
                  c.patternFile ? "" : "No preset file")
            << c.firstLine;
        EXPECT_EQ(parts.parse(c.firstLine + "\n0\n").message(), c.partFile ? "" : "No preset file")
            << c.firstLine;
        EXPECT_EQ(patterns.count(), c.patternFile ? 0 : 1) << "a refused file changes nothing";
        EXPECT_EQ(parts.count(), c.partFile ? 0 : 1) << c.firstLine;
    }
}

TEST(PresetLists, EveryChangeIsSavedAtOnce)
{
    TempFolder folder;
    const auto spr = folder.path() / "default.spr";
    PatternPresetList patterns;
    expectSaved(patterns.add(patternWith(1), "Arp", spr), patterns, spr);
    expectSaved(patterns.add(patternWith(2), "Bass", spr), patterns, spr);
    expectSaved(patterns.replace(0, patternWith(9), spr), patterns, spr);
    EXPECT_EQ(patterns.preset(0).name(), "Arp") << "replacing keeps the preset's name";
    EXPECT_EQ(patterns.preset(0).cell(1, 9).kind, CellKind::ChordNote);
    expectSaved(patterns.rename(1, "Walking bass", spr), patterns, spr);
    expectSaved(patterns.remove(0, spr), patterns, spr);
    EXPECT_EQ(patterns.list().count(), 1);
    EXPECT_EQ(patterns.preset(0).name(), "Walking bass");

    const auto ppr = folder.path() / "default.ppr";
    PartPresetList parts;
    expectSaved(parts.add(smallPart(100), "Pop", ppr), parts, ppr);
    expectSaved(parts.add(smallPart(90), "Blues", ppr), parts, ppr);
    expectSaved(parts.replace(1, smallPart(80), ppr), parts, ppr);
    expectSaved(parts.rename(0, "Pop in C", ppr), parts, ppr);
    EXPECT_EQ(parts.preset(1).name, "Blues");
    EXPECT_EQ(parts.preset(1).part.beatsPerMinute(), 80);
    expectSaved(parts.remove(0, ppr), parts, ppr);
    EXPECT_EQ(parts.preset(0).name, "Blues");
}

TEST(PresetLists, UnreadableAndUnwritableFilesKeepTheList)
{
    TempFolder folder;
    const auto blocker = folder.path() / "plain";
    ASSERT_TRUE(music::writeFileSafely(blocker, "x\n"));

    PatternPresetList patterns;
    patterns.append(Pattern("mine"));
    EXPECT_EQ(patterns.load(folder.path() / "none.spr").message(), "Unable to open preset file");
    EXPECT_EQ(patterns.count(), 1);
    EXPECT_EQ(patterns.add(Pattern(), "n", blocker / "a.spr").message(),
              "Unable to open preset file");

    PartPresetList parts;
    parts.append(PartPreset{});
    EXPECT_EQ(parts.load(folder.path() / "none.ppr").message(), "Unable to open preset file");
    EXPECT_EQ(parts.count(), 1);
    EXPECT_EQ(parts.save(blocker / "a.ppr").message(), "Unable to open preset file");
    EXPECT_EQ(music::readFileBytes(blocker), "x\n");
}

TEST(PresetLists, PartPresetsRoundTripByteForByteAndDropTheCurrentPattern)
{
    PartPresetList list;
    Part p = smallPart(126);
    p.patterns().append(patternWith(5));
    p.setCurrentPattern(1);
    PitchClassFlags flags = kAllPitchClassesAllowed;
    flags[6] = 0;
    p.setPitchClassFlags(flags);
    list.append(PartPresetList::presetOf(p, "With flags"));
    list.append(PartPreset{});
    EXPECT_EQ(list.preset(0).part.currentPattern(), 0);

    const std::string bytes = list.serialize();
    PartPresetList read;
    ASSERT_TRUE(read.parse(bytes).ok());
    EXPECT_EQ(read.presets(), list.presets());
    EXPECT_EQ(read.serialize(), bytes);
    EXPECT_EQ(read.preset(1).name, "noname");
    // The record's fields come in the documented order right after the name.
    const std::string head = "Tonalmancer chord presets\n2\nWith flags\n126\n3\n0\n0\n5\n"
                             "1\n1\n1\n1\n1\n1\n0\n1\n1\n1\n1\n1\n\n2\nnoname\n";
    EXPECT_EQ(bytes.substr(0, head.size()), head);
}

TEST(PresetLists, HugeCountsInShortOrCutFilesMakeFewRecords)
{
    PartPresetList parts;
    ASSERT_TRUE(parts.parse("Tonalmancer chord presets\n65535\n").ok());
    EXPECT_EQ(parts.count(), 0);
    ASSERT_TRUE(parts.parse("Tonalmancer chord presets\n65535\nA\n").ok());
    EXPECT_EQ(parts.count(), 1);
    PatternPresetList patterns;
    ASSERT_TRUE(
        patterns.parse("Tonalmancer pattern presets\n\n65535\n" + std::string(3 * 1547, '\n'))
            .ok());
    EXPECT_EQ(patterns.count(), 3);

    const std::string good = defaults::defaultPartPresetBytes();
    for (std::size_t size = 0; size < good.size(); size += 1009) {
        parts.parse(std::string_view(good).substr(0, size));
        EXPECT_LE(parts.count(), 7) << size;
    }
}

TEST(PresetLists, SortByNameIgnoresCaseKeepsEqualNamesInOrderAndSaves)
{
    const std::vector<std::string> names = {"beta", "Alpha", "gamma", "alpha", "Beta2", ""};
    const struct
    {
        bool upwards;
        std::vector<std::string> expected;
    } cases[] = {
        {true, {"", "Alpha", "alpha", "beta", "Beta2", "gamma"}},
        {false, {"gamma", "Beta2", "beta", "Alpha", "alpha", ""}},
    };
    TempFolder folder;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.upwards);
        PatternPresetList patterns;
        PartPresetList parts;
        for (std::size_t i = 0; i < names.size(); ++i) {
            Pattern p = patternWith(static_cast<int>(i));
            p.setName(names[i]);
            patterns.append(p);
            parts.append(
                PartPresetList::presetOf(smallPart(static_cast<std::uint16_t>(60 + i)), names[i]));
        }
        expectSaved(patterns.sortByName(c.upwards, folder.path() / "s.spr"), patterns,
                    folder.path() / "s.spr");
        expectSaved(parts.sortByName(c.upwards, folder.path() / "s.ppr"), parts,
                    folder.path() / "s.ppr");
        for (std::size_t i = 0; i < names.size(); ++i) {
            EXPECT_EQ(patterns.preset(static_cast<int>(i)).name(), c.expected[i]) << i;
            EXPECT_EQ(parts.preset(static_cast<int>(i)).name, c.expected[i]) << i;
        }
        // Each preset's content moved with its name.
        EXPECT_EQ(parts.preset(c.upwards ? 1 : 3).part.beatsPerMinute(), 61);
        EXPECT_EQ(patterns.preset(c.upwards ? 2 : 4).cell(3, 3).kind, CellKind::ChordNote);
    }
}
