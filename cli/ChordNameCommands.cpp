// Naming chords: from note names, from MIDI note numbers, or live from a MIDI input device; and
// the list of MIDI input devices. The tab-separated output form is fixed; scripts rely on it.

#include "cli/Command.h"
#include "cli/LiveMidi.h"
#include "music/ChordNamer.h"
#include "music/ChordTypeList.h"
#include "music/ScaleList.h"
#include "music/TextLineReader.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>
#include <ostream>
#include <sstream>

namespace cli {

namespace {

/** The candidates printed without --all. */
constexpr std::size_t kShown = 5;

std::vector<std::string> splitCommas(const std::string& text, const char* what)
{
    std::vector<std::string> words;
    std::stringstream stream(text);
    for (std::string word; std::getline(stream, word, ',');)
        words.push_back(word);
    if (text.empty() || text.back() == ',' ||
        std::any_of(words.begin(), words.end(), [](const auto& w) { return w.empty(); }))
        throw UsageError(std::string(what) + ": give the notes separated by commas, as in " +
                         (std::string(what) == "--midi" ? "52,60,64,67" : "C,E,G,Bb"));
    return words;
}

music::PitchClassSet parseNoteNames(const std::string& text)
{
    music::PitchClassSet set;
    for (const std::string& word : splitCommas(text, "NOTES")) {
        const auto note = music::SpelledNote::parse(word);
        if (!note)
            throw UsageError("\"" + word + "\" is no note name (C, C#, Db, ... B)");
        set.insert(note->pitchClass());
    }
    return set;
}

std::vector<int> parseMidiNotes(const std::string& text)
{
    std::vector<int> notes;
    for (const std::string& word : splitCommas(text, "--midi"))
        notes.push_back(static_cast<int>(Arguments::parseInteger(word, 0, 127, "--midi")));
    return notes;
}

/** The user's chord types: --types FILE, else the data folder's; only a given file must load. */
music::Result loadTypes(const Arguments& args, Context& context, music::ChordTypeList& types)
{
    if (const auto path = args.path("types"))
        return types.load(*path);
    if (!types.load(context.dataFolder().file(music::ChordTypeList::kDefaultFileName)))
        types.clear(); // no list of one's own: the built-in types alone
    return music::Result::success();
}

/** The spelling of --key, which may name a scale of the data folder's scale list. */
music::NoteSpeller parseKey(const Arguments& args, Context& context)
{
    music::NoteSpeller speller;
    const auto key = args.value("key");
    if (!key)
        return speller;
    music::ScaleList scales;
    const bool haveScales = scales.load(context.dataFolder().file("default.scl")).ok();
    if (const music::Result r =
            music::NoteSpeller::parseKey(*key, haveScales ? &scales : nullptr, speller);
        !r)
        throw UsageError(r.message());
    return speller;
}

std::string joined(const std::vector<std::string>& items, const char* separator)
{
    std::string out;
    for (const std::string& item : items)
        out += (out.empty() ? "" : separator) + item;
    return out.empty() ? "-" : out;
}

std::string spelledNotes(const music::ChordCandidate& c)
{
    std::vector<std::string> names;
    for (const music::SpelledNote& n : c.notes)
        names.push_back(n.text());
    return joined(names, " ");
}

/**
 * name, description, score, root, type, intervals, bass, inversion, omitted, added, notes; "-"
 * for nothing.
 */
void printTabbed(std::ostream& out, const music::ChordCandidate& c)
{
    std::vector<std::string> intervals;
    for (const int i : c.intervals)
        intervals.push_back(std::to_string(i));
    out << c.name << '\t' << c.description << '\t' << c.score << '\t' << c.rootName.text() << '\t'
        << (c.isCluster() ? "cluster" : c.typeName) << '\t' << joined(intervals, " ") << '\t'
        << (c.bass ? c.bassName.text() : "-") << '\t' << c.inversion << '\t'
        << joined(c.omitted, ",") << '\t' << joined(c.added, ",") << '\t' << spelledNotes(c)
        << '\n';
}

nlohmann::json candidateJson(const music::ChordCandidate& c, const music::ChordNamer& namer)
{
    using nlohmann::json;
    json notes = json::array();
    for (const music::SpelledNote& n : c.notes)
        notes.push_back(n.text());
    json userTypes = json::array();
    for (const std::size_t index : c.userTypes)
        userTypes.push_back(namer.vocabulary().userTypeNames().at(index));
    json type = nullptr;
    if (!c.isCluster()) {
        type = {{"symbol", c.typeSymbol},
                {"name", c.typeName},
                {"intervals", c.intervals},
                {"userTypes", userTypes}};
    }
    return {{"name", c.name},
            {"description", c.description},
            {"score", c.score},
            {"root", c.rootName.text()},
            {"type", type},
            {"bass", c.bass ? json(c.bassName.text()) : json(nullptr)},
            {"inversion", c.inversion},
            {"omitted", c.omitted},
            {"added", c.added},
            {"notes", notes},
            {"cluster", c.isCluster()}};
}

std::vector<music::ChordCandidate> shown(std::vector<music::ChordCandidate> candidates,
                                         const Arguments& args)
{
    if (!args.has("all") && candidates.size() > kShown)
        candidates.resize(kShown);
    return candidates;
}

nlohmann::json candidatesJson(const std::vector<music::ChordCandidate>& candidates,
                              const music::ChordNamer& namer)
{
    nlohmann::json list = nlohmann::json::array();
    for (const music::ChordCandidate& c : candidates)
        list.push_back(candidateJson(c, namer));
    return list;
}

int runNameChord(const Arguments& args, Context& context)
{
    // Every mistake in the call is reported before anything is read or opened.
    const bool fromNames = !args.positionals().empty();
    const int sources =
        (fromNames ? 1 : 0) + (args.has("midi") ? 1 : 0) + (args.has("listen") ? 1 : 0);
    if (sources != 1)
        throw UsageError("give the notes as NOTES, as --midi LIST or as --listen PORT");
    std::optional<music::PitchClassSet> set;
    std::vector<int> midiNotes;
    if (fromNames)
        set = parseNoteNames(args.positionals().front());
    if (const auto midi = args.value("midi"))
        midiNotes = parseMidiNotes(*midi);
    const music::NoteSpeller speller = parseKey(args, context);

    music::ChordTypeList types;
    if (const music::Result loaded = loadTypes(args, context, types); !loaded)
        return context.fail(loaded.message());
    const music::ChordNamer namer(types);

    if (const auto port = args.value("listen")) {
        return listenForChords(*port, context, [&](const std::vector<int>& chord) {
            const std::vector<music::ChordCandidate> candidates =
                shown(namer.nameNotes(chord, speller), args);
            if (args.has("json")) {
                context.out() << nlohmann::json{{"notes", chord},
                                                {"candidates", candidatesJson(candidates, namer)}}
                                     .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)
                              << '\n';
            } else {
                context.out() << candidates.front().name << " (" << candidates.front().description
                              << ")";
                for (std::size_t i = 1; i < candidates.size(); ++i)
                    context.out() << '\t' << candidates[i].name;
                context.out() << '\n';
            }
            context.out().flush();
        });
    }

