#include "part/RowRenderer.h"
#include "music/RandomSource.h"

#include <gtest/gtest.h>

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

/** One word per track: the note played, "off" for an off-event, "-" for nothing. */
std::string describe(const RowEvents& events)
{
    std::string out;
    for (const TrackEvent& e : events)
        out += e.type == TrackEvent::Type::Note  ? std::to_string(e.note) + " "
               : e.type == TrackEvent::Type::Off ? "off "
                                                 : "- ";
    return out;
}

// One cell on track 0 with track 0's octave setting; the other tracks must stay silent.
struct CellCase
{
    const char* what;
    CellKind kind;
    std::uint8_t value, octaveByte, trackOctave, baseOctave;
    IndexOption option;
    int limit;            // limit note + 12 * limit octave; -1: no limit
    const char* expected; // as describe() words it
};

void expectCell(const CellCase& c, const PartChord& chord,
                const PitchClassFlags& flags = kAllPitchClassesAllowed)
{
    RenderContext context{{}, c.baseOctave, flags};
    context.options.indexOption = c.option;
    context.options.limitActive = c.limit >= 0;
    context.options.limitNote = static_cast<std::uint8_t>(c.limit % 12);
    context.options.limitOctave = static_cast<std::uint8_t>(c.limit / 12);
    const RowRecord row{{c.kind}, {c.value}, {c.octaveByte}};
    const RowEvents events =
        renderRow(prepareChord(chord, c.option), row, TrackOctaves{c.trackOctave}, context);
    EXPECT_EQ(describe(events), std::string(c.expected) + " - - - - - - - ") << c.what;
}

constexpr auto kFixed = CellKind::FixedNote;
constexpr auto kChord = CellKind::ChordNote;
constexpr auto kExtend = IndexOption::ExtendChord;
constexpr auto kOff = IndexOption::OffEvent;
constexpr auto kIgnore = IndexOption::Ignore;

} // namespace

TEST(RowRenderer, CellsPlayWhatTheirKindOctaveSettingAndLimitAsk)
{
    const CellCase cases[] = {
        {"fixed: base octave", kFixed, 7, 0, 0, 4, kIgnore, -1, "55"},
        {"fixed: setting 3 is octave 4 whatever the base", kFixed, 7, 0, 3, 1, kIgnore, -1, "55"},
        {"fixed: setting 7 is octave 8", kFixed, 0, 0, 7, 4, kIgnore, -1, "96"},
        {"fixed: B-2 below 0 wraps and caps at 9", kFixed, 7, 0, 8, 1, kIgnore, -1, "115"},
        {"fixed: B-1 below 0 wraps and caps at 9", kFixed, 7, 0, 9, 0, kIgnore, -1, "115"},
        {"fixed: B+1", kFixed, 7, 0, 10, 4, kIgnore, -1, "67"},
        {"fixed: B+2 above 9 caps", kFixed, 7, 0, 11, 8, kIgnore, -1, "115"},
        {"fixed: unknown setting is the base", kFixed, 7, 0, 12, 4, kIgnore, -1, "55"},
        {"fixed: base octave above 9 caps", kFixed, 0, 0, 0, 12, kIgnore, -1, "108"},
        {"fixed: cell octave replaces the track's", kFixed, 7, 5, 11, 4, kIgnore, -1, "67"},
        {"fixed: limit lowers by whole octaves", kFixed, 7, 5, 0, 4, kIgnore, 48, "43"},
        {"fixed: limit allows one half-note above", kFixed, 1, 0, 0, 4, kIgnore, 48, "49"},
        {"fixed: just above the limit drops an octave", kFixed, 2, 0, 0, 4, kIgnore, 48, "38"},
        {"fixed: limit far below keeps the pitch class", kFixed, 11, 9, 0, 4, kIgnore, 24, "23"},
        {"fixed: limit in octave 0 keeps the lowest note", kFixed, 5, 0, 0, 4, kIgnore, 0, "5"},
        {"chord: C up to D is free", kChord, 0, 2, 0, 4, kIgnore, -1, "50"},
        {"chord: C down to A# stays below", kChord, 0, 1, 0, 4, kIgnore, -1, "46"},
        {"chord: E up to F# falls back (half-note from G)", kChord, 1, 2, 0, 4, kIgnore, -1, "52"},
        {"chord: G down to F falls back (half-note from E)", kChord, 2, 1, 0, 4, kIgnore, -1, "55"},
        {"chord: other octave bytes ask for nothing", kChord, 0, 3, 0, 4, kIgnore, -1, "48"},
        {"chord: setting 3 replaces the octave", kChord, 2, 0, 3, 7, kIgnore, -1, "55"},
        {"chord: B-2 from base 1 wraps to 9", kChord, 0, 0, 8, 1, kIgnore, -1, "108"},
        {"chord: limit lowers by octaves", kChord, 2, 0, 0, 4, kIgnore, 48, "43"},
        {"chord: limit at the note keeps it", kChord, 2, 0, 0, 4, kIgnore, 54, "55"},
        {"extended: 4th note is C an octave up", kChord, 3, 0, 0, 4, kExtend, -1, "60"},
        {"extended: 5th note is E an octave up", kChord, 4, 0, 0, 4, kExtend, -1, "64"},
        {"carry: setting 3 replaces it", kChord, 4, 0, 3, 4, kExtend, -1, "52"},
        {"carry: capped at octave 9", kChord, 4, 0, 0, 9, kExtend, -1, "112"},
        {"extended: beyond five is nothing", kChord, 5, 0, 0, 4, kExtend, -1, "-"},
        {"off-event option", kChord, 5, 0, 0, 4, kOff, -1, "off"},
        {"off-event option: index = count", kChord, 3, 0, 0, 4, kOff, -1, "off"},
        {"off-event option: last note plays", kChord, 2, 0, 0, 4, kOff, -1, "55"},
        {"ignore option", kChord, 5, 0, 0, 4, kIgnore, -1, "-"},
        {"off kind", CellKind::Off, 0, 0, 0, 4, kIgnore, -1, "off"},
        {"nothing kind", CellKind::Nothing, 3, 2, 0, 4, kOff, -1, "-"},
        {"unknown kind", static_cast<CellKind>(7), 0, 0, 0, 4, kOff, -1, "-"},
    };
    for (const CellCase& c : cases)
        expectCell(c, chordOf({0, 4, 7}));
}

