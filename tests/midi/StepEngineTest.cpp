#include "midi/StepEngine.h"
#include "MidiTestSupport.h"
#include "music/RandomSource.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>
#include <vector>

using midi::StepEngine;
using midi::StepMessage;
using namespace miditest;
using part::kNoIndex;
using Pairs = std::vector<std::pair<int, int>>;
using Sent = std::vector<std::array<int, 3>>; // step, status, note

namespace {

constexpr std::uint8_t kOn = 0x90, kOff = 0x80;

/** Five chords of lengths 1..5 on an empty pattern. */
part::Part fiveChords()
{
    return makePart({part::Pattern()}, {makeChord({0}, 1), makeChord({0}, 2), makeChord({0}, 3),
                                        makeChord({0}, 4), makeChord({0}, 5)});
}

class StepEngineTest : public ::testing::Test
{
protected:
    /** (chord, row) of every step the engine plays, the first included. */
    Pairs walk(bool started)
    {
        Pairs steps;
        for (; started && steps.size() < 1000; started = m_engine.step())
            steps.emplace_back(m_engine.currentChord(), m_engine.stepInChord());
        return steps;
    }
    /** Step, status and note of each message sent so far, without velocities. */
    Sent sent() const
    {
        Sent out;
        for (const StepMessage& m : m_sink.messages)
            out.push_back({static_cast<int>(m.step), m.status, m.note});
        return out;
    }

    RecordingSink m_sink;
    StepEngine m_engine{m_sink};
};

} // namespace

TEST_F(StepEngineTest, PlayPartStartsWithinTheSelectedRange)
{
    // The part's selection first..last, the selected chord, then the chords played first and
    // last.
    const std::vector<std::array<std::uint16_t, 5>> cases = {
        {3, 4, 1, 3, 4},                      // before the range: its first chord
        {1, 2, 4, 1, 2},                      // after the range: its first chord
        {1, 3, 2, 2, 3},                      // inside: the selected chord
        {kNoIndex, kNoIndex, kNoIndex, 0, 4}, // nothing selected: the whole part
        {kNoIndex, kNoIndex, 3, 3, 4},        // no range: from the selected chord
        {2, kNoIndex, 0, 2, 4},               // only a first index
        {kNoIndex, 1, 3, 0, 1},               // only a last index
        {2, 900, 3, 3, 4},                    // a last index beyond the part stops at its end
    };
    part::Part p = fiveChords();
    for (const auto& [first, last, selected, startChord, lastChord] : cases) {
        SCOPED_TRACE(std::to_string(first) + ".." + std::to_string(last) + ", " +
                     std::to_string(selected));
        p.setSelection(first, last);
        ASSERT_TRUE(m_engine.startPart(p, selected));
        EXPECT_EQ(m_engine.currentChord(), startChord);
        EXPECT_EQ(m_engine.lastChord(), lastChord);
    }
}

TEST_F(StepEngineTest, PlaysEachChordForItsLengthAndEndsAfterTheLastOrTheSingleChord)
{
    // The chord of length 0 is passed over.
    const part::Part p =
        makePart({part::Pattern()}, {makeChord({0}, 2), makeChord({0}, 0), makeChord({0}, 3)});
    EXPECT_EQ(walk(m_engine.startRange(p, kNoIndex, kNoIndex)),
              (Pairs{{0, 0}, {0, 1}, {2, 0}, {2, 1}, {2, 2}}));
    EXPECT_FALSE(m_engine.isPlaying());
    EXPECT_FALSE(m_engine.step()) << "an ended playback stays ended";

    part::Part five = fiveChords();
    five.setSelection(0, 1); // a single chord plays regardless of the selection
    EXPECT_EQ(walk(m_engine.startSingleChord(five, 2)), (Pairs{{2, 0}, {2, 1}, {2, 2}}));
    EXPECT_FALSE(m_engine.startSingleChord(five, 5)) << "no such chord";

    five.chord(0).length = 200; // past the pattern's 64 rows: no silent steps after row 63
    const Pairs rows = walk(m_engine.startSingleChord(five, 0));
    ASSERT_EQ(rows.size(), 64u);
    EXPECT_EQ(rows.back(), (std::pair<int, int>{0, 63}));
}

TEST_F(StepEngineTest, RefusesWhatCannotPlay)
{
    EXPECT_FALSE(m_engine.startPart(part::Part::makeNew(), kNoIndex)) << "no chords";
    EXPECT_FALSE(m_engine.startRange(fiveChords(), 3, 2)) << "first beyond last";
    EXPECT_FALSE(m_engine.startRange(makePart({part::Pattern()}, {makeChord({0}, 0)}), 0, 0))
        << "only chords of length 0";
    EXPECT_FALSE(m_engine.isPlaying());
    EXPECT_TRUE(m_sink.messages.empty());
}

