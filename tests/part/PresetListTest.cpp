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

Pattern patternNamed(const std::string& name, int marker)
{
    Pattern p(name);
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
    p.setCurrentPattern(0);
    return p;
}

} // namespace

TEST(PartPreset, ANewRecordHasTheDocumentedDefaults)
{
    const PartPreset preset;
    EXPECT_EQ(preset.name, "noname");
    EXPECT_EQ(preset.part.beatsPerMinute(), 126);
    EXPECT_EQ(preset.part.ticksPerBeat(), 4);
    EXPECT_EQ(preset.part.baseOctave(), 4);
    EXPECT_EQ(preset.part.pitchClassFlags(), kAllPitchClassesAllowed);
    EXPECT_EQ(preset.part.count(), 0);
    EXPECT_EQ(preset.part.patterns().count(), 0);
}

TEST(PresetLists, MagicLinesAreComparedIgnoringCase)
{
    struct Case
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
    for (const Case& c : cases) {
        PatternPresetList patterns;
        patterns.append(Pattern("kept"));
        const music::Result p = patterns.parse(c.firstLine + "\n\n0\n");
        EXPECT_EQ(p.ok(), c.patternFile) << c.firstLine;
        EXPECT_EQ(patterns.count(), c.patternFile ? 0 : 1) << "a refused file changes nothing";
        if (!c.patternFile) {
            EXPECT_EQ(p.message(), "No preset file");
        }

        PartPresetList parts;
        parts.append(PartPreset{});
        const music::Result q = parts.parse(c.firstLine + "\n0\n");
        EXPECT_EQ(q.ok(), c.partFile) << c.firstLine;
        EXPECT_EQ(parts.count(), c.partFile ? 0 : 1);
        if (!c.partFile) {
            EXPECT_EQ(q.message(), "No preset file");
        }
    }
}

TEST(PresetLists, EveryChangeIsSavedAtOnce)
{
    TempFolder folder;
    const auto file = folder.path() / "default.spr";
    PatternPresetList list;
    const auto reloaded = [&] {
        PatternPresetList again;
        EXPECT_TRUE(again.load(file).ok());
        return again.list();
    };

    ASSERT_TRUE(list.add(patternNamed("ignored", 1), "Arp", file).ok());
    ASSERT_TRUE(list.add(patternNamed("x", 2), "Bass  ", file).ok());
    EXPECT_EQ(list.preset(0).name(), "Arp");
    EXPECT_EQ(reloaded().count(), 2);
    EXPECT_EQ(reloaded().pattern(1).name(), "Bass") << "trailing blanks are lost on reading";

    ASSERT_TRUE(list.replace(0, patternNamed("other", 9), file).ok());
    EXPECT_EQ(list.preset(0).name(), "Arp") << "replacing keeps the preset's name";
    EXPECT_EQ(list.preset(0).cell(1, 9).kind, CellKind::ChordNote);
    ASSERT_TRUE(list.rename(1, "Walking bass", file).ok());
    EXPECT_EQ(reloaded().pattern(1).name(), "Walking bass");
    EXPECT_EQ(reloaded().pattern(0), list.preset(0));
    ASSERT_TRUE(list.remove(0, file).ok());
    EXPECT_EQ(reloaded().count(), 1);
    EXPECT_EQ(reloaded().pattern(0).name(), "Walking bass");

    const auto partFile = folder.path() / "default.ppr";
    PartPresetList parts;
    ASSERT_TRUE(parts.add(smallPart(100), "Pop", partFile).ok());
    ASSERT_TRUE(parts.add(smallPart(90), "Blues", partFile).ok());
    ASSERT_TRUE(parts.replace(1, smallPart(80), partFile).ok());
    ASSERT_TRUE(parts.rename(0, "Pop in C", partFile).ok());
    PartPresetList again;
    ASSERT_TRUE(again.load(partFile).ok());
    EXPECT_EQ(again.presets(), parts.presets());
    EXPECT_EQ(again.preset(1).name, "Blues");
    EXPECT_EQ(again.preset(1).part.beatsPerMinute(), 80);
    ASSERT_TRUE(parts.remove(0, partFile).ok());
    ASSERT_TRUE(again.load(partFile).ok());
    EXPECT_EQ(again.presets(), parts.presets());
}

TEST(PresetLists, UnreadableAndUnwritableFilesKeepTheList)
{
    TempFolder folder;
    const auto blocker = folder.path() / "plain";
    ASSERT_TRUE(music::writeFileSafely(blocker, "x\n"));

    PatternPresetList patterns;
    patterns.append(Pattern("mine"));
    EXPECT_EQ(patterns.load(folder.path() / "none.spr").message(), "Unable to open preset file");
    EXPECT_EQ(patterns.load(blocker).message(), "No preset file");
    EXPECT_EQ(patterns.count(), 1);
    EXPECT_EQ(patterns.save(blocker / "a.spr").message(), "Unable to open preset file");
    EXPECT_EQ(patterns.add(Pattern(), "n", blocker / "a.spr").message(),
              "Unable to open preset file");

    PartPresetList parts;
    parts.append(PartPreset{});
    EXPECT_EQ(parts.load(folder.path() / "none.ppr").message(), "Unable to open preset file");
    EXPECT_EQ(parts.load(blocker).message(), "No preset file");
    EXPECT_EQ(parts.count(), 1);
    EXPECT_EQ(parts.save(blocker / "a.ppr").message(), "Unable to open preset file");
    EXPECT_EQ(music::readFileBytes(blocker), "x\n");
}

TEST(PresetLists, PartPresetsRoundTripByteForByteAndDropTheCurrentPattern)
{
    PartPresetList list;
    Part p = smallPart(126);
    p.patterns().append(patternNamed("second", 5));
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

    // The record's fields come in the documented order right after the name.
    const std::string head = "Tonalmancer chord presets\n2\nWith flags\n126\n3\n0\n0\n5\n"
                             "1\n1\n1\n1\n1\n1\n0\n1\n1\n1\n1\n1\n\n2\nnoname\n";
    EXPECT_EQ(bytes.substr(0, head.size()), head);
}

TEST(PresetLists, HugeCountsInShortFilesMakeFewRecords)
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
        PartPresetList cut;
        cut.parse(std::string_view(good).substr(0, size));
        EXPECT_LE(cut.count(), 7);
    }
}
