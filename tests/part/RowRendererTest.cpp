#include "part/RowRenderer.h"
#include "music/RandomSource.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

using namespace part;

namespace {

PartChord chordOf(std::initializer_list<music::NoteValue> notes)
{
    PartChord c;
    c.setNotes(notes);
    return c;
}

RowRecord rowWith(int track, CellKind kind, int value, int octave = 0)
{
    RowRecord row;
    row.kinds[static_cast<std::size_t>(track)] = kind;
    row.values[static_cast<std::size_t>(track)] = static_cast<std::uint8_t>(value);
    row.octaves[static_cast<std::size_t>(track)] = static_cast<std::uint8_t>(octave);
    return row;
}

// One cell on track 0; the result is the note it plays, -1 for an off-event, nothing for none.
struct CellCase
{
    const char* what;
    CellKind kind;
    int value;
    int octaveByte;
    std::uint8_t trackOctave;
    std::uint8_t baseOctave;
    IndexOption option;
    std::optional<int> limit; // limit note + 12 * limit octave, when active
    std::optional<int> expected;
};

std::optional<int> renderCell(const CellCase& c, const PartChord& chord,
                              const PitchClassFlags& flags = kAllPitchClassesAllowed)
{
    RenderContext context;
    context.baseOctave = c.baseOctave;
    context.flags = flags;
    context.options.indexOption = c.option;
    if (c.limit) {
        context.options.limitActive = true;
        context.options.limitNote = static_cast<std::uint8_t>(*c.limit % 12);
        context.options.limitOctave = static_cast<std::uint8_t>(*c.limit / 12);
    }
    TrackOctaves octaves{};
    octaves[0] = c.trackOctave;
    const RowEvents events = renderRow(prepareChord(chord, c.option),
                                       rowWith(0, c.kind, c.value, c.octaveByte), octaves, context);
    for (std::size_t t = 1; t < events.size(); ++t)
        EXPECT_EQ(events[t].type, TrackEvent::Type::None) << c.what;
    switch (events[0].type) {
    case TrackEvent::Type::Note:
        return events[0].note;
    case TrackEvent::Type::Off:
        return -1;
    default:
        return std::nullopt;
    }
}

constexpr auto kFixed = CellKind::FixedNote;
constexpr auto kChord = CellKind::ChordNote;
constexpr auto kExtend = IndexOption::ExtendChord;
constexpr auto kOff = IndexOption::OffEvent;
constexpr auto kIgnore = IndexOption::Ignore;
constexpr std::optional<int> kNoLimit;
constexpr std::optional<int> kNothing;

} // namespace

TEST(RowRenderer, FixedNotesFollowTrackOctavesWithWrapAndCap)
{
    const CellCase cases[] = {
        {"base octave", kFixed, 7, 0, 0, 4, kIgnore, kNoLimit, 55},
        {"setting 3 is octave 4 whatever the base", kFixed, 7, 0, 3, 1, kIgnore, kNoLimit, 55},
        {"setting 7 is octave 8", kFixed, 0, 0, 7, 4, kIgnore, kNoLimit, 96},
        {"B-2 below 0 wraps and caps at 9", kFixed, 7, 0, 8, 1, kIgnore, kNoLimit, 115},
        {"B-1 below 0 wraps and caps at 9", kFixed, 7, 0, 9, 0, kIgnore, kNoLimit, 115},
        {"B+1", kFixed, 7, 0, 10, 4, kIgnore, kNoLimit, 67},
        {"B+2 above 9 caps", kFixed, 7, 0, 11, 8, kIgnore, kNoLimit, 115},
        {"unknown setting is the base", kFixed, 7, 0, 12, 4, kIgnore, kNoLimit, 55},
        {"base octave from a file above 9 caps", kFixed, 0, 0, 0, 12, kIgnore, kNoLimit, 108},
        {"cell octave replaces the track's", kFixed, 7, 5, 11, 4, kIgnore, kNoLimit, 67},
        {"limit lowers by whole octaves", kFixed, 7, 5, 0, 4, kIgnore, 48, 43},
        {"limit allows one half-note above", kFixed, 1, 0, 0, 4, kIgnore, 48, 49},
        {"just above the limit drops an octave", kFixed, 2, 0, 0, 4, kIgnore, 48, 38},
        {"limit far below keeps the pitch class", kFixed, 11, 9, 0, 4, kIgnore, 24, 23},
        {"limit in octave 0 keeps the lowest note", kFixed, 5, 0, 0, 4, kIgnore, 0, 5},
    };
    const PartChord triad = chordOf({0, 4, 7});
    for (const CellCase& c : cases)
        EXPECT_EQ(renderCell(c, triad), c.expected) << c.what;
}