TEST_F(StepEngineTest, RendersNoteOffsBeforeTheNewNotesAndHoldsNotesAcrossChords)
{
    // Chord 0, track 0: C on row 0, E on row 1 (replacing C), off on row 2; track 1: G on
    // row 1; track 2: an off on a silent track sends nothing. Chord 1 plays another pattern
    // that leaves tracks 0 and 1 alone and starts track 3.
    const part::Part p = makePart(
        {makePattern({chordNote(0, 0, 0), chordNote(0, 1, 1), CellAt{0, 2, part::CellKind::Off},
                      chordNote(1, 1, 2), CellAt{2, 0, part::CellKind::Off}}),
         makePattern({chordNote(3, 0, 0)})},
        {makeChord({0, 4, 7}, 4), makeChord({2}, 1, 1)});
    m_engine.setChannel(3);
    ASSERT_TRUE(m_engine.startRange(p, kNoIndex, kNoIndex));
    for (int i = 0; i < 4; ++i)
        ASSERT_TRUE(m_engine.step());
    EXPECT_EQ(m_engine.soundingNote(1), 67) << "held into the next chord";
    EXPECT_EQ(m_engine.soundingNote(3), 62);
    EXPECT_EQ(m_engine.soundingNote(0), StepEngine::kNoNote);
    EXPECT_EQ(m_engine.soundingNote(8), StepEngine::kNoNote);
    EXPECT_FALSE(m_engine.step());

    // Step 0: C on; step 1: C replaced by E, G on; step 2: E off; step 4: D on track 3; then
    // the end of the part stops G and D.
    // clang-format off
    EXPECT_EQ(sent(), (Sent{{0, kOn | 3, 60}, {1, kOff | 3, 60}, {1, kOn | 3, 64}, {1, kOn | 3, 67},
                            {2, kOff | 3, 64}, {4, kOn | 3, 62},
                            {5, kOff | 3, 67}, {5, kOff | 3, 62}}));
    // clang-format on
}

TEST_F(StepEngineTest, StopAndRestartEndEverySoundingTrackOnceWithVelocityOneBelowTheSetting)
{
    auto p = std::make_unique<part::Part>(
        makePart({makePattern({chordNote(0, 0, 0), chordNote(3, 0, 1), chordNote(7, 0, 2)})},
                 {makeChord({0, 4, 7}, 16)}));
    m_engine.setVelocity(100);
    ASSERT_TRUE(m_engine.startPart(*p, kNoIndex));
    ASSERT_TRUE(m_engine.step());
    m_sink.messages.clear();

    m_engine.stop();
    EXPECT_EQ(m_sink.messages,
              (std::vector<StepMessage>{{2, kOff, 60, 99}, {2, kOff, 64, 99}, {2, kOff, 67, 99}}));
    EXPECT_FALSE(m_engine.isPlaying());
    for (int track = 0; track < part::kTrackCount; ++track)
        EXPECT_EQ(m_engine.soundingNote(track), StepEngine::kNoNote);
    m_sink.messages.clear();
    m_engine.stop();
    EXPECT_TRUE(m_sink.messages.empty()) << "a second stop has nothing to end";

    // Starting again while playing ends the notes first; the engine plays its own copy of the
    // part, so the editor's part may go away (or change) meanwhile.
    ASSERT_TRUE(m_engine.startPart(*p, kNoIndex));
    ASSERT_TRUE(m_engine.startPart(*p, kNoIndex));
    p.reset();
    ASSERT_TRUE(m_engine.step());
    EXPECT_EQ(sent(), (Sent{{0, kOn, 60},
                            {0, kOn, 64},
                            {0, kOn, 67},
                            {1, kOff, 60},
                            {1, kOff, 64},
                            {1, kOff, 67},
                            {0, kOn, 60},
                            {0, kOn, 64},
                            {0, kOn, 67}}));
}

