#pragma once

#include "music/Result.h"
#include "part/PatternRecipe.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace part {

/**
 * The pattern generator's saved recipes: a small text file in the user folder that musicians
 * can pass around. The first line is the magic "Tonalmancer pattern recipes"; then one recipe a
 * line in the format of `formatRecipe` (its name in name="..."). Blank lines and lines starting
 * with "#" are skipped when reading.
 *
 * A file with a bad line is refused as a whole (the message names the line) and the list keeps
 * what it held, so saving afterwards cannot drop the recipes the file had.
 */
class PatternRecipeList
{
public:
    static constexpr const char* kMagic = "Tonalmancer pattern recipes";
    /** The file's name in the user folder (music::DataFolder::userFolder()). */
    static constexpr const char* kFileName = "recipes.rcp";
    static constexpr const char* kFileFilter =
        "Pattern recipes (*.rcp)|*.rcp|All Files (*.*)|*.*||";
    static constexpr const char* kOpenError = "Unable to open recipe file";
    static constexpr const char* kMagicError = "No recipe file";

    /** The recipes offered before the user has saved any. */
    static PatternRecipeList builtIn();

    int count() const { return static_cast<int>(m_recipes.size()); }
    /** index 0..count()-1; throws std::out_of_range outside. */
    const PatternRecipe& recipe(int index) const { return m_recipes.at(index); }
    const std::vector<PatternRecipe>& recipes() const { return m_recipes; }

    void append(PatternRecipe recipe) { m_recipes.push_back(std::move(recipe)); }
    /** Out of range: nothing happens. */
    void replace(int index, PatternRecipe recipe);
    void remove(int index);
    void clear() { m_recipes.clear(); }

    std::string serialize() const;
    /** Replaces the list by the recipes in `bytes`; on a failure the list is unchanged. */
    music::Result parse(std::string_view bytes);
    music::Result load(const std::filesystem::path& path);
    /** Writes safely: the old file survives a failed save. */
    music::Result save(const std::filesystem::path& path) const;

    friend bool operator==(const PatternRecipeList&, const PatternRecipeList&) = default;

private:
    std::vector<PatternRecipe> m_recipes;
};

} // namespace part
