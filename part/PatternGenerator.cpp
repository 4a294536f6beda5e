#include "part/PatternGenerator.h"

#include <algorithm>
#include <optional>
#include <random>

namespace part {

namespace {

/** The chord's extension under "start again one octave higher" (see prepareChord). */
constexpr int kExtendedChordNotes = 5;

/** The track octave setting for an octave offset -2..2 from the base octave. */
std::uint8_t settingForOffset(int offset)
{
    switch (offset) {
    case -2:
        return 8;
    case -1:
        return 9;
    case 1:
        return 10;
    case 2:
        return 11;
    default:
        return 0;
    }
}

struct Note
{
    int index = 0;
    bool chance = false;
};

/** The generated cells of the block, before they are written into the pattern. */
class BlockGrid
{
public:
    BlockGrid(int tracks, int rows)
        : m_tracks(tracks), m_rows(rows), m_notes(static_cast<std::size_t>(tracks * rows))
    {}

    int tracks() const { return m_tracks; }
    int rows() const { return m_rows; }

    void place(int track, int row, int index, bool chance = false)
    {
        if (track >= 0 && track < m_tracks && row >= 0 && row < m_rows)
            m_notes[at(track, row)] = Note{index, chance};
    }
    const std::optional<Note>& note(int track, int row) const { return m_notes[at(track, row)]; }

private:
    std::size_t at(int track, int row) const
    {
        return static_cast<std::size_t>(track * m_rows + row);
    }

    int m_tracks;
    int m_rows;
    std::vector<std::optional<Note>> m_notes;
};

/** The recipe's own random numbers: std::mt19937 is the same everywhere, unlike distributions. */
class Draws
{
public:
    explicit Draws(std::uint32_t seed) : m_engine(seed) {}
    int below(int n) { return static_cast<int>(m_engine() % static_cast<std::uint32_t>(n)); }

private:
    std::mt19937 m_engine;
};

/** Walks `order` over notes x octaves, one position per call. */
class Walker
{
public:
    Walker(NoteOrder order, int notes, int octaves, Draws& draws)
        : m_order(order), m_notes(notes), m_positions(notes * octaves),
          m_walk(walkOf(order, notes * octaves)), m_draws(draws)
    {}

