#include "DefaultDataBuilder.h"
#include "music/FileBytes.h"
#include "part/PartFile.h"
#include "part/RowRenderer.h"

#include <gtest/gtest.h>

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
                notes += e.type == TrackEvent::Type::Note;
                EXPECT_TRUE(e.type != TrackEvent::Type::Note || (e.note >= 24 && e.note <= 96))
                    << what << " chord " << c << " row " << row << " plays " << e.note;
            }
        }
        EXPECT_GT(notes, 0) << what << " chord " << c;
    }
}

} // namespace

TEST(DefaultData, ShippedFilesMatchTheirBuilder)
{
    const std::pair<const char*, std::string> files[] = {
        {PartFile::kDefaultFileName, defaults::defaultPartBytes()},
        {PatternPresetList::kDefaultFileName, defaults::defaultPatternPresetBytes()},
        {PartPresetList::kDefaultFileName, defaults::defaultPartPresetBytes()},
    };
    for (const auto& [name, bytes] : files) {
        EXPECT_EQ(music::readFileBytes(kData / name), bytes)
            << name << " is stale: cmake --build --preset dev --target regenerate-defaults";
    }
}

TEST(DefaultData, TheShippedPartAndPartPresetsPlayAtOnce)
{
    Part p;
    ASSERT_TRUE(PartFile::load(kData / "default.prt", p).ok());
    expectPlayable(p, "default part");
    PartPresetList parts;
    ASSERT_TRUE(parts.load(kData / "default.ppr").ok());
    for (const PartPreset& preset : parts.presets())
        expectPlayable(preset.part, preset.name);
}
