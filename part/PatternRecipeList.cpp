#include "part/PatternRecipeList.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "music/TextLineReader.h"

namespace part {

PatternRecipeList PatternRecipeList::builtIn()
{
    static constexpr const char* kLines[] = {
        "arpeggio step=2 name=\"Arpeggio up\"",
        "arpeggio order=up-down step=2 name=\"Arpeggio up and down\"",
        "arpeggio octaves=2 name=\"Arpeggio over two octaves\"",
        "arpeggio order=converge step=2 length=1 name=\"Arpeggio from the outside in\"",
        "block length=14 name=\"Block chord\"",
        "block step=4 length=2 name=\"Block chord on every beat\"",
        "strum every=1 name=\"Strum\"",
        "euclid pulses=3 steps=8 step=2 name=\"Tresillo E(3,8)\"",
        "euclid pulses=5 steps=8 step=2 play=arpeggio order=up-down name=\"Euclidean arpeggio\"",
        "euclid pulses=3 steps=8 rotate=0,2,4 name=\"Three rotated rhythms\"",
        "random density=30 chance=50 step=2 length=1 name=\"Random sparkle\"",
        "block spread=-1,0,0 length=14 name=\"Block chord, bass an octave down\"",
    };
    PatternRecipeList list;
    for (const char* line : kLines) {
        PatternRecipe recipe;
        if (parseRecipe(line, recipe))
            list.append(std::move(recipe));
    }
    return list;
}

void PatternRecipeList::replace(int index, PatternRecipe recipe)
{
    if (index >= 0 && index < count())
        m_recipes[static_cast<std::size_t>(index)] = std::move(recipe);
}

void PatternRecipeList::remove(int index)
{
    if (index >= 0 && index < count())
        m_recipes.erase(m_recipes.begin() + index);
}

std::string PatternRecipeList::serialize() const
{
    std::string out = std::string(kMagic) + "\n";
    for (const PatternRecipe& recipe : m_recipes)
        out += formatRecipe(recipe) + "\n";
    return out;
}

music::Result PatternRecipeList::parse(std::string_view bytes)
{
    music::TextLineReader in(bytes);
    if (!music::equalsIgnoringCase(in.readLine(), kMagic))
        return music::Result::failure(kMagicError);
    std::vector<PatternRecipe> recipes;
    for (int line = 2; !in.atEnd(); ++line) {
        const std::string text = in.readLine();
        const std::size_t first = text.find_first_not_of(" \t");
        if (first == std::string::npos || text[first] == '#')
            continue;
        PatternRecipe recipe;
        if (const music::Result result = parseRecipe(text, recipe); !result)
            return music::Result::failure("Line " + std::to_string(line) + ": " + result.message());
        recipes.push_back(std::move(recipe));
    }
    m_recipes = std::move(recipes);
    return music::Result::success();
}

music::Result PatternRecipeList::load(const std::filesystem::path& path)
{
    const std::optional<std::string> bytes = music::readFileBytes(path);
    if (!bytes)
        return music::Result::failure(kOpenError);
    return parse(*bytes);
}

music::Result PatternRecipeList::save(const std::filesystem::path& path) const
{
    if (!music::writeFileSafely(path, serialize()))
        return music::Result::failure(kOpenError);
    return music::Result::success();
}

} // namespace part
