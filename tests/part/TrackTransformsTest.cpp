#include "part/TrackTransforms.h"

#include <gtest/gtest.h>

#include <string>

using namespace part;

namespace {

constexpr PatternCell note(std::uint8_t index)
{
    return {CellKind::ChordNote, index, 0};
}
constexpr PatternCell kOffCell{CellKind::Off, 0, 0};

/** Rows 0..3 of a track and its octave setting: "n0 off - n2 @9". */
std::string track(const Pattern& p, int t)
{
    std::string out;
    for (int row = 0; row < 4; ++row) {
        const PatternCell& c = p.cell(t, row);
        out += c.kind == CellKind::ChordNote ? "n" + std::to_string(c.value)
               : c.kind == CellKind::Off     ? "off"
                                             : "-";
        out += " ";
    }
    return out + "@" + std::to_string(p.trackOctave(t));
}

/** Track t holds t's own note on row t and an off-event on row 3 for t < 2; octave t + 1. */
Pattern sample()
{
    Pattern p;
    for (int t = 0; t < kTrackCount; ++t) {
        p.setCell(t, t % 3, note(static_cast<std::uint8_t>(t)));
        if (t < 2)
            p.setCell(t, 3, kOffCell);
        p.setTrackOctave(t, static_cast<std::uint8_t>(t + 1));
    }
    return p;
}

} // namespace

TEST(TrackTransforms, MergeLetsTheLaterTrackWinWhicheverWayItGoes)
{
    const Pattern p = sample(); // track 0: n0 - - off, track 1: - n1 - off, track 3: n3 - - -
    struct Case
    {
        int target, source;
        const char* targetAfter;
        int conflicts;
    } const cases[] = {
        {0, 1, "n0 n1 - off @1", 1}, // both have an off on row 3: the same either way
        {0, 3, "n3 - - off @1", 1},  // row 0 taken by both: track 3 is the later
        {3, 0, "n3 - - off @4", 1},
        {1, 2, "- n1 n2 off @2", 0},
    };
    for (const Case& c : cases) {
        const Pattern merged = mergeTracks(p, c.target, c.source);
        EXPECT_EQ(track(merged, c.target), c.targetAfter) << c.target << "<-" << c.source;
        EXPECT_EQ(track(merged, c.source), "- - - - @0") << "the source is emptied";
        EXPECT_EQ(mergeConflicts(p, c.target, c.source), c.conflicts);
        for (int t = 0; t < kTrackCount; ++t) {
            if (t != c.target && t != c.source) {
                EXPECT_EQ(track(merged, t), track(p, t)) << "track " << t << " must not change";
            }
        }
    }
    EXPECT_EQ(mergeTracks(p, 2, 2), p);
    EXPECT_EQ(mergeTracks(p, 0, 8), p);
}

TEST(TrackTransforms, MoveAndSwapTakeTheOctaveSettingAlong)
{
    const Pattern p = sample();
    auto order = [](const Pattern& q) {
        std::string out;
        for (int t = 0; t < kTrackCount; ++t) // which original track sits here: octave - 1
            out += std::to_string(q.trackOctave(t) - 1);
        return out;
    };
    struct Case
    {
        const char* what;
        Pattern result;
        const char* expected;
    } const cases[] = {
        {"move 0 to 2", moveTrack(p, 0, 2), "12034567"},
        {"move 6 to 1", moveTrack(p, 6, 1), "06123457"},
        {"move 7 to 0", moveTrack(p, 7, 0), "70123456"},
        {"swap 1 and 5", swapTracks(p, 1, 5), "05234167"},
        {"move onto itself", moveTrack(p, 4, 4), "01234567"},
        {"outside the pattern", swapTracks(p, -1, 3), "01234567"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(order(c.result), c.expected) << c.what;
        for (int t = 0; t < kTrackCount; ++t) {
            const int from = c.result.trackOctave(t) - 1;
            EXPECT_EQ(track(c.result, t), track(p, from)) << c.what << ": cells travel along";
        }
    }
}