TEST(RowRenderer, ChordNoteShiftsFallBackFromForbiddenPitchClasses)
{
    PitchClassFlags noD = kAllPitchClassesAllowed;
    noD[2] = 0;
    const PartChord triad = chordOf({0, 4, 7});
    expectCell({"C up to a forbidden D", kChord, 0, 2, 0, 4, kIgnore, -1, "48"}, triad, noD);
    expectCell({"E down to a forbidden D", kChord, 1, 1, 0, 4, kIgnore, -1, "52"}, triad, noD);
    expectCell({"G up to A is allowed", kChord, 2, 2, 0, 4, kIgnore, -1, "57"}, triad, noD);
}

TEST(RowRenderer, PreparingExtendsShortChordsAndCutsLongOnesToFive)
{
    const struct
    {
        PartChord chord;
        IndexOption option;
        std::vector<int> expected;
    } cases[] = {
        {chordOf({0, 4, 7}), kExtend, {0, 4, 7, 12, 16}},
        {chordOf({0, 7}), kExtend, {0, 7, 12, 19, 24}},
        {chordOf({5}), kExtend, {5, 17, 29, 41, 53}},
        {chordOf({0, 4, 7, 11, 14, 17, 21}), kExtend, {0, 4, 7, 11, 14}},
        {chordOf({}), kExtend, {}},
        {chordOf({0, 4, 7}), kOff, {0, 4, 7}},
        {chordOf({0, 4, 7, 11, 14, 17, 21}), kIgnore, {0, 4, 7, 11, 14, 17, 21}},
    };
    for (const auto& c : cases) {
        const PreparedChord prepared = prepareChord(c.chord, c.option);
        EXPECT_EQ(std::vector<int>(prepared.notes.begin(), prepared.notes.begin() + prepared.count),
                  c.expected)
            << "chord of " << int(c.chord.noteCount) << " notes";
    }

    PartChord damaged = chordOf({0, 4, 7}); // a note count above seven from a damaged file
    damaged.noteCount = 200;
    EXPECT_EQ(prepareChord(damaged, kIgnore).count, PartChord::kMaxNotes);
    expectCell({"index 100", kChord, 100, 0, 0, 4, kOff, -1, "off"}, damaged);
}

TEST(RowRenderer, ChanceCellsDrawOncePerSwitchedOnCellAndSwitchedOffTracksStaySilent)
{
    constexpr auto kChance = CellKind::ChanceChordNote, kStop = CellKind::Off;
    const RowRecord row{{kChance, kStop, kChance, kChance, kStop, kChance, kChance, kStop},
                        {0, 1, 2, 3, 4, 0, 1, 2}};
    RenderContext context;
    context.options.tracks = {true, false, true, true, false, true, true, true};
    const PreparedChord chord = prepareChord(chordOf({0, 4, 7}), kExtend);
    for (std::uint32_t seed : {1u, 7u, 12345u}) {
        music::RandomSource::seed(seed);
        std::string expected;
        for (std::size_t t = 0; t < kTrackCount; ++t) {
            if (!context.options.tracks[t] || row.kinds[t] == kStop)
                expected += context.options.tracks[t] ? "off " : "- ";
            else if (music::RandomSource::random(50) < 25)
                expected += std::to_string(48 + chord.notes[t % 5]) + " ";
            else
                expected += "- ";
        }
        const int after = music::RandomSource::next();
        music::RandomSource::seed(seed);
        EXPECT_EQ(describe(renderRow(chord, row, TrackOctaves{}, context)), expected) << seed;
        EXPECT_EQ(music::RandomSource::next(), after) << "one draw per switched-on chance cell";
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
    EXPECT_EQ(describe(renderPartRow(p, prepared, 0, 5, options)), "- - 69 - - - - - ");
    for (int row : {-1, 64, 200})
        EXPECT_EQ(renderPartRow(p, prepared, 0, row, options), RowEvents{}) << row;
    EXPECT_EQ(renderPartRow(p, prepared, 1, 5, options), RowEvents{});
}
