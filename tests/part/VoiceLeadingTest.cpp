#include "part/VoiceLeading.h"
#include "part/ChordVoicer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

using namespace part;

namespace {

PartChord chordOf(const std::string& name, std::initializer_list<music::NoteValue> notes)
{
    PartChord c;
    c.name = name;
    c.setNotes(notes);
    return c;
}

Voicing voicingOf(std::initializer_list<music::NoteValue> notes)
{
    return ChordVoicer::sortedNotes(chordOf("", notes));
}

VoicingOptions optionsOf(VoicingStyle style, int low, int high)
{
    VoicingOptions s;
    s.style = style;
    s.low = static_cast<music::NoteValue>(low);
    s.high = static_cast<music::NoteValue>(high);
    return s;
}

std::vector<int> notesOf(const PartChord& c)
{
    return {c.notes.begin(), c.notes.begin() + c.noteCount};
}

/** Chooses each chord's voicing by looking only at the chord before it. */
int greedyTotal(const std::vector<PartChord>& chords, const VoicingOptions& options)
{
    int total = 0;
    Voicing previous;
    for (std::size_t k = 0; k < chords.size(); ++k) {
        const std::vector<Voicing> choices = ChordVoicer::candidates(chords[k], options);
        int best = std::numeric_limits<int>::max();
        Voicing chosen = choices.front();
        for (const Voicing& v : choices) {
            const int cost = k == 0 ? 0 : VoiceLeading::transitionCost(previous, v).total();
            if (cost < best) {
                best = cost;
                chosen = v;
            }
        }
        total += best;
        previous = chosen;
    }
    return total;
}

/** Tries every combination of candidates: the true optimum of a short run. */
int exhaustiveTotal(const std::vector<PartChord>& chords, const VoicingOptions& options)
{
    std::vector<std::vector<Voicing>> choices;
    for (const PartChord& c : chords)
        choices.push_back(ChordVoicer::candidates(c, options));
    int best = std::numeric_limits<int>::max();
    std::function<void(std::size_t, const Voicing&, int)> walk = [&](std::size_t k,
                                                                     const Voicing& previous,
                                                                     int sum) {
        if (k == choices.size()) {
            best = std::min(best, sum);
            return;
        }
        for (const Voicing& v : choices[k])
            walk(k + 1, v, k == 0 ? 0 : sum + VoiceLeading::transitionCost(previous, v).total());
    };
    walk(0, Voicing{}, 0);
    return best;
}

} // namespace

