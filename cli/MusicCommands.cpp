// Commands over the music model: construction strings, chord-type and scale lists, generating a
// chord database and searching it. Their output forms are fixed; scripts rely on them.

#include "cli/Command.h"
#include "music/ChordCollection.h"
#include "music/ChordSearch.h"
#include "music/ChordTypeList.h"
#include "music/DefaultDatabase.h"
#include "music/IntervalList.h"
#include "music/ScaleList.h"
#include "music/ScaleSearch.h"
#include "music/Utf8Path.h"

#include <filesystem>
#include <ostream>
#include <sstream>

namespace cli {

namespace {

/** Parses "C,E,G" (sharps only) into ticks indexed by pitch class; throws UsageError. */
music::SearchCriteria::Ticks parseNotes(const std::string& text)
{
    music::SearchCriteria::Ticks ticks{};
    if (text.empty())
        return ticks;
    std::stringstream stream(text);
    std::string word;
    while (std::getline(stream, word, ',')) {
        const auto pc = music::parseNoteName(word);
        if (!pc)
            throw UsageError("\"" + word + "\" is no note name (C, C#, D, ... B)");
        ticks[*pc] = true;
    }
    if (text.back() == ',')
        throw UsageError("a note name is missing after the last comma");
    return ticks;
}

int runIntervals(const Arguments& args, Context& context)
{
    const music::IntervalList list = music::IntervalList::parse(args.positionals().front());
    if (list.isError())
        return context.fail(std::string(music::ChordTypeList::kInvalidConstruction));
    std::string line;
    for (const std::uint8_t semitones : list.semitones()) {
        if (!line.empty())
            line += ' ';
        line += std::to_string(semitones);
    }
    context.out() << line << '\n';
    return kExitSuccess;
}

/** The positional file, or the data folder's default file of that kind. */
std::filesystem::path fileOrDefault(const Arguments& args, Context& context, const char* fallback)
{
    if (!args.positionals().empty())
        return args.positionalPath(0);
    return context.dataFolder().file(fallback);
}

int runTypes(const Arguments& args, Context& context)
{
    music::ChordTypeList types;
    if (const music::Result result =
            types.load(fileOrDefault(args, context, music::ChordTypeList::kDefaultFileName));
        !result)
        return context.fail(result.message());
    for (const music::ChordType& type : types.types())
        context.out() << type.name() << '\t' << type.construction() << '\n';
    return kExitSuccess;
}

int runScales(const Arguments& args, Context& context)
{
    music::ScaleList scales;
    if (const music::Result result =
            scales.load(fileOrDefault(args, context, music::ScaleList::kDefaultFileName));
        !result)
        return context.fail(result.message());
    for (const music::ScaleType& scale : scales.scales())
        context.out() << scale.name() << '\t' << scale.pattern() << '\t' << scale.noteCount()
                      << '\n';
    return kExitSuccess;
}

int runGenerate(const Arguments& args, Context& context)
{
    const std::filesystem::path output = args.requiredPath("output");
    std::vector<std::string> scaleNames = args.values("scale");
    if (args.has("default-scale-groups")) {
        if (!scaleNames.empty())
            throw UsageError("give either --scale or --default-scale-groups");
        for (const std::string_view name : music::DefaultDatabase::kScaleGroups)
            scaleNames.emplace_back(name);
    }
    if (!scaleNames.empty() && !args.has("scales"))
        throw UsageError("--scale and --default-scale-groups need --scales FILE.scl");

    music::ChordTypeList types;
    if (const music::Result result = types.load(args.requiredPath("types")); !result)
        return context.fail(result.message());
    music::ChordCollection collection;
    collection.generateList(types);

    if (const auto scalesPath = args.value("scales")) {
        music::ScaleList scales;
        if (const music::Result result = scales.load(music::pathFromUtf8(*scalesPath)); !result)
            return context.fail(result.message());
        for (const std::string& name : scaleNames) {
            if (scales.find(name) == nullptr)
                return context.fail("No scale named \"" + name + "\" in " + *scalesPath);
        }
        if (scaleNames.empty()) {
            for (const music::ScaleType& scale : scales.scales())
                scaleNames.push_back(scale.name());
        }
        collection.addScaleGroups(scales, scaleNames);
    }

    if (const music::Result result = collection.save(output); !result)
        return context.fail(result.message());
    return kExitSuccess;
}

/** --db FILE.crd, or the data folder's default collection. */
music::Result loadDatabase(const Arguments& args, Context& context,
                           music::ChordCollection& collection)
{
    if (const auto path = args.path("db"))
        return collection.load(*path);
    return collection.load(context.dataFolder().file(music::ChordCollection::kDefaultFileName));
}

int runFindChord(const Arguments& args, Context& context)
{
    const auto ticks = parseNotes(args.value("notes").value_or(""));
    const auto criteria = music::SearchCriteria::forChords(
        ticks, args.value("include").value_or(""), args.value("skip").value_or(""));
    music::ChordCollection collection;
    if (const music::Result result = loadDatabase(args, context, collection); !result)
        return context.fail(result.message());

    std::vector<music::TreePosition> hits;
    if (args.has("all")) {
        hits = music::ChordSearch::allHits(collection, criteria);
    } else if (const auto hit = music::ChordSearch::firstHit(collection, criteria, std::nullopt)) {
        hits.push_back(*hit);
    }
    const auto& groups = collection.baseGroups();
    for (const music::TreePosition& hit : hits) {
        const auto& group = groups[static_cast<std::size_t>(hit.baseGroup)];
        const auto& section = group.sections[static_cast<std::size_t>(hit.section)];
        const auto& subsection = section.subsections[static_cast<std::size_t>(hit.subsection)];
        const music::Chord& chord = subsection.chords[static_cast<std::size_t>(hit.chord)];
        std::string notes;
        for (const music::NoteValue note : chord.notes()) {
            if (!notes.empty())
                notes += ' ';
            notes += std::to_string(note);
        }
        context.out() << group.name << '\t' << section.name << '\t' << subsection.name << '\t'
                      << chord.name << '\t' << notes << '\n';
    }
    return kExitSuccess;
}

int runFindScale(const Arguments& args, Context& context)
{
    const auto ticks = parseNotes(args.value("notes").value_or(""));
    const auto criteria = music::SearchCriteria::forScales(
        ticks, args.value("include").value_or(""), args.value("skip").value_or(""));
    music::ChordCollection collection;
    if (const music::Result result = loadDatabase(args, context, collection); !result)
        return context.fail(result.message());
    const auto& groups = collection.baseGroups();
    for (const music::TreePosition& hit : music::ScaleSearch::allHits(collection, criteria)) {
        const auto& group = groups[static_cast<std::size_t>(hit.baseGroup)];
        context.out() << group.name << '\t'
                      << group.sections[static_cast<std::size_t>(hit.section)].name << '\n';
    }
    return kExitSuccess;
}

} // namespace

void registerMusicCommands(std::vector<Command>& commands)
{
    const std::vector<OptionSpec> searchOptions = {{"db", true, false},
                                                   {"notes", true, false},
                                                   {"include", true, false},
                                                   {"skip", true, false}};

    commands.push_back({"intervals",
                        "TEXT",
                        "Print the semitone counts of a construction string such as \"1;b3;5;\"",
                        {},
                        1,
                        1,
                        runIntervals});
    commands.push_back(
        {"types",
         "[FILE.ccl]",
         "List a chord-type file (default: the data folder's): name<TAB>construction",
         {},
         0,
         1,
         runTypes});
    commands.push_back(
        {"scales",
         "[FILE.scl]",
         "List a scale file (default: the data folder's): name<TAB>pattern<TAB>note count",
         {},
         0,
         1,
         runScales});
    commands.push_back(
        {"generate",
         "--types FILE.ccl [--scales FILE.scl [--scale NAME]... | --default-scale-groups] -o "
         "OUT.crd",
         "Generate a chord database from chord types, optionally with a base group of scales",
         {{"types", true, false},
          {"scales", true, false},
          {"scale", true, true},
          {"default-scale-groups", false, false},
          outputOption()},
         0,
         0,
         runGenerate});
    std::vector<OptionSpec> chordOptions = searchOptions;
    chordOptions.push_back({"all", false, false});
    commands.push_back({"find-chord",
                        "[--db FILE.crd] [--notes C,E,G] [--include TEXT] [--skip TEXT] [--all]",
                        "Find the first chord (or --all chords) with these notes and name texts",
                        chordOptions, 0, 0, runFindChord});
    commands.push_back({"find-scale",
                        "[--db FILE.crd] [--notes C,E,G] [--include TEXT] [--skip TEXT]",
                        "List the scale groups holding these notes and name texts", searchOptions,
                        0, 0, runFindScale});
}

} // namespace cli
