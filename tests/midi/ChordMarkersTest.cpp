#include "MidiTestSupport.h"
#include "midi/MidiFileExporter.h"
#include "music/FileBytes.h"
#include "music/RandomSource.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using midi::MidiExportOptions;
using midi::MidiFile;
using midi::MidiFileExporter;
using namespace miditest;

namespace {

ReadEvent meta(std::uint32_t time, std::uint8_t type, const std::string& text)
{
    ReadEvent e{time, 0xFF, {type}};
    e.bytes.insert(e.bytes.end(), text.begin(), text.end());
    return e;
}

const ReadEvent kSignature{0, 0xFF, {0x58, 4, 4, 24, 8}};

/** C (4 rows), a chord of length 0, an unnamed chord (2 rows), G (3 rows); 24 ticks a row. */
part::Part namedChords(std::string name)
{
    part::Part p =
        makePart({makePattern({chordNote(0, 0, 0)})},
                 {makeChord({0}, 4), makeChord({2}, 0), makeChord({4}, 2), makeChord({7}, 3)});
    p.chord(0).name = "C";
    p.chord(1).name = "never heard";
    p.chord(3).name = "G";
    p.setName(std::move(name));
    return p;
}

} // namespace

TEST(ChordMarkers, NameTheSequenceAndMarkEachChordStartOnlyWhenAsked)
{
    struct Case
    {
        const char* what;
        std::uint16_t first, last;
        bool names;
        std::vector<ReadEvent> tempoTrack;
    };
    const Case cases[] = {
        {"off: the tempo track as always",
         part::kNoIndex,
         part::kNoIndex,
         false,
         {kSignature, {240, 0xFF, {0x2F}}}},
        {"the whole part",
         part::kNoIndex,
         part::kNoIndex,
         true,
         {meta(0, 0x03, "Song"),
          kSignature,
          meta(0, 0x06, "C"),
          meta(144, 0x06, "G"),
          {240, 0xFF, {0x2F}}}},
        {"a range: ticks count from its first chord",
         2,
         3,
         true,
         {meta(0, 0x03, "Song"), kSignature, meta(48, 0x06, "G"), {144, 0xFF, {0x2F}}}},
    };
    const part::Part p = namedChords("Song");
    for (const Case& c : cases) {
        MidiExportOptions o;
        o.ticksPerBeat = 4;
        o.rangeFirst = c.first;
        o.rangeLast = c.last;
        o.writeChordNames = c.names;
        MidiFile file;
        music::RandomSource::seed(5);
        ASSERT_TRUE(MidiFileExporter(o).build(p, file).ok()) << c.what;
        const auto tracks = readTracks(file.toBytes());
        ASSERT_EQ(tracks.size(), 2u) << c.what;
        EXPECT_EQ(tracks[0], c.tempoTrack) << c.what;

        // The note track does not change with the option.
        MidiFile plain;
        o.writeChordNames = false;
        music::RandomSource::seed(5);
        ASSERT_TRUE(MidiFileExporter(o).build(p, plain).ok());
        EXPECT_EQ(tracks[1], readTracks(plain.toBytes()).at(1)) << c.what;
    }
}

TEST(ChordMarkers, AnUnnamedPartIsNamedAfterTheFile)
{
    const auto folder = scratchFolder("markers");
    MidiExportOptions o;
    o.writeChordNames = true;
    for (const std::string& partName : {std::string(), std::string("Verse")}) {
        const auto path = folder / "chorus.mid";
        ASSERT_TRUE(MidiFileExporter(o).write(namedChords(partName), path).ok());
        const std::string bytes = music::readFileBytes(path).value_or("");
        const auto tracks = readTracks(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
        ASSERT_FALSE(tracks.empty());
        EXPECT_EQ(tracks[0].front(), meta(0, 0x03, partName.empty() ? "chorus" : partName));
    }
    std::filesystem::remove_all(folder);
}