TEST(VoiceLeading, CostsMovementParallelsAndCrossings)
{
    struct Case
    {
        const char* what;
        Voicing from, to;
        VoiceLeadingCost expected;
    };
    const Case cases[] = {
        {"common tones stay", voicingOf({0, 4, 7}), voicingOf({0, 4, 9}), {2, 0, 0}},
        {"parallel fifths", voicingOf({0, 7}), voicingOf({2, 9}), {4, 1, 0}},
        {"parallel octaves", voicingOf({0, 12}), voicingOf({2, 14}), {4, 1, 0}},
        {"fifth to twelfth in the same direction",
         voicingOf({0, 7}),
         voicingOf({2, 21}),
         {16, 1, 0}},
        {"fifths by contrary motion", voicingOf({7, 14}), voicingOf({0, 19}), {12, 0, 0}},
        {"a voice held under a moving one", voicingOf({0, 7}), voicingOf({0, 9}), {2, 0, 0}},
        {"the lower voice passes the upper's old note",
         voicingOf({4, 7}),
         voicingOf({9, 11}),
         {9, 0, 1}},
        {"a voice splits: G goes to G and Bb",
         voicingOf({0, 4, 7}),
         voicingOf({0, 4, 7, 10}),
         {3, 0, 0}},
        {"two voices join", voicingOf({0, 4, 7, 10}), voicingOf({5, 9, 12}), {10, 0, 0}},
        {"no voices", voicingOf({}), voicingOf({0, 4, 7}), {0, 0, 0}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(VoiceLeading::transitionCost(c.from, c.to), c.expected) << c.what;
}

TEST(VoiceLeading, TwoFiveOneInCloseMovesEveryVoiceByAtMostAWholeTone)
{
    const std::vector<PartChord> chords = {chordOf("Dm7", {2, 5, 9, 12}),
                                           chordOf("G7", {7, 11, 14, 17}),
                                           chordOf("Cmaj7", {0, 4, 7, 11})};
    std::vector<PartChord> led;
    ASSERT_TRUE(
        VoiceLeading::lead(chords, optionsOf(VoicingStyle::Close, 24, 48), false, led).ok());
    ASSERT_EQ(led.size(), 3u);
    for (std::size_t k = 1; k < led.size(); ++k) {
        ASSERT_EQ(led[k].noteCount, 4);
        for (std::size_t v = 0; v < 4; ++v)
            EXPECT_LE(std::abs(led[k].notes[v] - led[k - 1].notes[v]), 2)
                << led[k].name << " voice " << v;
    }
}

TEST(VoiceLeading, OneSixFourFiveFromAFixedFirstChordGivesTheTextbookVoicings)
{
    const Part part = [] {
        Part p;
        for (const PartChord& c : {chordOf("C", {24, 28, 31}), chordOf("Am", {9, 12, 16}),
                                   chordOf("F", {5, 9, 12}), chordOf("G", {7, 11, 14})})
            p.append(c);
        return p;
    }();
    VoicedRun run;
    ASSERT_TRUE(VoiceLeading::voicePart(part, kNoIndex, kNoIndex,
                                        optionsOf(VoicingStyle::Close, 19, 43), true, true, run)
                    .ok());
    // C E G, C E A, C F A, B D G: common tones held, the rest by step.
    const std::vector<std::vector<int>> expected = {
        {24, 28, 31}, {24, 28, 33}, {24, 29, 33}, {23, 26, 31}};
    ASSERT_EQ(run.chords.size(), expected.size());
    for (std::size_t k = 0; k < expected.size(); ++k)
        EXPECT_EQ(notesOf(run.chords[k]), expected[k]) << run.chords[k].name;
    // Before: root positions a long way down, with fifths in parallel at every change.
    EXPECT_EQ(run.before, (VoiceLeadingCost{63, 3, 2}));
    EXPECT_EQ(run.after, (VoiceLeadingCost{9, 0, 0}));
}

TEST(VoiceLeading, IsExactAndNeverWorseThanTheGreedyChoice)
{
    std::mt19937 random(2024);
    const auto pick = [&](int from, int to) {
        return std::uniform_int_distribution<int>(from, to)(random);
    };
    for (int round = 0; round < 200; ++round) {
        std::vector<PartChord> chords;
        const int length = pick(2, round < 100 ? 3 : 12);
        for (int k = 0; k < length; ++k) {
            // Two to five different pitch classes, anywhere in the lowest two octaves.
            std::vector<int> classes = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
            std::shuffle(classes.begin(), classes.end(), random);
            PartChord c;
            c.noteCount = static_cast<std::uint8_t>(pick(2, 5));
            for (int i = 0; i < c.noteCount; ++i)
                c.notes[static_cast<std::size_t>(i)] = static_cast<music::NoteValue>(
                    classes[static_cast<std::size_t>(i)] + 12 * pick(0, 1));
            chords.push_back(c);
        }
        const VoicingOptions options =
            optionsOf(static_cast<VoicingStyle>(pick(0, 4)), pick(12, 30), pick(60, 80));
        std::vector<PartChord> led;
        const music::Result result = VoiceLeading::lead(chords, options, false, led);
        ASSERT_TRUE(result.ok()) << result.message();
        const int total = VoiceLeading::runCost(led).total();
        EXPECT_LE(total, greedyTotal(chords, options)) << "round " << round;
        if (length <= 3) {
            EXPECT_EQ(total, exhaustiveTotal(chords, options)) << "round " << round;
        }
    }
}

TEST(VoiceLeading, KeepsTheFirstAndEmptyChordsAndLeadsAcrossNoteCounts)
{
    Part part;
    part.append(chordOf("before", {1, 2, 3}));
    part.append(chordOf("C", {7, 0, 4})); // unsorted: kept as it is
    part.append(chordOf("C7", {0, 4, 7, 10}));
    part.append(chordOf("empty", {}));
    part.append(chordOf("F", {5, 9, 12}));
    part.append(chordOf("after", {1, 2, 3}));
    part.chord(2).pattern = 3;
    part.chord(2).length = 7;

    VoicedRun run;
    ASSERT_TRUE(
        VoiceLeading::voicePart(part, 1, 4, optionsOf(VoicingStyle::Close, 0, 30), true, true, run)
            .ok());
    Part voiced = part;
    VoiceLeading::apply(run, voiced);
    EXPECT_EQ(voiced.chord(0), part.chord(0));
    EXPECT_EQ(voiced.chord(1), part.chord(1));
    EXPECT_EQ(voiced.chord(3), part.chord(3));
    EXPECT_EQ(voiced.chord(5), part.chord(5));
    // C E G -> C E G Bb -> (nothing) -> C F A
    EXPECT_EQ(notesOf(voiced.chord(2)), (std::vector<int>{0, 4, 7, 10}));
    EXPECT_EQ(notesOf(voiced.chord(4)), (std::vector<int>{0, 5, 9}));
    EXPECT_EQ(voiced.chord(2).pattern, 3);
    EXPECT_EQ(voiced.chord(2).length, 7);
    EXPECT_EQ(run.after, (VoiceLeadingCost{7, 0, 0}));
}

TEST(VoiceLeading, NamesTheChordThatDoesNotFitByItsPlaceInThePart)
{
    Part part;
    part.append(chordOf("C", {0, 4, 7}));
    part.append(chordOf("C", {0, 4, 7}));
    part.append(chordOf("Cmaj9", {0, 4, 7, 11, 14}));
    for (bool lead : {true, false}) {
        VoicedRun run;
        const music::Result result = VoiceLeading::voicePart(
            part, 1, 2, optionsOf(VoicingStyle::Close, 24, 31), lead, false, run);
        EXPECT_EQ(result.message(), "No close voicing of chord 2 (Cmaj9) fits between C2 and G2.");
        EXPECT_TRUE(run.chords.empty());
    }
    VoicedRun run;
    EXPECT_EQ(VoiceLeading::voicePart(part, 3, 5, VoicingOptions{}, true, false, run).message(),
              VoiceLeading::kEmptyRangeMessage);
    EXPECT_EQ(
        VoiceLeading::voicePart(Part{}, kNoIndex, kNoIndex, VoicingOptions{}, true, false, run)
            .message(),
        VoiceLeading::kEmptyRangeMessage);
}
