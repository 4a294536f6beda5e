#include "part/ChordVoicer.h"
#include "part/RowRenderer.h"

#include <gtest/gtest.h>

#include <algorithm>
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

VoicingOptions optionsOf(VoicingStyle style, int low, int high, BassRule bass = BassRule::Any,
                         int bassNote = 0)
{
    VoicingOptions s;
    s.style = style;
    s.low = static_cast<music::NoteValue>(low);
    s.high = static_cast<music::NoteValue>(high);
    s.bass = bass;
    s.bassNote = static_cast<music::PitchClass>(bassNote);
    return s;
}

/** "G2 C3 E3 B3": the notes as the program names them. */
std::string names(const Voicing& v)
{
    std::string out;
    for (int i = 0; i < v.count; ++i)
        out += (i ? " " : "") + music::noteNameWithOctave(v.notes[static_cast<std::size_t>(i)]);
    return out;
}

const PartChord kCmaj7 = chordOf("Cmaj7", {0, 4, 7, 11});
const PartChord kC = chordOf("C", {0, 4, 7});
constexpr int kC2 = 24, kB4 = 59;

} // namespace

TEST(ChordVoicer, VoicesEachStyleAndBassRuleNearTheMiddleOfTheRange)
{
    struct Case
    {
        const char* what;
        PartChord chord;
        VoicingOptions options;
        const char* expected;
    };
    // The range C2..B4 has its middle between F3 and F#3; ties go to the lower placement.
    const Case cases[] = {
        {"close", kCmaj7, optionsOf(VoicingStyle::Close, kC2, kB4), "C3 E3 G3 B3"},
        {"drop-2: C E G B becomes G C E B", kCmaj7, optionsOf(VoicingStyle::Drop2, kC2, kB4),
         "G2 C3 E3 B3"},
        {"drop-3", kCmaj7, optionsOf(VoicingStyle::Drop3, kC2, kB4), "E2 C3 G3 B3"},
        {"open: the 2nd and 4th voice down", kCmaj7, optionsOf(VoicingStyle::Open, kC2, kB4),
         "C2 G2 E3 B3"},
        {"spread: the bass down", kCmaj7, optionsOf(VoicingStyle::Spread, kC2, kB4), "C2 E3 G3 B3"},
        {"an open triad", kC, optionsOf(VoicingStyle::Open, kC2, kB4), "E2 C3 G3"},
        {"drop-2 with the root in the bass", kCmaj7,
         optionsOf(VoicingStyle::Drop2, kC2, kB4, BassRule::Root), "C3 G3 B3 E4"},
        {"C/E: a chord tone in the bass", kC,
         optionsOf(VoicingStyle::Close, kC2, kB4, BassRule::Note, 4), "E3 G3 C4"},
        {"C/D: a bass the chord lacks is added", kC,
         optionsOf(VoicingStyle::Close, kC2, kB4, BassRule::Note, 2), "D3 C4 E4 G4"},
        {"a doubled root stays doubled", chordOf("C5", {0, 7, 12}),
         optionsOf(VoicingStyle::Close, kC2, kB4), "C3 G3 C4"},
        {"a range of one octave", kC, optionsOf(VoicingStyle::Close, 28, 39), "E2 G2 C3"},
    };
    for (const Case& c : cases) {
        Voicing v;
        ASSERT_TRUE(ChordVoicer::voice(c.chord, c.options, v).ok()) << c.what;
        EXPECT_EQ(names(v), c.expected) << c.what;
    }
}

TEST(ChordVoicer, ReadsTheRootFromTheNameSoVoicedChordsKeepIt)
{
    struct Case
    {
        PartChord chord;
        int root;
    };
    const Case cases[] = {
        {chordOf("C#m7", {4, 8, 11, 13}), 1}, // stored in an inversion
        {chordOf("Am", {9, 12, 16}), 9},
        {chordOf("add9", {2, 7, 11}), 2},  // no note name: the first note
        {chordOf("Bb", {10, 14, 17}), 10}, // "B" is no tone of the chord: the first note
        {chordOf("G/B", {11, 14, 19}), 7},
        {chordOf("", {}), 0},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ChordVoicer::root(c.chord), c.root) << c.chord.name;

    // Voicing an already voiced chord gives the same notes.
    const VoicingOptions options = optionsOf(VoicingStyle::Drop2, kC2, kB4);
    Voicing once, twice;
    ASSERT_TRUE(ChordVoicer::voice(kCmaj7, options, once).ok());
    ASSERT_TRUE(ChordVoicer::voice(ChordVoicer::withNotes(kCmaj7, once), options, twice).ok());
    EXPECT_EQ(names(twice), names(once));
}

