#include "part/PatternRecipe.h"

#include "music/TextLineReader.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <set>
#include <utility>

namespace part {

namespace {

constexpr std::array<std::pair<RecipeKind, std::string_view>, 5> kKinds = {{
    {RecipeKind::Arpeggio, "arpeggio"},
    {RecipeKind::Block, "block"},
    {RecipeKind::Strum, "strum"},
    {RecipeKind::Euclid, "euclid"},
    {RecipeKind::Random, "random"},
}};

constexpr std::array<std::pair<NoteOrder, std::string_view>, 6> kOrders = {{
    {NoteOrder::Up, "up"},
    {NoteOrder::Down, "down"},
    {NoteOrder::UpDown, "up-down"},
    {NoteOrder::DownUp, "down-up"},
    {NoteOrder::Converge, "converge"},
    {NoteOrder::Random, "random"},
}};

/** Words of a line: blanks separate them, and a double-quoted stretch (with \" and \\) keeps
 * its blanks. Nothing when a quote is left open. */
std::optional<std::vector<std::string>> words(std::string_view text)
{
    std::vector<std::string> out;
    std::string word;
    bool inWord = false;
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted) {
            if (c == '\\' && i + 1 < text.size())
                word += text[++i];
            else if (c == '"')
                quoted = false;
            else
                word += c;
        } else if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
            if (inWord)
                out.push_back(std::move(word));
            word.clear();
            inWord = false;
        } else {
            inWord = true;
            if (c == '"')
                quoted = true;
            else
                word += c;
        }
    }
    if (quoted)
        return std::nullopt;
    if (inWord)
        out.push_back(std::move(word));
    return out;
}

std::optional<std::int64_t> integer(std::string_view text)
{
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::string rangeMessage(std::string_view key, std::int64_t min, std::int64_t max)
{
    return std::string(key) + ": a whole number from " + std::to_string(min) + " to " +
           std::to_string(max);
}

music::Result readInt(std::string_view key, std::string_view value, std::int64_t min,
                      std::int64_t max, std::int64_t& out)
{
    const std::optional<std::int64_t> v = integer(value);
    if (!v || *v < min || *v > max)
        return music::Result::failure(rangeMessage(key, min, max));
    out = *v;
    return music::Result::success();
}

music::Result readList(std::string_view key, std::string_view value, int min, int max,
                       std::size_t maxCount, std::vector<int>& out)
{
    std::vector<int> list;
    std::size_t start = 0;
    while (start <= value.size()) {
        const std::size_t comma = std::min(value.find(',', start), value.size());
        const std::optional<std::int64_t> v = integer(value.substr(start, comma - start));
        if (!v || *v < min || *v > max || list.size() == maxCount)
            return music::Result::failure(std::string(key) + ": up to " + std::to_string(maxCount) +
                                          " whole numbers from " + std::to_string(min) + " to " +
                                          std::to_string(max) + ", separated by commas");
        list.push_back(static_cast<int>(*v));
        start = comma + 1;
    }
    out = std::move(list);
    return music::Result::success();
}

template <typename Enum, std::size_t N>
std::optional<Enum> lookUp(const std::array<std::pair<Enum, std::string_view>, N>& table,
                           std::string_view text)
{
    for (const auto& [value, name] : table) {
        if (music::equalsIgnoringCase(text, name))
            return value;
    }
    return std::nullopt;
}

template <typename Enum, std::size_t N>
std::string choices(const std::array<std::pair<Enum, std::string_view>, N>& table)
{
    std::string out;
    for (std::size_t i = 0; i < N; ++i)
        out += std::string(i == 0 ? "" : i + 1 == N ? " or " : ", ") + std::string(table[i].second);
    return out;
}

/** Reads one key=value into the recipe. */
music::Result readKey(std::string_view key, std::string_view value, PatternRecipe& r)
{
    std::int64_t n = 0;
    music::Result result;
    auto asInt = [&](int& field, std::int64_t min, std::int64_t max) {
        result = readInt(key, value, min, max, n);
        if (result)
            field = static_cast<int>(n);
        return result;
    };
    if (key == "name") {
        r.name = std::string(value);
    } else if (key == "order") {
        // "updown" and "downup" are read too: musicians write them both ways.
        std::string text = music::toLower(value);
        if (text == "updown")
            text = "up-down";
        else if (text == "downup")
            text = "down-up";
        const std::optional<NoteOrder> order = lookUp(kOrders, text);
        if (!order)
            return music::Result::failure("order: " + choices(kOrders));
        r.order = *order;
    } else if (key == "notes") {
        return asInt(r.notes, 0, PatternRecipe::kMaxNotes);
    } else if (key == "octaves") {
        return asInt(r.octaves, 1, PatternRecipe::kMaxOctaves);
    } else if (key == "step") {
        return asInt(r.step, 0, 64);
    } else if (key == "every") {
        return asInt(r.every, 0, 63);
    } else if (key == "pulses") {
        return asInt(r.pulses, 1, 64);
    } else if (key == "steps") {
        return asInt(r.steps, 1, 64);
    } else if (key == "rotate") {
        return readList(key, value, -64, 64, 8, r.rotate);
    } else if (key == "play") {
        if (music::equalsIgnoringCase(value, "chord"))
            r.arpeggiate = false;
        else if (music::equalsIgnoringCase(value, "arpeggio"))
            r.arpeggiate = true;
        else
            return music::Result::failure("play: chord or arpeggio");
    } else if (key == "density") {
        return asInt(r.density, 0, 100);
    } else if (key == "chance") {
        return asInt(r.chance, 0, 100);
    } else if (key == "seed") {
        result = readInt(key, value, 0, 4294967295LL, n);
        if (result)
            r.seed = static_cast<std::uint32_t>(n);
        return result;
    } else if (key == "length") {
        return asInt(r.length, 0, 64);
    } else if (key == "spread") {
        return readList(key, value, -2, 2, 8, r.spread);
    } else if (key == "silent") {
        if (music::equalsIgnoringCase(value, "avoid"))
            r.allowSilent = false;
        else if (music::equalsIgnoringCase(value, "allow"))
            r.allowSilent = true;
        else
            return music::Result::failure("silent: avoid or allow");
    } else {
        return music::Result::failure("unknown key \"" + std::string(key) + "\"");
    }
    return music::Result::success();
}

std::string joined(const std::vector<int>& list)
{
    std::string out;
    for (std::size_t i = 0; i < list.size(); ++i)
        out += (i ? "," : "") + std::to_string(list[i]);
    return out;
}

std::string quoted(std::string_view text)
{
    std::string out = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\')
            out += '\\';
        out += (c == '\n' || c == '\r') ? ' ' : c; // a recipe is one line
    }
    return out + "\"";
}

} // namespace

