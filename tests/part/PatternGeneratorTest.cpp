#include "part/PatternGenerator.h"
#include "part/PatternRecipeList.h"
#include "part/RowRenderer.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

using namespace part;

namespace {

std::string joined(const std::vector<int>& values)
{
    std::string out;
    for (int v : values)
        out += (out.empty() ? "" : " ") + std::to_string(v);
    return out;
}

/** Rows 0..rows-1 of a track, one word each: the note index ("c" before a chance note), "off"
 * or "-". */
std::string track(const Pattern& p, int t, int rows = 8)
{
    std::string out;
    for (int row = 0; row < rows; ++row) {
        const PatternCell& c = p.cell(t, row);
        out += row ? " " : "";
        out += c.kind == CellKind::ChordNote         ? std::to_string(c.value)
               : c.kind == CellKind::ChanceChordNote ? "c" + std::to_string(c.value)
               : c.kind == CellKind::Off             ? "off"
               : c.kind == CellKind::Nothing         ? "-"
                                                     : "?";
    }
    return out;
}

PatternRecipe recipe(const char* text)
{
    PatternRecipe r;
    const music::Result result = parseRecipe(text, r);
    EXPECT_TRUE(result) << text << ": " << result.message();
    return r;
}

constexpr NoteBudget kTriad{3, 3};

} // namespace

