#include "cli/Arguments.h"

#include "music/Utf8Path.h"

#include <algorithm>
#include <charconv>

namespace cli {

Arguments Arguments::parse(const std::vector<std::string>& tokens,
                           const std::vector<OptionSpec>& known)
{
    Arguments args;
    bool onlyPositionals = false;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const std::string& token = tokens[i];
        const bool isShort = token.size() == 2 && token[0] == '-' && token[1] != '-' &&
                             !(token[1] >= '0' && token[1] <= '9');
        const bool isLong = token.size() > 2 && token.compare(0, 2, "--") == 0;
        if (onlyPositionals || (!isShort && !isLong)) {
            if (token == "--" && !onlyPositionals) {
                onlyPositionals = true;
                continue;
            }
            args.m_positionals.push_back(token);
            continue;
        }
        std::string name = isShort ? token : token.substr(2);
        std::optional<std::string> inlineValue;
        if (const auto eq = name.find('='); isLong && eq != std::string::npos) {
            inlineValue = name.substr(eq + 1);
            name.resize(eq);
        }
        const auto option = std::find_if(known.begin(), known.end(), [&](const OptionSpec& s) {
            return isShort ? s.shortName != '\0' && s.shortName == token[1] : s.name == name;
        });
        if (option == known.end())
            throw UsageError("unknown option " + (isShort ? token : "--" + name));
        name = option->name;
        if (!option->repeatable && args.has(name))
            throw UsageError("option --" + name + " given twice");

        if (!option->takesValue) {
            if (inlineValue)
                throw UsageError("option --" + name + " takes no value");
            args.m_options[name].emplace_back();
            continue;
        }
        if (!inlineValue) {
            if (i + 1 >= tokens.size())
                throw UsageError("option --" + name + " needs a value");
            inlineValue = tokens[++i];
        }
        args.m_options[name].push_back(*inlineValue);
    }
    return args;
}

std::optional<std::string> Arguments::value(const std::string& name) const
{
    const auto it = m_options.find(name);
    if (it == m_options.end() || it->second.empty())
        return std::nullopt;
    return it->second.front();
}

std::vector<std::string> Arguments::values(const std::string& name) const
{
    const auto it = m_options.find(name);
    return it == m_options.end() ? std::vector<std::string>{} : it->second;
}

std::string Arguments::required(const std::string& name) const
{
    const auto v = value(name);
    if (!v)
        throw UsageError("option --" + name + " is required");
    return *v;
}

std::optional<std::filesystem::path> Arguments::path(const std::string& name) const
{
    const auto v = value(name);
    return v ? std::optional(music::pathFromUtf8(*v)) : std::nullopt;
}

std::filesystem::path Arguments::requiredPath(const std::string& name) const
{
    return music::pathFromUtf8(required(name));
}

std::filesystem::path Arguments::positionalPath(std::size_t index) const
{
    return music::pathFromUtf8(m_positionals.at(index));
}

std::int64_t Arguments::integer(const std::string& name, std::int64_t min, std::int64_t max,
                                std::int64_t fallback) const
{
    const auto v = value(name);
    return v ? parseInteger(*v, min, max, "--" + name) : fallback;
}

std::int64_t Arguments::parseInteger(const std::string& text, std::int64_t min, std::int64_t max,
                                     const std::string& what)
{
    std::int64_t result = 0;
    const char* first = text.data();
    const char* last = text.data() + text.size();
    const auto [end, error] = std::from_chars(first, last, result);
    if (text.empty() || error != std::errc() || end != last)
        throw UsageError(what + " needs a whole number, not \"" + text + "\"");
    if (result < min || result > max)
        throw UsageError(what + " must lie between " + std::to_string(min) + " and " +
                         std::to_string(max));
    return result;
}

} // namespace cli
