#include "midi/StepEngine.h"
#include "MidiTestSupport.h"
#include "music/RandomSource.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using midi::StepEngine;
using midi::StepMessage;
using miditest::chordNote;
using miditest::makeChord;
using miditest::makePart;
using miditest::makePattern;
using miditest::offAt;
using miditest::RecordingSink;
using part::kNoIndex;

namespace {

constexpr std::uint8_t kOn = 0x90;
constexpr std::uint8_t kOff = 0x80;

/** Five chords of lengths 1..5 on an empty pattern. */
part::Part fiveChords()
{
    return makePart({part::Pattern()}, {makeChord({0}, 1), makeChord({0}, 2), makeChord({0}, 3),
                                        makeChord({0}, 4), makeChord({0}, 5)});
}

/** (chord, row) of every step the engine plays, the first included. */
std::vector<std::pair<int, int>> walk(StepEngine& engine, bool started)
{
    std::vector<std::pair<int, int>> steps;
    if (!started)
        return steps;
    do {
        steps.emplace_back(engine.currentChord(), engine.stepInChord());
    } while (engine.step() && steps.size() < 1000);
    return steps;
}

/** Status and note of each message, without velocities. */
std::vector<std::pair<int, int>> notesOf(const std::vector<StepMessage>& messages)
{
    std::vector<std::pair<int, int>> out;
    for (const StepMessage& m : messages)
        out.emplace_back(m.status, m.note);
    return out;
}

} // namespace

TEST(StepEngine, PlayPartStartsWithinTheSelectedRange)
{
    const struct
    {
        std::uint16_t first, last, selected;
        int startChord, lastChord;
    } cases[] = {
        {3, 4, 1, 3, 4},                      // before the range: its first chord
        {1, 2, 4, 1, 2},                      // after the range: its first chord
        {1, 3, 2, 2, 3},                      // inside: the selected chord
        {kNoIndex, kNoIndex, kNoIndex, 0, 4}, // nothing selected: the whole part
        {kNoIndex, kNoIndex, 3, 3, 4},
        {2, kNoIndex, 0, 2, 4}, // only a first index
        {kNoIndex, 1, 3, 0, 1}, // only a last index
        {2, 900, 3, 3, 4},      // a last index beyond the part stops at its end
    };
    for (const auto& c : cases) {
        part::Part p = fiveChords();
        p.setSelection(c.first, c.last);
        RecordingSink sink;
        StepEngine engine(sink);
        ASSERT_TRUE(engine.startPart(p, c.selected)) << c.first << ".." << c.last;
        EXPECT_EQ(engine.currentChord(), c.startChord) << c.first << ".." << c.last;
        EXPECT_EQ(engine.lastChord(), c.lastChord) << c.first << ".." << c.last;
    }
}

TEST(StepEngine, MovesToTheNextChordAtTheChordsLengthAndEndsAfterTheLast)
{
    part::Part p =
        makePart({part::Pattern()}, {makeChord({0}, 2), makeChord({0}, 0), makeChord({0}, 3)});
    RecordingSink sink;
    StepEngine engine(sink);
    const auto steps = walk(engine, engine.startRange(p, kNoIndex, kNoIndex));
    // The chord of length 0 is passed over.
    const std::vector<std::pair<int, int>> expected = {{0, 0}, {0, 1}, {2, 0}, {2, 1}, {2, 2}};
    EXPECT_EQ(steps, expected);
    EXPECT_FALSE(engine.isPlaying());
    EXPECT_FALSE(engine.step()) << "an ended playback stays ended";
}

TEST(StepEngine, SingleChordEndsAfterItsChord)
{
    part::Part p = fiveChords();
    p.setSelection(0, 1); // ignored by the single-chord command
    RecordingSink sink;
    StepEngine engine(sink);
    const auto steps = walk(engine, engine.startSingleChord(p, 2));
    EXPECT_EQ(steps, (std::vector<std::pair<int, int>>{{2, 0}, {2, 1}, {2, 2}}));

    EXPECT_FALSE(engine.startSingleChord(p, 5)) << "no such chord";
}

TEST(StepEngine, RefusesWhatCannotPlay)
{
    RecordingSink sink;
    StepEngine engine(sink);
    EXPECT_FALSE(engine.startPart(part::Part::makeNew(), kNoIndex)) << "no chords";
    EXPECT_FALSE(engine.startRange(fiveChords(), 3, 2)) << "first beyond last";
    EXPECT_FALSE(engine.startRange(makePart({part::Pattern()}, {makeChord({0}, 0)}), 0, 0))
        << "only chords of length 0";
    EXPECT_FALSE(engine.isPlaying());
    EXPECT_TRUE(sink.messages.empty());
}

