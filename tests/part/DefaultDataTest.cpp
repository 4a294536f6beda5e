#include "DefaultDataBuilder.h"
#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "part/PartFile.h"
#include "part/RowRenderer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

using namespace part;

namespace {

const std::filesystem::path kData = std::filesystem::path(TM_SOURCE_DIR) / "data";

/** Every chord of the part plays at least one note, all of them in a playable range. */
void expectPlayable(const Part& p, const std::string& what)
{
    ASSERT_GT(p.count(), 0) << what;
    const RenderOptions options;
    for (int c = 0; c < p.count(); ++c) {
        ASSERT_LT(p.chord(c).pattern, p.patterns().count()) << what << " chord " << c;
        const PreparedChord chord = prepareChord(p.chord(c), options.indexOption);
        int notes = 0;
        for (int row = 0; row < p.chord(c).length; ++row) {
            for (const TrackEvent& e : renderPartRow(p, chord, c, row, options)) {
                if (e.type != TrackEvent::Type::Note)
                    continue;
                ++notes;
                EXPECT_GE(e.note, 24) << what << " chord " << c << " row " << row;
                EXPECT_LE(e.note, 96) << what << " chord " << c << " row " << row;
            }
        }
        EXPECT_GT(notes, 0) << what << " chord " << c;
    }
}

} // namespace

TEST(DefaultData, ShippedFilesMatchTheirBuilder)
{
    const struct
    {
        const char* name;
        std::string bytes;
    } files[] = {
        {"default.prt", defaults::defaultPartBytes()},
        {"default.spr", defaults::defaultPatternPresetBytes()},
        {"default.ppr", defaults::defaultPartPresetBytes()},
    };
    const bool rewrite = std::getenv("TM_WRITE_DEFAULTS") != nullptr;
    for (const auto& file : files) {
        if (rewrite) {
            ASSERT_TRUE(music::writeFileSafely(kData / file.name, file.bytes)) << file.name;
        }
        EXPECT_EQ(music::readFileBytes(kData / file.name), file.bytes)
            << file.name << " is stale: rerun this test with TM_WRITE_DEFAULTS=1";
    }
}

TEST(DefaultData, TheDefaultPartPlaysAtOnce)
{
    Part p;
    ASSERT_TRUE(PartFile::load(kData / "default.prt", p).ok());
    EXPECT_EQ(p, defaults::defaultPart());
    EXPECT_EQ(p.patterns().count(), 3);
    EXPECT_EQ(p.beatsPerMinute(), 126);
    EXPECT_EQ(p.ticksPerBeat(), 4);
    expectPlayable(p, "default part");
}

TEST(DefaultData, ThePresetFilesHoldPresetsAMusicianReachesFor)
{
    PatternPresetList patterns;
    ASSERT_TRUE(patterns.load(kData / "default.spr").ok());
    EXPECT_GE(patterns.count(), 12);
    bool fixedNote = false, chance = false, shifted = false;
    for (int i = 0; i < patterns.count(); ++i) {
        const Pattern& p = patterns.preset(i);
        EXPECT_GT(p.usedCellCount(), 0) << p.name();
        for (int t = 0; t < kTrackCount; ++t) {
            for (int r = 0; r < kRowCount; ++r) {
                fixedNote |= p.cell(t, r).kind == CellKind::FixedNote;
                chance |= p.cell(t, r).kind == CellKind::ChanceChordNote;
                shifted |= p.cell(t, r).kind == CellKind::ChordNote && p.cell(t, r).octave != 0;
            }
        }
    }
    EXPECT_TRUE(fixedNote && chance && shifted) << "every cell kind is shown by an example";

    PartPresetList parts;
    ASSERT_TRUE(parts.load(kData / "default.ppr").ok());
    EXPECT_GE(parts.count(), 6);
    for (const PartPreset& preset : parts.presets())
        expectPlayable(preset.part, preset.name);
}