TEST_F(StepEngineTest, VelocityIsTheSettingMinusADrawPlusHalfTheMessageCount)
{
    // Step 0 sends 3 note-ons (n / 2 = 1); step 1 replaces two notes: 4 messages (n / 2 = 2).
    const part::Part p =
        makePart({makePattern({chordNote(0, 0, 0), chordNote(1, 0, 1), chordNote(2, 0, 2),
                               chordNote(0, 1, 2), chordNote(1, 1, 0)})},
                 {makeChord({0, 4, 7}, 2)});
    music::RandomSource::seed(4711);
    std::vector<int> draws(7);
    for (int& draw : draws)
        draw = music::RandomSource::random(3);
    music::RandomSource::seed(4711);
    m_engine.setVelocity(128); // above 127: used for one message, then lowered
    ASSERT_TRUE(m_engine.startRange(p, kNoIndex, kNoIndex));
    ASSERT_TRUE(m_engine.step());
    ASSERT_EQ(m_sink.messages.size(), 7u);
    for (std::size_t i = 0; i < 7; ++i)
        EXPECT_EQ(m_sink.messages[i].velocity, (i == 0 ? 128 : 127) - draws[i] + (i < 3 ? 1 : 2))
            << "message " << i;
    EXPECT_EQ(m_engine.velocity(), 127);
    EXPECT_FALSE(m_engine.step());
    ASSERT_EQ(m_sink.messages.size(), 10u);
    EXPECT_EQ(m_sink.messages.back().velocity, 126) << "the closing note-offs use 127 - 1";
}

TEST_F(StepEngineTest, SkipsNotesThatNoMidiNoteNumberCanHold)
{
    // A fixed note with the explicit octave 11 would be note 132.
    const part::Part p = makePart({makePattern({{0, 0, part::CellKind::FixedNote, 0, 11},
                                                {1, 0, part::CellKind::FixedNote, 7, 0}})},
                                  {makeChord({0}, 1)});
    ASSERT_TRUE(m_engine.startRange(p, kNoIndex, kNoIndex));
    EXPECT_EQ(sent(), (Sent{{0, kOn, 67}}));
    EXPECT_EQ(m_engine.soundingNote(0), StepEngine::kNoNote);
}

TEST(StepMessage, VelocityByteStaysAValidDataByteAndANoteOnNeverReadsAsANoteOff)
{
    // Status, computed velocity, and the byte that goes to devices and files.
    const std::vector<std::array<int, 3>> cases = {
        {kOn, 64, 64}, {kOn, 128, 127}, {kOn, 130, 127}, {kOn, 0, 1},
        {kOn, -1, 1},  {kOff, -1, 0},   {kOff, 0, 0},    {kOff | 9, 200, 127},
    };
    for (const auto& [status, velocity, byte] : cases) {
        const StepMessage m{0, static_cast<std::uint8_t>(status), 60, velocity};
        EXPECT_EQ(m.velocityByte(), byte) << status << ", " << velocity;
    }
}

TEST_F(StepEngineTest, APartUpdatedWhilePlayingIsHeardFromTheNextStepOn)
{
    // Two chords of four rows on one pattern; track 0 plays chord note 0 on row 0. After step 1
    // the part is replaced: a new cell (row 2, track 1), or chords taken away.
    const part::Part p = makePart({makePattern({chordNote(0, 0, 0)})},
                                  {makeChord({0, 4, 7}, 4), makeChord({2, 5, 9}, 4)});
    part::Part withCell = p;
    withCell.patterns().pattern(0).setCell(1, 2, {part::CellKind::ChordNote, 1, 0});
    part::Part oneChord = p;
    oneChord.remove(1);
    part::Part noChords = p;
    noChords.remove(1);
    noChords.remove(0);

    struct Case
    {
        const char* what;
        const part::Part& update;
        Sent expected;
        int steps; // steps after the first before the playback ends
    };
    const Case cases[] = {
        {"a new cell sounds at its row",
         withCell,
         {{0, kOn, 60},
          {2, kOn, 64},
          {4, kOff, 60},
          {4, kOn, 62},
          {6, kOff, 64},
          {6, kOn, 65},
          {8, kOff, 62},
          {8, kOff, 65}},
         7},
        {"the range is cut to the chords left", oneChord, {{0, kOn, 60}, {4, kOff, 60}}, 3},
        {"the playing chord is gone: its notes stop", noChords, {{0, kOn, 60}, {2, kOff, 60}}, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        m_sink.messages.clear();
        ASSERT_TRUE(m_engine.startPart(p, kNoIndex));
        ASSERT_TRUE(m_engine.step());
        m_engine.updatePart(c.update);
        int steps = 1;
        while (m_engine.step())
            ++steps;
        EXPECT_EQ(steps, c.steps);
        EXPECT_EQ(sent(), c.expected);
        EXPECT_FALSE(m_engine.isPlaying());
    }
}