TEST(StepEngine, RendersNoteOffsBeforeTheNewNotesOfEachTrack)
{
    // Track 0: C on row 0, E on row 1 (replacing C), off on row 2.
    // Track 1: G on row 1. Track 2: an off-event on a silent track sends nothing.
    part::Part p = makePart({makePattern({chordNote(0, 0, 0), chordNote(0, 1, 1), offAt(0, 2),
                                          chordNote(1, 1, 2), offAt(2, 0)})},
                            {makeChord({0, 4, 7}, 4)});
    RecordingSink sink;
    StepEngine engine(sink);
    engine.setChannel(3);
    ASSERT_TRUE(engine.startRange(p, kNoIndex, kNoIndex));
    while (engine.step()) {
    }

    const std::vector<std::pair<int, int>> expected = {
        {kOn | 3, 60},                                // step 0
        {kOff | 3, 60}, {kOn | 3, 64}, {kOn | 3, 67}, // step 1
        {kOff | 3, 64},                               // step 2
        {kOff | 3, 67},                               // end of the part
    };
    EXPECT_EQ(notesOf(sink.messages), expected);
    const std::vector<std::uint32_t> steps = {0, 1, 1, 1, 2, 4};
    ASSERT_EQ(sink.messages.size(), steps.size());
    for (std::size_t i = 0; i < steps.size(); ++i)
        EXPECT_EQ(sink.messages[i].step, steps[i]) << "message " << i;
}

TEST(StepEngine, NotesHoldAcrossChordChangesUntilReplaced)
{
    // Pattern 0 starts a note on track 0; pattern 1 leaves track 0 alone and plays on track 1.
    part::Part p = makePart({makePattern({chordNote(0, 0, 0)}), makePattern({chordNote(1, 0, 0)})},
                            {makeChord({0}, 1, 0), makeChord({2}, 1, 1)});
    RecordingSink sink;
    StepEngine engine(sink);
    ASSERT_TRUE(engine.startRange(p, kNoIndex, kNoIndex));
    ASSERT_TRUE(engine.step());
    EXPECT_EQ(engine.soundingNote(0), 60);
    EXPECT_EQ(engine.soundingNote(1), 62);
    EXPECT_EQ(engine.soundingNote(2), StepEngine::kNoNote);
    EXPECT_EQ(engine.soundingNote(8), StepEngine::kNoNote);
}

TEST(StepEngine, StopEndsEverySoundingTrackOnceWithVelocityOneBelowTheSetting)
{
    part::Part p =
        makePart({makePattern({chordNote(0, 0, 0), chordNote(3, 0, 1), chordNote(7, 0, 2)})},
                 {makeChord({0, 4, 7}, 16)});
    RecordingSink sink;
    StepEngine engine(sink);
    engine.setVelocity(100);
    ASSERT_TRUE(engine.startPart(p, kNoIndex));
    ASSERT_TRUE(engine.step());
    sink.messages.clear();

    engine.stop();
    const std::vector<StepMessage> expected = {
        {2, kOff, 60, 99}, {2, kOff, 64, 99}, {2, kOff, 67, 99}};
    EXPECT_EQ(sink.messages, expected);
    EXPECT_FALSE(engine.isPlaying());
    for (int track = 0; track < part::kTrackCount; ++track)
        EXPECT_EQ(engine.soundingNote(track), StepEngine::kNoNote);

    sink.messages.clear();
    engine.stop();
    EXPECT_TRUE(sink.messages.empty()) << "a second stop has nothing to end";
}

TEST(StepEngine, StartingAgainEndsTheNotesOfThePlaybackInProgress)
{
    part::Part p = makePart({makePattern({chordNote(0, 0, 0)})}, {makeChord({0}, 8)});
    RecordingSink sink;
    StepEngine engine(sink);
    ASSERT_TRUE(engine.startPart(p, kNoIndex));
    ASSERT_TRUE(engine.startPart(p, kNoIndex));
    EXPECT_EQ(notesOf(sink.messages),
              (std::vector<std::pair<int, int>>{{kOn, 60}, {kOff, 60}, {kOn, 60}}));
}