TEST(PatternGenerator, WalksVisitTheNotesInTheirOrder)
{
    struct Case
    {
        NoteOrder order;
        int positions;
        const char* expected;
    } const cases[] = {
        {NoteOrder::Up, 3, "0 1 2"},         {NoteOrder::Down, 3, "2 1 0"},
        {NoteOrder::UpDown, 3, "0 1 2 1"},   {NoteOrder::DownUp, 3, "2 1 0 1"},
        {NoteOrder::Converge, 4, "0 3 1 2"}, {NoteOrder::Converge, 5, "0 4 1 3 2"},
        {NoteOrder::UpDown, 2, "0 1"},       {NoteOrder::UpDown, 1, "0"},
        {NoteOrder::DownUp, 1, "0"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(joined(walkOf(c.order, c.positions)), c.expected)
            << noteOrderName(c.order) << " over " << c.positions;
}

TEST(PatternGenerator, EuclideanRhythmsSpreadThePulsesEvenly)
{
    EXPECT_EQ(joined(euclideanHits(3, 8, 0)), "0 3 6"); // the tresillo
    EXPECT_EQ(joined(euclideanHits(3, 8, 1)), "1 4 7");
    EXPECT_EQ(joined(euclideanHits(3, 8, -1)), "2 5 7");
    EXPECT_EQ(joined(euclideanHits(4, 16, 0)), "0 4 8 12");
    EXPECT_EQ(joined(euclideanHits(8, 8, 3)), "0 1 2 3 4 5 6 7");
    // Every E(k, n): k hits, the first on step 0, and gaps that differ by at most one step.
    for (int n = 1; n <= 32; ++n) {
        for (int k = 1; k <= n; ++k) {
            const std::vector<int> hits = euclideanHits(k, n, 0);
            ASSERT_EQ(static_cast<int>(hits.size()), k) << k << "," << n;
            EXPECT_EQ(hits.front(), 0);
            const int gap = n / k;
            for (int i = 0; i < k; ++i) {
                const int next = i + 1 < k ? hits[static_cast<std::size_t>(i + 1)] : n;
                const int d = next - hits[static_cast<std::size_t>(i)];
                EXPECT_TRUE(d == gap || d == gap + 1) << "E(" << k << "," << n << ") gap " << d;
            }
        }
    }
}

TEST(PatternGenerator, RecipesFillTheTracksAndRowsTheyShould)
{
    struct Case
    {
        const char* recipe;
        std::vector<const char*> tracks; // rows 0..7 of tracks 0, 1, ...
    } const cases[] = {
        {"arpeggio order=up-down", {"0 1 2 1 0 1 2 1", "- - - - - - - -"}},
        {"arpeggio order=down step=2 length=1", {"2 off 1 off 0 off 2 off"}},
        {"arpeggio step=2 length=3", {"0 - 1 - 2 - 0 -"}}, // an off never cuts the next note
        {"arpeggio octaves=2", {"0 1 2 - - - 0 1", "- - - 0 1 2 - -"}},
        {"arpeggio notes=2 order=converge", {"0 1 0 1 0 1 0 1"}},
        {"block step=4 length=2",
         {"0 - off - 0 - off -", "1 - off - 1 - off -", "2 - off - 2 - off -", "- - - - - - - -"}},
        {"strum every=2 order=down", {"2 - - - - - - -", "- - 1 - - - - -", "- - - - 0 - - -"}},
        {"strum every=3 step=4", {"0 - - - 0 - - -", "- - - 1 - - - 1", "- - - - - - - -"}},
        {"euclid rotate=0,1", {"0 - - 0 - - 0 -", "- 1 - - 1 - - 1", "- 2 - - 2 - - 2"}},
        {"euclid play=arpeggio order=down", {"2 - - 1 - - 0 -", "- - - - - - - -"}},
        {"euclid pulses=2 steps=4 step=2", {"0 - - - 0 - - -"}},
        {"random density=100 chance=100 notes=1", {"c0 c0 c0 c0 c0 c0 c0 c0"}},
        {"random density=0", {"- - - - - - - -"}},
    };
    for (const Case& c : cases) {
        const Pattern p =
            generatePattern(Pattern(), recipe(c.recipe), PatternBlock::whole(), kTriad);
        for (std::size_t t = 0; t < c.tracks.size(); ++t)
            EXPECT_EQ(track(p, static_cast<int>(t)), c.tracks[t]) << c.recipe << ", track " << t;
    }
}

TEST(PatternGenerator, ABlockLeavesEverythingOutsideItAlone)
{
    Pattern before;
    for (int t = 0; t < kTrackCount; ++t) {
        for (int row = 0; row < kRowCount; ++row)
            before.setCell(t, row, PatternCell{CellKind::FixedNote, 7, 0});
        before.setTrackOctave(t, 3);
    }
    const PatternBlock block{2, 4, 8, 11};
    const PatternRecipe spread = recipe("block spread=-1,0,2,1,1");
    const Pattern after = generatePattern(before, spread, block, kTriad);
    for (int t = 0; t < kTrackCount; ++t) {
        for (int row = 0; row < kRowCount; ++row) {
            const bool inside = t >= 2 && t <= 4 && row >= 8 && row <= 11;
            if (!inside) {
                EXPECT_EQ(after.cell(t, row), before.cell(t, row)) << t << "," << row;
            }
        }
    }
    EXPECT_EQ(track(after, 2, 12), "? ? ? ? ? ? ? ? 0 - - -");
    EXPECT_EQ(track(after, 4, 12), "? ? ? ? ? ? ? ? 2 - - -");
    const TrackOctaves octaves{3, 3, 9, 0, 11, 3, 3, 3}; // the spread stops at the block's edge
    EXPECT_EQ(after.trackOctaves(), octaves);
    EXPECT_EQ(generatePattern(before, spread, PatternBlock{4, 2, 11, 8}, kTriad), after)
        << "a block given the other way round is the same block";
}

TEST(PatternGenerator, RandomCellsRepeatWithTheirSeed)
{
    const PatternRecipe a = recipe("random density=40 chance=30 seed=5");
    const Pattern first = generatePattern(Pattern(), a, PatternBlock::whole(), kTriad);
    EXPECT_EQ(generatePattern(Pattern(), a, PatternBlock::whole(), kTriad), first);
    const Pattern other = generatePattern(Pattern(), recipe("random density=40 chance=30 seed=6"),
                                          PatternBlock::whole(), kTriad);
    EXPECT_NE(other, first);
    // 512 cells at 40 %: far from none and far from all.
    EXPECT_GT(first.usedCellCount(), 150);
    EXPECT_LT(first.usedCellCount(), 260);
}

TEST(PatternGenerator, TheBudgetComesFromTheChordsOfThePattern)
{
    Part part = Part::makeNew();
    for (const auto& [notes, pattern] : {std::pair{4, 0}, {3, 0}, {0, 0}, {2, 1}, {7, 2}}) {
        PartChord c;
        c.noteCount = static_cast<std::uint8_t>(notes);
        c.pattern = static_cast<std::uint16_t>(pattern);
        part.append(c);
    }
    struct Case
    {
        int pattern;
        IndexOption option;
        NoteBudget expected;
    } const cases[] = {
        {0, IndexOption::ExtendChord, {3, 5}}, // an empty chord doesn't count
        {0, IndexOption::Ignore, {3, 3}},
        {1, IndexOption::OffEvent, {2, 2}},
        {2, IndexOption::ExtendChord, {7, 5}},
        {9, IndexOption::Ignore, {2, 2}}, // no chord on it: the part's fewest
    };
    for (const Case& c : cases)
        EXPECT_EQ(noteBudgetOf(part, c.pattern, c.option), c.expected) << c.pattern;
    EXPECT_EQ(noteBudgetOf(Part::makeNew(), 0, IndexOption::Ignore), (NoteBudget{3, 3}));
}

TEST(PatternGenerator, NoCellFallsSilentUnlessTheRecipeAllowsIt)
{
    const char* kinds[] = {"arpeggio", "block", "strum", "euclid", "random"};
    const char* orders[] = {"up", "down", "up-down", "converge", "random"};
    std::mt19937 rng(3);
    int allowedSilent = 0;
    for (int run = 0; run < 400; ++run) {
        Part part = Part::makeNew();
        for (int c = 0; c < 3; ++c) {
            PartChord chord;
            chord.setNotes({0, 4, 7, 11, 14, 17, 21});
            chord.noteCount = static_cast<std::uint8_t>(rng() % 7 + 1);
            part.append(chord);
        }
        const auto option = static_cast<IndexOption>(rng() % 3);
        const bool allow = rng() % 4 == 0;
        const std::string text = std::string(kinds[rng() % 5]) + " order=" + orders[rng() % 5] +
                                 " notes=" + std::to_string(rng() % 8) +
                                 " octaves=" + std::to_string(rng() % 3 + 1) +
                                 " play=" + (rng() % 2 ? "arpeggio" : "chord") + " density=100" +
                                 (allow ? " silent=allow" : "");
        const Pattern pattern = generatePattern(
            Pattern(), recipe(text.c_str()), PatternBlock::whole(), noteBudgetOf(part, 0, option));
        part.patterns().pattern(0) = pattern;

        RenderOptions options;
        options.indexOption = option;
        for (int c = 0; c < part.count(); ++c) {
            const PreparedChord chord = prepareChord(part.chord(c), option);
            for (int row = 0; row < kRowCount; ++row) {
                const RowEvents events = renderPartRow(part, chord, c, row, options);
                for (int t = 0; t < kTrackCount; ++t) {
                    const PatternCell& cell = pattern.cell(t, row);
                    const bool sounds =
                        events[static_cast<std::size_t>(t)].type == TrackEvent::Type::Note;
                    if (cell.kind != CellKind::ChordNote || sounds)
                        continue;
                    ++allowedSilent;
                    ASSERT_TRUE(allow) << text << ": index " << int(cell.value) << " of a "
                                       << int(part.chord(c).noteCount) << "-note chord";
                }
            }
        }
    }
    EXPECT_GT(allowedSilent, 0) << "silent=allow must reach beyond the chords";
}

TEST(PatternRecipe, TextReadsBackToTheSameRecipe)
{
    PatternRecipe full;
    full.name = "My \"fav\" \\ one";
    full.kind = RecipeKind::Euclid;
    full.order = NoteOrder::DownUp;
    full.notes = 4;
    full.octaves = 2;
    full.step = 2;
    full.every = 0;
    full.pulses = 5;
    full.steps = 12;
    full.rotate = {0, -3, 64};
    full.arpeggiate = true;
    full.density = 0;
    full.chance = 100;
    full.seed = 4294967295u;
    full.length = 64;
    full.spread = {-2, 2};
    full.allowSilent = true;
    for (const PatternRecipe& r : {full, PatternRecipe{}}) {
        PatternRecipe back;
        ASSERT_TRUE(parseRecipe(formatRecipe(r), back)) << formatRecipe(r);
        EXPECT_EQ(back, r) << formatRecipe(r);
    }
    EXPECT_EQ(formatRecipe(PatternRecipe{}), "arpeggio");
    PatternRecipe loose;
    ASSERT_TRUE(parseRecipe("  EUCLID  Order=UpDown  name=Tresillo\t", loose));
    EXPECT_EQ(formatRecipe(loose), "euclid order=up-down name=\"Tresillo\"");
}

TEST(PatternRecipe, MistakesAreNamedAndLeaveTheRecipeAlone)
{
    struct Case
    {
        const char* text;
        const char* message;
    } const cases[] = {
        {"", "no recipe: start with arpeggio, block, strum, euclid or random"},
        {"arp", "unknown recipe \"arp\": start with arpeggio, block, strum, euclid or random"},
        {"arpeggio speed=2", "unknown key \"speed\""},
        {"arpeggio notes", "\"notes\" is no key=value"},
        {"arpeggio notes=8", "notes: a whole number from 0 to 7"},
        {"arpeggio step=1.5", "step: a whole number from 0 to 64"},
        {"arpeggio octaves=4", "octaves: a whole number from 1 to 3"},
        {"arpeggio order=sideways", "order: up, down, up-down, down-up, converge or random"},
        {"euclid pulses=9", "pulses: not more than steps (8)"},
        {"euclid rotate=1,,2", "rotate: up to 8 whole numbers from -64 to 64, separated by commas"},
        {"block spread=3", "spread: up to 8 whole numbers from -2 to 2, separated by commas"},
        {"block step=2 step=3", "step given twice"},
        {"block name=\"open", "a quote is not closed"},
        {"random seed=-1", "seed: a whole number from 0 to 4294967295"},
    };
    for (const Case& c : cases) {
        PatternRecipe r;
        r.name = "kept";
        const music::Result result = parseRecipe(c.text, r);
        EXPECT_FALSE(result) << c.text;
        EXPECT_EQ(result.message(), c.message) << c.text;
        EXPECT_EQ(r.name, "kept") << c.text;
    }
}

TEST(PatternRecipeList, SavesLoadsAndRefusesAFileWithABadLine)
{
    const PatternRecipeList builtIn = PatternRecipeList::builtIn();
    EXPECT_EQ(builtIn.count(), 12) << "every built-in line must parse";

    TempFolder folder;
    const auto file = folder.path() / PatternRecipeList::kFileName;
    ASSERT_TRUE(builtIn.save(file));
    PatternRecipeList loaded;
    ASSERT_TRUE(loaded.load(file));
    EXPECT_EQ(loaded, builtIn);

    PatternRecipeList list;
    ASSERT_TRUE(list.parse("TONALMANCER PATTERN RECIPES\n\n# mine\nblock name=A\r\n"));
    EXPECT_EQ(list.count(), 1);
    const music::Result bad = list.parse("Tonalmancer pattern recipes\nblock\nstrum every=x\n");
    EXPECT_EQ(bad.message(), "Line 3: every: a whole number from 0 to 63");
    EXPECT_EQ(list.count(), 1) << "a refused file leaves the list as it was";
    EXPECT_EQ(list.parse("Tonalmancer pattern presets\n").message(),
              PatternRecipeList::kMagicError);
    EXPECT_EQ(list.load(folder.path() / "none.rcp").message(), PatternRecipeList::kOpenError);
}