std::string_view recipeKindName(RecipeKind kind)
{
    for (const auto& [value, name] : kKinds) {
        if (value == kind)
            return name;
    }
    return "arpeggio";
}

std::string_view noteOrderName(NoteOrder order)
{
    for (const auto& [value, name] : kOrders) {
        if (value == order)
            return name;
    }
    return "up";
}

music::Result parseRecipe(std::string_view text, PatternRecipe& recipe)
{
    const std::optional<std::vector<std::string>> list = words(text);
    if (!list)
        return music::Result::failure("a quote is not closed");
    if (list->empty())
        return music::Result::failure("no recipe: start with " + choices(kKinds));
    const std::optional<RecipeKind> kind = lookUp(kKinds, (*list)[0]);
    if (!kind)
        return music::Result::failure("unknown recipe \"" + (*list)[0] + "\": start with " +
                                      choices(kKinds));
    PatternRecipe r;
    r.kind = *kind;
    std::set<std::string> seen;
    for (std::size_t i = 1; i < list->size(); ++i) {
        const std::string& word = (*list)[i];
        const std::size_t eq = word.find('=');
        if (eq == std::string::npos || eq == 0)
            return music::Result::failure("\"" + word + "\" is no key=value");
        const std::string key = music::toLower(std::string_view(word).substr(0, eq));
        if (!seen.insert(key).second)
            return music::Result::failure(key + " given twice");
        if (music::Result result = readKey(key, std::string_view(word).substr(eq + 1), r); !result)
            return result;
    }
    if (r.pulses > r.steps)
        return music::Result::failure("pulses: not more than steps (" + std::to_string(r.steps) +
                                      ")");
    recipe = std::move(r);
    return music::Result::success();
}

std::string formatRecipe(const PatternRecipe& r)
{
    const PatternRecipe d;
    std::string out(recipeKindName(r.kind));
    auto add = [&out](std::string_view key, const std::string& value) {
        out += ' ';
        out += key;
        out += '=';
        out += value;
    };
    if (r.order != d.order)
        add("order", std::string(noteOrderName(r.order)));
    if (r.notes != d.notes)
        add("notes", std::to_string(r.notes));
    if (r.octaves != d.octaves)
        add("octaves", std::to_string(r.octaves));
    if (r.step != d.step)
        add("step", std::to_string(r.step));
    if (r.every != d.every)
        add("every", std::to_string(r.every));
    if (r.pulses != d.pulses)
        add("pulses", std::to_string(r.pulses));
    if (r.steps != d.steps)
        add("steps", std::to_string(r.steps));
    if (r.rotate != d.rotate)
        add("rotate", joined(r.rotate));
    if (r.arpeggiate != d.arpeggiate)
        add("play", r.arpeggiate ? "arpeggio" : "chord");
    if (r.density != d.density)
        add("density", std::to_string(r.density));
    if (r.chance != d.chance)
        add("chance", std::to_string(r.chance));
    if (r.seed != d.seed)
        add("seed", std::to_string(r.seed));
    if (r.length != d.length)
        add("length", std::to_string(r.length));
    if (r.spread != d.spread)
        add("spread", joined(r.spread));
    if (r.allowSilent != d.allowSilent)
        add("silent", r.allowSilent ? "allow" : "avoid");
    if (!r.name.empty())
        add("name", quoted(r.name));
    return out;
}

} // namespace part