TEST(StepEngine, VelocityIsTheSettingMinusADrawPlusHalfTheMessageCount)
{
    // Step 0 sends 3 note-ons (n / 2 = 1); step 1 replaces two notes: 4 messages (n / 2 = 2).
    part::Part p =
        makePart({makePattern({chordNote(0, 0, 0), chordNote(1, 0, 1), chordNote(2, 0, 2),
                               chordNote(0, 1, 2), chordNote(1, 1, 0)})},
                 {makeChord({0, 4, 7}, 2)});
    const std::uint32_t seed = 4711;
    music::RandomSource::seed(seed);
    std::vector<int> draws;
    for (int i = 0; i < 7; ++i)
        draws.push_back(music::RandomSource::random(3));

    music::RandomSource::seed(seed);
    RecordingSink sink;
    StepEngine engine(sink);
    engine.setVelocity(64);
    ASSERT_TRUE(engine.startRange(p, kNoIndex, kNoIndex));
    ASSERT_TRUE(engine.step());
    ASSERT_EQ(sink.messages.size(), 7u);
    for (std::size_t i = 0; i < 7; ++i) {
        const int half = i < 3 ? 1 : 2;
        EXPECT_EQ(sink.messages[i].velocity, 64 - draws[i] + half) << "message " << i;
    }
}

TEST(StepEngine, SettingAbove127IsUsedOnceThenLowered)
{
    part::Part p =
        makePart({makePattern({chordNote(0, 0, 0), chordNote(1, 0, 1)})}, {makeChord({0, 4}, 1)});
    music::RandomSource::seed(1);
    std::vector<int> draws = {music::RandomSource::random(3), music::RandomSource::random(3)};
    music::RandomSource::seed(1);

    RecordingSink sink;
    StepEngine engine(sink);
    engine.setVelocity(128);
    ASSERT_TRUE(engine.startRange(p, kNoIndex, kNoIndex));
    ASSERT_EQ(sink.messages.size(), 2u);
    EXPECT_EQ(sink.messages[0].velocity, 128 - draws[0] + 1);
    EXPECT_EQ(sink.messages[1].velocity, 127 - draws[1] + 1);
    EXPECT_EQ(engine.velocity(), 127);
    EXPECT_FALSE(engine.step());
    EXPECT_EQ(sink.messages.back().velocity, 126) << "the closing note-offs use 127 - 1";
}

TEST(StepEngine, SkipsNotesThatNoMidiNoteNumberCanHold)
{
    // A fixed note with the explicit octave 11 would be note 132.
    part::Part p = makePart({makePattern({{0, 0, part::CellKind::FixedNote, 0, 11},
                                          {1, 0, part::CellKind::FixedNote, 7, 0}})},
                            {makeChord({0}, 1)});
    RecordingSink sink;
    StepEngine engine(sink);
    ASSERT_TRUE(engine.startRange(p, kNoIndex, kNoIndex));
    EXPECT_EQ(notesOf(sink.messages), (std::vector<std::pair<int, int>>{{kOn, 67}}));
    EXPECT_EQ(engine.soundingNote(0), StepEngine::kNoNote);
}

TEST(StepEngine, KeepsItsOwnCopyOfThePart)
{
    auto p = std::make_unique<part::Part>(
        makePart({makePattern({chordNote(0, 1, 0)})}, {makeChord({0}, 2)}));
    RecordingSink sink;
    StepEngine engine(sink);
    ASSERT_TRUE(engine.startRange(*p, kNoIndex, kNoIndex));
    p.reset(); // the editor's part goes away (or changes) while playing
    ASSERT_TRUE(engine.step());
    EXPECT_EQ(notesOf(sink.messages), (std::vector<std::pair<int, int>>{{kOn, 60}}));
}

TEST(StepMessage, VelocityBytesForFilesAndDevices)
{
    const struct
    {
        std::uint8_t status;
        int velocity;
        std::uint8_t file, device;
    } cases[] = {
        {kOn, 64, 64, 64},  {kOn, 128, 0x80, 127}, {kOn, 130, 0x82, 127}, {kOn, 0, 0, 1},
        {kOn, -1, 0xFF, 1}, {kOff, -1, 0xFF, 0},   {kOff, 0, 0, 0},       {kOff | 9, 200, 200, 127},
    };
    for (const auto& c : cases) {
        const StepMessage m{0, c.status, 60, c.velocity};
        EXPECT_EQ(m.fileVelocity(), c.file) << c.velocity;
        EXPECT_EQ(m.deviceVelocity(), c.device) << c.velocity;
    }
}