TEST(RowRenderer, ChordNotesApplyShiftsOctavesAndLimits)
{
    const CellCase cases[] = {
        {"first note in the base octave", kChord, 0, 0, 0, 4, kIgnore, kNoLimit, 48},
        {"third note", kChord, 2, 0, 0, 4, kIgnore, kNoLimit, 55},
        {"C up to D is free", kChord, 0, 2, 0, 4, kIgnore, kNoLimit, 50},
        {"C down to A# stays below", kChord, 0, 1, 0, 4, kIgnore, kNoLimit, 46},
        {"E up to F# falls back (half-note from G)", kChord, 1, 2, 0, 4, kIgnore, kNoLimit, 52},
        {"G down to F falls back (half-note from E)", kChord, 2, 1, 0, 4, kIgnore, kNoLimit, 55},
        {"other octave bytes ask for nothing", kChord, 0, 3, 0, 4, kIgnore, kNoLimit, 48},
        {"B-1", kChord, 0, 0, 9, 4, kIgnore, kNoLimit, 36},
        {"B+2", kChord, 2, 0, 11, 4, kIgnore, kNoLimit, 79},
        {"setting 3 replaces the octave", kChord, 2, 0, 3, 7, kIgnore, kNoLimit, 55},
        {"B-2 from base 1 wraps to 9", kChord, 0, 0, 8, 1, kIgnore, kNoLimit, 108},
        {"limit lowers by octaves", kChord, 2, 0, 0, 4, kIgnore, 48, 43},
        {"limit at the note keeps it", kChord, 2, 0, 0, 4, kIgnore, 54, 55},
    };
    const PartChord triad = chordOf({0, 4, 7});
    for (const CellCase& c : cases)
        EXPECT_EQ(renderCell(c, triad), c.expected) << c.what;
}

TEST(RowRenderer, ChordNoteCarryAddsToTheBaseOctaveUnlessTheTrackReplacesIt)
{
    const PartChord high = chordOf({16, 19, 24}); // E, G, C one octave up
    const CellCase carry{"carry", kChord, 0, 0, 0, 4, kIgnore, kNoLimit, 64};
    EXPECT_EQ(renderCell(carry, high), 64);
    const CellCase replaced{"replaced", kChord, 0, 0, 3, 4, kIgnore, kNoLimit, 52};
    EXPECT_EQ(renderCell(replaced, high), 52);
    const CellCase capped{"capped", kChord, 0, 0, 0, 9, kIgnore, kNoLimit, 112};
    EXPECT_EQ(renderCell(capped, high), 112);
}

TEST(RowRenderer, ShiftOntoAForbiddenPitchClassFallsBack)
{
    PitchClassFlags flags = kAllPitchClassesAllowed;
    flags[2] = 0; // D
    const CellCase up{"C up to a forbidden D", kChord, 0, 2, 0, 4, kIgnore, kNoLimit, 48};
    EXPECT_EQ(renderCell(up, chordOf({0, 4, 7}), flags), 48);
    const CellCase down{"E down to a forbidden D", kChord, 1, 1, 0, 4, kIgnore, kNoLimit, 52};
    EXPECT_EQ(renderCell(down, chordOf({0, 4, 7}), flags), 52);
    const CellCase free{"G up to A is allowed", kChord, 2, 2, 0, 4, kIgnore, kNoLimit, 57};
    EXPECT_EQ(renderCell(free, chordOf({0, 4, 7}), flags), 57);
}

TEST(RowRenderer, IndexOptionsDecideAboutNotesTheChordLacks)
{
    const PartChord triad = chordOf({0, 4, 7});
    const CellCase cases[] = {
        {"extended: 4th note is C an octave up", kChord, 3, 0, 0, 4, kExtend, kNoLimit, 60},
        {"extended: 5th note is E an octave up", kChord, 4, 0, 0, 4, kExtend, kNoLimit, 64},
        {"extended: beyond five is nothing", kChord, 5, 0, 0, 4, kExtend, kNoLimit, kNothing},
        {"off-event option", kChord, 5, 0, 0, 4, kOff, kNoLimit, -1},
        {"off-event option: index = count", kChord, 3, 0, 0, 4, kOff, kNoLimit, -1},
        {"off-event option: last note plays", kChord, 2, 0, 0, 4, kOff, kNoLimit, 55},
        {"ignore option", kChord, 5, 0, 0, 4, kIgnore, kNoLimit, kNothing},
        {"off kind", CellKind::Off, 0, 0, 0, 4, kIgnore, kNoLimit, -1},
        {"nothing kind", CellKind::Nothing, 3, 2, 0, 4, kOff, kNoLimit, kNothing},
        {"unknown kind", static_cast<CellKind>(7), 0, 0, 0, 4, kOff, kNoLimit, kNothing},
    };
    for (const CellCase& c : cases)
        EXPECT_EQ(renderCell(c, triad), c.expected) << c.what;
}

