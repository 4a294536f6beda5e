#pragma once

#include "music/Result.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace part {

/** How a recipe fills a block of a pattern. */
enum class RecipeKind : std::uint8_t
{
    Arpeggio, // one chord note after the other
    Block,    // all chord notes at once, one track each
    Strum,    // as Block, one more voice every `every` rows
    Euclid,   // E(pulses, steps): pulses spread as evenly as possible over the steps
    Random,   // random chord notes on random cells
};

/** The order in which an arpeggio (or a Euclidean arpeggio) walks the chord notes. */
enum class NoteOrder : std::uint8_t
{
    Up,       // 0 1 2
    Down,     // 2 1 0
    UpDown,   // 0 1 2 1 (the turning notes once)
    DownUp,   // 2 1 0 1
    Converge, // from the outside in: 0 3 1 2
    Random,   // any note each step (from the seed)
};

/**
 * A pattern-generator recipe: plain data, written as one line of text
 *
 *     KIND key=value key=value ...
 *
 * for example `arpeggio order=up-down notes=3 step=2 length=1` or
 * `euclid pulses=3 steps=8 rotate=0,2 name="Tresillo"`. Keys left out keep the defaults below;
 * `formatRecipe` writes only keys that differ from them, so a line reads back to the same recipe.
 * Keys that a kind does not use are kept with the recipe and have no effect.
 *
 * Chord notes are addressed by index from the first note, so `notes=3` uses the first three
 * notes of each chord. Indices that a chord of the pattern lacks would be silent (or an
 * off-event, by the renderer's index option); the generator keeps `notes` within what every
 * chord can play (see PatternGenerator) unless `silent=allow` is given.
 */
struct PatternRecipe
{
    static constexpr int kMaxNotes = 7;
    static constexpr int kMaxOctaves = 3; // the track octave settings reach B + 2

    std::string name; // how the recipe list shows it; may be empty
    RecipeKind kind = RecipeKind::Arpeggio;
    /** Arpeggio and Euclid with play=arpeggio: the walk; Strum: Up or Down only. */
    NoteOrder order = NoteOrder::Up;
    /** Chord notes used, from the first: 1..7; 0 uses as many as the chords have. */
    int notes = 0;
    /** Arpeggio: octaves spanned, 1..3, each on its own track set to B, B+1, B+2. */
    int octaves = 1;
    /**
     * Rows from one step to the next, 1..64; 0 is the kind's own: one row for Arpeggio, Euclid
     * and Random, the whole block (a single hit) for Block and Strum.
     */
    int step = 0;
    /** Strum: rows between one voice and the next, 0..63. */
    int every = 1;
    /** Euclid: E(pulses, steps), 1 <= pulses <= steps <= 64. */
    int pulses = 3;
    int steps = 8;
    /**
     * Euclid: how many steps each track's rhythm starts later (-64..64), one value per track of
     * the block; the last value holds for the tracks after it. Empty: no rotation.
     */
    std::vector<int> rotate;
    /** Euclid: false, every track plays its own note (track k note k); true, one voice walks
     * `order` on the hits (a Euclidean arpeggio). */
    bool arpeggiate = false;
    /** Random: percent of cells that get a note, 0..100. */
    int density = 50;
    /** Random: percent of those notes that are chance cells (sounding with even odds), 0..100. */
    int chance = 0;
    /** Random order and Random cells: the same seed gives the same pattern. */
    std::uint32_t seed = 1;
    /** Rows a note sounds before an off-event, 0..64; 0 lets it sound until the track's next
     * note. An off-event never cuts a later note short. */
    int length = 0;
    /**
     * Octave of each track of the block against the base octave, -2..2, first track first
     * (-1,0,0 puts the first voice an octave down); tracks past the list keep their setting.
     * Given, it overrides the octaves an arpeggio sets.
     */
    std::vector<int> spread;
    /** Address the notes asked for even where a chord of the pattern lacks them. */
    bool allowSilent = false;

    friend bool operator==(const PatternRecipe&, const PatternRecipe&) = default;
};

/**
 * Reads a recipe line into `recipe`. On a mistake the message names it ("unknown key \"x\"",
 * "steps: a whole number from 1 to 64") and `recipe` is unchanged.
 */
music::Result parseRecipe(std::string_view text, PatternRecipe& recipe);

/** The recipe as one line that `parseRecipe` reads back to the same recipe. */
std::string formatRecipe(const PatternRecipe& recipe);

/** "arpeggio", "block", ... as the text format writes the kind. */
std::string_view recipeKindName(RecipeKind kind);
/** "up", "up-down", ... as the text format writes the order. */
std::string_view noteOrderName(NoteOrder order);

} // namespace part
