#include "cli/PartOptions.h"

#include "music/Note.h"
#include "music/RandomSource.h"

namespace cli {

std::vector<OptionSpec> partOptionSpecs()
{
    return {{"index-option", true, false},
            {"limit", true, false},
            {"tracks", true, false},
            {"seed", true, false}};
}

const char* partOptionsSynopsis()
{
    return "[--index-option N] [--limit NOTE,OCTAVE] [--tracks 11111111] [--seed N]";
}

part::RenderOptions parsePartOptions(const Arguments& args)
{
    part::RenderOptions options;
    options.indexOption = static_cast<part::IndexOption>(args.integer("index-option", 0, 2, 0));

    if (const std::optional<std::string> limit = args.value("limit")) {
        const std::size_t comma = limit->find(',');
        if (comma == std::string::npos)
            throw UsageError("--limit needs NOTE,OCTAVE, for example C,4");
        const std::optional<music::PitchClass> note = music::parseNoteName(limit->substr(0, comma));
        if (!note)
            throw UsageError("--limit: \"" + limit->substr(0, comma) + "\" is no note name");
        options.limitNote = *note;
        options.limitOctave = static_cast<std::uint8_t>(
            Arguments::parseInteger(limit->substr(comma + 1), 0, 9, "--limit octave"));
        options.limitActive = true;
    }

    if (const std::optional<std::string> tracks = args.value("tracks")) {
        if (tracks->size() != part::kTrackCount ||
            tracks->find_first_not_of("01") != std::string::npos)
            throw UsageError("--tracks needs eight switches of 0 or 1, for example 11110000");
        for (std::size_t t = 0; t < part::kTrackCount; ++t)
            options.tracks[t] = (*tracks)[t] == '1';
    }

    if (args.has("seed"))
        music::RandomSource::seed(
            static_cast<std::uint32_t>(args.integer("seed", 0, 4294967295LL, 1)));
    return options;
}

} // namespace cli
