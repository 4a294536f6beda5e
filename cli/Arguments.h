#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace cli {

/** A mistake in how a command was called; the program prints it with the usage and exits 2. */
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/**
 * One option a command accepts: "--name" alone (a flag) or "--name VALUE" / "--name=VALUE";
 * with a short name also "-n" / "-n VALUE".
 */
struct OptionSpec
{
    std::string name; // without the leading dashes
    bool takesValue = false;
    bool repeatable = false;
    char shortName = '\0';
};

/** The output file option, "-o OUT" or "--output OUT". */
inline OptionSpec outputOption()
{
    return {"output", true, false, 'o'};
}

/** The parsed arguments of one command: options by name and the positional arguments. */
class Arguments
{
public:
    /** Parses `tokens` (the words after the command name); throws UsageError. */
    static Arguments parse(const std::vector<std::string>& tokens,
                           const std::vector<OptionSpec>& known);

    bool has(const std::string& name) const { return m_options.count(name) != 0; }
    /** The value of an option given once; nothing when absent. */
    std::optional<std::string> value(const std::string& name) const;
    /** Every value of a repeatable option, in order. */
    std::vector<std::string> values(const std::string& name) const;
    /** The value of an option that must be there; throws UsageError when it is missing. */
    std::string required(const std::string& name) const;

    // File names: the text of an argument names a file through music::pathFromUtf8, never by
    // converting a std::string to a path, which on Windows would misread non-ASCII names.

    /** The file named by an option given once; nothing when absent. */
    std::optional<std::filesystem::path> path(const std::string& name) const;
    /** The file named by an option that must be there; throws UsageError when it is missing. */
    std::filesystem::path requiredPath(const std::string& name) const;
    /** The file named by positional argument `index`, which must exist. */
    std::filesystem::path positionalPath(std::size_t index) const;

    /** An integer option within [min, max]; `fallback` when absent; throws UsageError. */
    std::int64_t integer(const std::string& name, std::int64_t min, std::int64_t max,
                         std::int64_t fallback) const;

    const std::vector<std::string>& positionals() const { return m_positionals; }

    /** Parses a decimal integer within [min, max]; throws UsageError naming `what`. */
    static std::int64_t parseInteger(const std::string& text, std::int64_t min, std::int64_t max,
                                     const std::string& what);

private:
    std::map<std::string, std::vector<std::string>> m_options;
    std::vector<std::string> m_positionals;
};

} // namespace cli