TEST(ChordVoicer, RefusesWhatCannotBeVoicedWithTheSystemsMessage)
{
    struct Case
    {
        PartChord chord;
        VoicingOptions options;
        std::string message;
    };
    const PartChord seven = chordOf("C13", {0, 4, 7, 10, 14, 17, 21});
    const Case cases[] = {
        {kCmaj7, optionsOf(VoicingStyle::Drop2, 24, 36),
         "No drop-2 voicing of the chord Cmaj7 fits between C2 and C3."},
        {kC, optionsOf(VoicingStyle::Close, 40, 30), std::string(ChordVoicer::kBadRangeMessage)},
        {kC, optionsOf(VoicingStyle::Close, 0, 120),
         std::string(ChordVoicer::kRangeTooHighMessage)},
        {seven, optionsOf(VoicingStyle::Close, 0, 119, BassRule::Note, 1),
         "There is no room for the bass note C# in the chord C13: a chord holds at most 7 notes."},
    };
    for (const Case& c : cases) {
        Voicing v;
        const music::Result result = ChordVoicer::voice(c.chord, c.options, v);
        EXPECT_FALSE(result.ok());
        EXPECT_EQ(result.message(), c.message);
    }
}

TEST(ChordVoicer, EveryCandidateKeepsTheTonesSortedWithinTheRange)
{
    std::mt19937 random(7);
    const auto pick = [&](int from, int to) {
        return std::uniform_int_distribution<int>(from, to)(random);
    };
    for (int round = 0; round < 300; ++round) {
        PartChord chord;
        chord.noteCount = static_cast<std::uint8_t>(pick(1, 7));
        for (int i = 0; i < chord.noteCount; ++i)
            chord.notes[static_cast<std::size_t>(i)] = static_cast<music::NoteValue>(pick(0, 40));
        const int low = pick(0, 60);
        const VoicingOptions options =
            optionsOf(static_cast<VoicingStyle>(pick(0, 4)), low, low + pick(11, 59),
                      static_cast<BassRule>(pick(0, 2)), pick(0, 11));

        std::vector<int> tones;
        for (int i = 0; i < chord.noteCount; ++i)
            tones.push_back(chord.notes[static_cast<std::size_t>(i)] % 12);
        const bool addsBass =
            options.bass == BassRule::Note &&
            std::find(tones.begin(), tones.end(), options.bassNote) == tones.end();
        if (addsBass)
            tones.push_back(options.bassNote);
        std::sort(tones.begin(), tones.end());

        for (const Voicing& v : ChordVoicer::candidates(chord, options)) {
            ASSERT_EQ(v.count, tones.size());
            std::vector<int> got;
            for (int i = 0; i < v.count; ++i)
                got.push_back(v.notes[static_cast<std::size_t>(i)] % 12);
            std::sort(got.begin(), got.end());
            EXPECT_EQ(got, tones);
            EXPECT_TRUE(std::is_sorted(v.notes.begin(), v.notes.begin() + v.count));
            EXPECT_GE(v.lowest(), options.low);
            EXPECT_LE(v.highest(), options.high);
            if (options.bass != BassRule::Any) {
                const int bass =
                    options.bass == BassRule::Root ? ChordVoicer::root(chord) : options.bassNote;
                EXPECT_EQ(v.lowest() % 12, bass);
            }
        }
    }
}

TEST(ChordVoicer, AnArpeggioOverAVoicedChordStillClimbs)
{
    Voicing v;
    ASSERT_TRUE(ChordVoicer::voice(kCmaj7, optionsOf(VoicingStyle::Drop2, kC2, kB4), v).ok());
    PreparedChord prepared = prepareChord(ChordVoicer::withNotes(kCmaj7, v), IndexOption::Ignore);
    RenderContext context;
    int previous = -1;
    for (std::uint8_t index = 0; index < 4; ++index) {
        const RowRecord row{{CellKind::ChordNote}, {index}, {0}};
        const int note = renderRow(prepared, row, TrackOctaves{}, context)[0].note;
        EXPECT_GT(note, previous) << "index " << int(index);
        previous = note;
    }
}