TEST(RowRenderer, PreparingExtendsShortChordsAndCutsLongOnesToFive)
{
    struct Case
    {
        std::vector<music::NoteValue> notes;
        IndexOption option;
        std::vector<int> expected;
    } cases[] = {
        {{0, 4, 7}, kExtend, {0, 4, 7, 12, 16}},
        {{0, 7}, kExtend, {0, 7, 12, 19, 24}},
        {{5}, kExtend, {5, 17, 29, 41, 53}},
        {{0, 4, 7, 11, 14, 17, 21}, kExtend, {0, 4, 7, 11, 14}},
        {{0, 4, 7, 11, 14, 17}, kExtend, {0, 4, 7, 11, 14}},
        {{}, kExtend, {}},
        {{0, 4, 7}, kOff, {0, 4, 7}},
        {{0, 4, 7, 11, 14, 17, 21}, kIgnore, {0, 4, 7, 11, 14, 17, 21}},
    };
    for (const Case& c : cases) {
        PartChord chord;
        for (music::NoteValue n : c.notes)
            chord.notes[chord.noteCount++] = n;
        const PreparedChord prepared = prepareChord(chord, c.option);
        std::vector<int> got(prepared.notes.begin(), prepared.notes.begin() + prepared.count);
        EXPECT_EQ(got, c.expected) << "chord of " << c.notes.size() << " notes";
    }
}

TEST(RowRenderer, ANoteCountAboveSevenFromADamagedChordIsBounded)
{
    PartChord chord = chordOf({0, 4, 7});
    chord.noteCount = 200;
    const PreparedChord prepared = prepareChord(chord, kIgnore);
    EXPECT_EQ(prepared.count, PartChord::kMaxNotes);
    const CellCase c{"index 100", kChord, 100, 0, 0, 4, kOff, kNoLimit, -1};
    EXPECT_EQ(renderCell(c, chord), -1);
}

TEST(RowRenderer, SwitchedOffTracksProduceNothing)
{
    RowRecord row;
    for (std::size_t t = 0; t < kTrackCount; ++t) {
        row.kinds[t] = t % 2 ? CellKind::Off : CellKind::ChordNote;
        row.values[t] = static_cast<std::uint8_t>(t % 3);
    }
    RenderContext context;
    context.options.tracks = {true, false, true, false, false, true, true, false};
    const RowEvents events =
        renderRow(prepareChord(chordOf({0, 4, 7}), kExtend), row, TrackOctaves{}, context);
    const std::string expected = "N-N--ON-";
    for (std::size_t t = 0; t < kTrackCount; ++t) {
        const char got = events[t].type == TrackEvent::Type::Note  ? 'N'
                         : events[t].type == TrackEvent::Type::Off ? 'O'
                                                                   : '-';
        EXPECT_EQ(got, expected[t]) << "track " << t;
    }
}

TEST(RowRenderer, ChanceCellsDrawOncePerSwitchedOnCellInTrackOrder)
{
    RowRecord row;
    for (std::size_t t = 0; t < kTrackCount; ++t) {
        row.kinds[t] = CellKind::ChanceChordNote;
        row.values[t] = static_cast<std::uint8_t>(t % 5);
    }
    RenderContext context;
    context.options.tracks = {true, false, true, true, false, true, true, true};
    const PreparedChord chord = prepareChord(chordOf({0, 4, 7}), kExtend);

    for (std::uint32_t seed : {1u, 7u, 12345u}) {
        music::RandomSource::seed(seed);
        std::vector<bool> expectSounds;
        for (bool on : context.options.tracks)
            if (on)
                expectSounds.push_back(music::RandomSource::random(50) < 25);
        const int after = music::RandomSource::next();

        music::RandomSource::seed(seed);
        const RowEvents events = renderRow(chord, row, TrackOctaves{}, context);
        EXPECT_EQ(music::RandomSource::next(), after) << "one draw per switched-on cell";
        std::size_t draw = 0;
        for (std::size_t t = 0; t < kTrackCount; ++t) {
            if (!context.options.tracks[t]) {
                EXPECT_EQ(events[t].type, TrackEvent::Type::None);
                continue;
            }
            const bool sounds = expectSounds[draw++];
            EXPECT_EQ(events[t].type, sounds ? TrackEvent::Type::Note : TrackEvent::Type::None)
                << "seed " << seed << " track " << t;
            if (sounds) {
                EXPECT_EQ(events[t].note, 48 + chord.notes[t % 5]);
            }
        }
    }
}

TEST(RowRenderer, PartRowUsesTheChordsPatternAndToleratesBadIndices)
{
    Part p = Part::makeNew();
    p.patterns().pattern(0).setCell(2, 5, PatternCell{CellKind::FixedNote, 9, 0});
    p.patterns().pattern(0).setTrackOctave(2, 10);
    PartChord chord = chordOf({0, 4, 7});
    p.append(chord);
    chord.pattern = 40; // a damaged file can point past the list
    p.append(chord);

    const RenderOptions options;
    const PreparedChord prepared = prepareChord(p.chord(0), options.indexOption);
    RowEvents events = renderPartRow(p, prepared, 0, 5, options);
    EXPECT_EQ(events[2].type, TrackEvent::Type::Note);
    EXPECT_EQ(events[2].note, 9 + 12 * 5);
    for (int row : {-1, 64, 200})
        EXPECT_EQ(renderPartRow(p, prepared, 0, row, options), RowEvents{}) << row;
    EXPECT_EQ(renderPartRow(p, prepared, 1, 5, options), RowEvents{});
}