    const std::vector<music::ChordCandidate> candidates = shown(
        set ? namer.name(*set, std::nullopt, speller) : namer.nameNotes(midiNotes, speller), args);
    if (args.has("json")) {
        context.out() << candidatesJson(candidates, namer)
                             .dump(2, ' ', false, nlohmann::json::error_handler_t::replace)
                      << '\n';
        return kExitSuccess;
    }
    for (const music::ChordCandidate& c : candidates)
        printTabbed(context.out(), c);
    return kExitSuccess;
}

} // namespace

void registerChordNameCommands(std::vector<Command>& commands)
{
    commands.push_back(Command{
        "name-chord",
        "NOTES | --midi LIST | --listen PORT [--key KEY] [--types FILE.ccl] [--all] [--json]",
        "Name a chord: C,E,G,Bb or --midi 52,60,64,67 (the lowest is the bass), or as played",
        {{"midi", true, false},
         {"listen", true, false},
         {"key", true, false},
         {"types", true, false},
         {"all", false, false},
         {"json", false, false}},
        0,
        1,
        runNameChord,
        "Prints the best five readings (--all: every one), best first, one per line:\n"
        "  name, description, score, root, type, intervals, bass, inversion, omitted,\n"
        "  added, notes (tab-separated; \"-\" for none; inversion -1: a bass foreign to the\n"
        "  chord, as in D/C). --json prints them as a JSON array.\n"
        "NOTES are note names separated by commas (sharps or flats) and have no bass;\n"
        "--midi takes MIDI note numbers 0..127 and the lowest is the bass.\n"
        "--key spells the names for a key: Eb, F#m, \"C minor\", or a note and a scale of the\n"
        "data folder's scale list (\"D dorian\"). Without it each root has its usual name.\n"
        "The chord types are the built-in common ones and those of --types FILE.ccl, else of\n"
        "the data folder's default.ccl.\n"
        "--listen PORT names the chords played on a MIDI input device (its name, or a part of\n"
        "exactly one name; tonalmancer-cli inputs lists them) until Ctrl+C. A chord is the set\n"
        "of held notes once it has not changed for 60 ms; it is printed when a key went down\n"
        "since the notes last settled and it differs from the chord printed before, as\n"
        "  \"C/E (C major, first inversion)<TAB>next reading<TAB>...\", or with --json as one\n"
        "JSON object per line. A device that goes away ends with its message (exit status 1).",
    });
    commands.push_back({"inputs",
                        "",
                        liveSummary("List the MIDI input devices by the names --listen takes"),
                        {},
                        0,
                        0,
                        runInputs});
}

} // namespace cli