    /** The next note index and octave (the track within the block). */
    std::pair<int, int> next()
    {
        const int p = m_order == NoteOrder::Random
                          ? m_draws.below(m_positions)
                          : m_walk[static_cast<std::size_t>(m_step++) % m_walk.size()];
        return {p % m_notes, p / m_notes};
    }

private:
    NoteOrder m_order;
    int m_notes;
    int m_positions;
    std::vector<int> m_walk;
    Draws& m_draws;
    int m_step = 0;
};

int rotationOf(const std::vector<int>& rotate, int track)
{
    if (rotate.empty())
        return 0;
    return rotate[static_cast<std::size_t>(
        std::min<int>(track, static_cast<int>(rotate.size()) - 1))];
}

/** Fills the grid; returns the number of octaves an arpeggio spans (1 for the others). */
int fill(BlockGrid& grid, const PatternRecipe& recipe, int notes, Draws& draws)
{
    const int tracks = grid.tracks();
    const int rows = grid.rows();
    const int voices = std::min(notes, tracks);
    const int octaves = std::clamp(recipe.octaves, 1, std::min(tracks, PatternRecipe::kMaxOctaves));
    switch (recipe.kind) {
    case RecipeKind::Arpeggio: {
        const int step = recipe.step > 0 ? recipe.step : 1;
        Walker walker(recipe.order, notes, octaves, draws);
        for (int row = 0; row < rows; row += step) {
            const auto [index, octave] = walker.next();
            grid.place(octave, row, index);
        }
        return octaves;
    }
    case RecipeKind::Block:
    case RecipeKind::Strum: {
        const int step = recipe.step > 0 ? recipe.step : rows;
        const bool strum = recipe.kind == RecipeKind::Strum;
        const bool down = strum && recipe.order == NoteOrder::Down;
        for (int hit = 0; hit < rows; hit += step) {
            for (int k = 0; k < voices; ++k) {
                const int row = hit + (strum ? recipe.every * k : 0);
                if (row < hit + step) // a voice never spills into the next hit
                    grid.place(k, row, down ? voices - 1 - k : k);
            }
        }
        return 1;
    }
    case RecipeKind::Euclid: {
        const int step = recipe.step > 0 ? recipe.step : 1;
        const int steps = std::max(recipe.steps, 1);
        std::vector<std::vector<int>> hits;
        for (int k = 0; k < tracks; ++k) {
            std::vector<int> isHit(static_cast<std::size_t>(steps), 0);
            for (int s : euclideanHits(recipe.pulses, steps, rotationOf(recipe.rotate, k)))
                isHit[static_cast<std::size_t>(s)] = 1;
            hits.push_back(std::move(isHit));
        }
        Walker walker(recipe.order, notes, octaves, draws);
        for (int i = 0; i * step < rows; ++i) {
            const auto s = static_cast<std::size_t>(i % steps);
            if (recipe.arpeggiate) {
                if (hits[0][s] != 0) {
                    const auto [index, octave] = walker.next();
                    grid.place(octave, i * step, index);
                }
                continue;
            }
            for (int k = 0; k < voices; ++k) {
                if (hits[static_cast<std::size_t>(k)][s] != 0)
                    grid.place(k, i * step, k);
            }
        }
        return recipe.arpeggiate ? octaves : 1;
    }
    case RecipeKind::Random: {
        const int step = recipe.step > 0 ? recipe.step : 1;
        for (int t = 0; t < tracks; ++t) {
            for (int row = 0; row < rows; row += step) {
                if (draws.below(100) >= recipe.density)
                    continue;
                const int index = draws.below(notes);
                grid.place(t, row, index, draws.below(100) < recipe.chance);
            }
        }
        return 1;
    }
    }
    return 1;
}

} // namespace

PatternBlock PatternBlock::clamped() const
{
    PatternBlock b = *this;
    if (b.firstTrack > b.lastTrack)
        std::swap(b.firstTrack, b.lastTrack);
    if (b.firstRow > b.lastRow)
        std::swap(b.firstRow, b.lastRow);
    b.firstTrack = std::clamp(b.firstTrack, 0, kTrackCount - 1);
    b.lastTrack = std::clamp(b.lastTrack, 0, kTrackCount - 1);
    b.firstRow = std::clamp(b.firstRow, 0, kRowCount - 1);
    b.lastRow = std::clamp(b.lastRow, 0, kRowCount - 1);
    return b;
}

NoteBudget noteBudgetOf(const Part& part, int patternIndex, IndexOption option)
{
    auto fewest = [&part, patternIndex](bool onlyThisPattern) {
        int low = 0;
        for (const PartChord& chord : part.chords()) {
            const int count = std::min<int>(chord.noteCount, PartChord::kMaxNotes);
            if (count == 0 || (onlyThisPattern && chord.pattern != patternIndex))
                continue;
            low = low == 0 ? count : std::min(low, count);
        }
        return low;
    };
    int notes = fewest(true);
    if (notes == 0)
        notes = fewest(false);
    if (notes == 0)
        notes = 3;
    const int usable = option == IndexOption::ExtendChord ? kExtendedChordNotes : notes;
    return NoteBudget{notes, usable};
}

std::vector<int> walkOf(NoteOrder order, int positions)
{
    std::vector<int> walk;
    if (positions <= 0)
        return {0};
    const int last = positions - 1;
    switch (order) {
    case NoteOrder::Down:
        for (int p = last; p >= 0; --p)
            walk.push_back(p);
        break;
    case NoteOrder::UpDown:
        for (int p = 0; p <= last; ++p)
            walk.push_back(p);
        for (int p = last - 1; p >= 1; --p)
            walk.push_back(p);
        break;
    case NoteOrder::DownUp:
        for (int p = last; p >= 0; --p)
            walk.push_back(p);
        for (int p = 1; p <= last - 1; ++p)
            walk.push_back(p);
        break;
    case NoteOrder::Converge:
        for (int low = 0, high = last; low <= high; ++low, --high) {
            walk.push_back(low);
            if (high != low)
                walk.push_back(high);
        }
        break;
    case NoteOrder::Up:
    case NoteOrder::Random:
        for (int p = 0; p <= last; ++p)
            walk.push_back(p);
        break;
    }
    return walk;
}

std::vector<int> euclideanHits(int pulses, int steps, int rotation)
{
    // Step i is a hit when i * pulses mod steps < pulses: the pulses as evenly spread as
    // they can be, starting with a hit (the same rhythm as Bjorklund's, up to rotation).
    std::vector<int> hits;
    if (steps <= 0)
        return hits;
    for (int i = 0; i < steps; ++i) {
        const int j = ((i - rotation) % steps + steps) % steps;
        if ((j * pulses) % steps < pulses)
            hits.push_back(i);
    }
    return hits;
}

Pattern generatePattern(const Pattern& pattern, const PatternRecipe& recipe, PatternBlock block,
                        NoteBudget budget)
{
    block = block.clamped();
    int notes = recipe.notes > 0 ? recipe.notes : budget.chordNotes;
    if (!recipe.allowSilent)
        notes = std::min(notes, budget.usableNotes);
    notes = std::clamp(notes, 1, PatternRecipe::kMaxNotes);

    BlockGrid grid(block.trackCount(), block.rowCount());
    Draws draws(recipe.seed);
    const int octaves = fill(grid, recipe, notes, draws);

    Pattern out = pattern;
    for (int t = 0; t < grid.tracks(); ++t) {
        for (int row = 0; row < grid.rows(); ++row)
            out.setCell(block.firstTrack + t, block.firstRow + row, PatternCell{});
        // From the bottom row up, so the track's next note is known at each note: an off-event
        // goes in only before it.
        int nextNote = grid.rows();
        for (int row = grid.rows() - 1; row >= 0; --row) {
            const std::optional<Note>& note = grid.note(t, row);
            if (!note)
                continue;
            const CellKind kind = note->chance ? CellKind::ChanceChordNote : CellKind::ChordNote;
            out.setCell(block.firstTrack + t, block.firstRow + row,
                        PatternCell{kind, static_cast<std::uint8_t>(note->index), 0});
            if (recipe.length > 0 && row + recipe.length < nextNote)
                out.setCell(block.firstTrack + t, block.firstRow + row + recipe.length,
                            PatternCell{CellKind::Off, 0, 0});
            nextNote = row;
        }
    }

    if (!recipe.spread.empty()) {
        const int n = std::min<int>(static_cast<int>(recipe.spread.size()), grid.tracks());
        for (int t = 0; t < n; ++t)
            out.setTrackOctave(block.firstTrack + t,
                               settingForOffset(recipe.spread[static_cast<std::size_t>(t)]));
    } else if (octaves > 1) {
        for (int t = 0; t < octaves; ++t)
            out.setTrackOctave(block.firstTrack + t, settingForOffset(t));
    }
    return out;
}

} // namespace part
