#include "cli/Command.h"
#include "cli/SongLoading.h"

#include "song/BuzzSong.h"
#include "song/SongEdits.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <functional>
#include <ostream>
#include <set>

namespace cli {

namespace {

std::size_t machineByName(const song::BuzzSong& song, const std::string& name, Context& context)
{
    const std::size_t index = song.findMachine(name);
    if (index == song::BuzzSong::kNameNotFound)
        context.err() << "no machine named \"" << name << "\" in the song\n";
    return index;
}

/** A section name for display: unprintable bytes as '.'. */
std::string printableName(const std::string& name)
{
    std::string out = name;
    for (char& c : out) {
        if (static_cast<unsigned char>(c) < 32 || static_cast<unsigned char>(c) > 126)
            c = '.';
    }
    return out;
}

nlohmann::json songJson(const song::BuzzSong& song)
{
    using nlohmann::json;
    json sections = json::array();
    for (std::size_t i = 0; i < std::min<std::size_t>(song.sectionCount(), song.directory().size());
         ++i) {
        const song::SectionEntry& e = song.directory()[i];
        sections.push_back({{"name", e.name}, {"offset", e.offset}, {"size", e.size}});
    }
    json machines = json::array();
    for (std::size_t m = 0; m < song.machineCount(); ++m) {
        const song::SongMachine& machine = song.machines()[m];
        json patterns = json::array();
        if (m < song.patternBlocks().size()) {
            for (const song::SongPattern& p : song.patternBlocks()[m].patterns)
                patterns.push_back({{"name", p.name}, {"rows", p.rows}});
        }
        machines.push_back({{"index", m},
                            {"name", machine.name},
                            {"type", machine.type},
                            {"dll", machine.dllName},
                            {"tracks", machine.trackCount},
                            {"patterns", patterns}});
    }
    json connections = json::array();
    for (const song::SongConnection& c : song.connections()) {
        connections.push_back({{"source", c.source},
                               {"destination", c.destination},
                               {"amplitude", c.amplitude},
                               {"panning", c.panning}});
    }
    json sequences = json::array();
    for (const song::SongSequence& s : song.sequences()) {
        json events = json::array();
        for (const song::SequenceEvent& e : s.events)
            events.push_back({{"position", e.position}, {"value", e.value}});
        sequences.push_back({{"machine", s.machine},
                             {"positionWidth", s.positionWidth},
                             {"eventWidth", s.eventWidth},
                             {"events", events}});
    }
    return {{"sections", sections},
            {"machines", machines},
            {"connections", connections},
            {"sequences", sequences}};
}

void printSong(const song::BuzzSong& song, std::ostream& out)
{
    out << "Sections:\n";
    for (std::size_t i = 0; i < std::min<std::size_t>(song.sectionCount(), song.directory().size());
         ++i) {
        const song::SectionEntry& e = song.directory()[i];
        out << "  " << printableName(e.name) << "  offset " << e.offset << "  size " << e.size
            << '\n';
    }
    out << "Machines:\n";
    for (std::size_t m = 0; m < song.machineCount(); ++m) {
        const song::SongMachine& machine = song.machines()[m];
        out << "  " << m << ": \"" << machine.name << "\"  type " << int{machine.type};
        if (!machine.isMaster())
            out << "  dll \"" << machine.dllName << '"';
        out << "  tracks " << machine.trackCount << '\n';
        if (m < song.patternBlocks().size()) {
            for (const song::SongPattern& p : song.patternBlocks()[m].patterns)
                out << "    pattern \"" << p.name << "\"  rows " << p.rows << '\n';
        }
    }
    out << "Connections:\n";
    for (const song::SongConnection& c : song.connections()) {
        out << "  " << c.source << " -> " << c.destination << "  amplitude " << c.amplitude
            << "  panning " << c.panning << '\n';
    }
    out << "Sequences:\n";
    for (const song::SongSequence& s : song.sequences()) {
        out << "  machine " << s.machine << ":";
        for (const song::SequenceEvent& e : s.events)
            out << ' ' << e.position << ':' << e.value;
        out << '\n';
    }
}

int runSongInfo(const Arguments& args, Context& context)
{
    song::BuzzSong song;
    if (!loadSong(args.positionalPath(0), args, context, song))
        return kExitFailure;
    if (args.has("json"))
        context.out() << songJson(song).dump(2, ' ', false,
                                             nlohmann::json::error_handler_t::replace)
                      << '\n';
    else
        printSong(song, context.out());
    return kExitSuccess;
}

int runSongCopy(const Arguments& args, Context& context)
{
    song::BuzzSong song;
    if (!loadSong(args.positionalPath(0), args, context, song))
        return kExitFailure;
    return saveSong(song, args.positionalPath(1), context);
}

/**
 * Reads the song IN, finds its machine named by the second argument, applies `edit` and saves
 * the song as -o OUT. `edit` returns an exit code; anything but success saves nothing.
 */
int editMachine(const Arguments& args, Context& context,
                const std::function<int(song::BuzzSong&, std::size_t)>& edit)
{
    const std::vector<std::string>& positionals = args.positionals();
    const std::filesystem::path output = args.requiredPath("output");
    song::BuzzSong song;
    if (!loadSong(args.positionalPath(0), args, context, song))
        return kExitFailure;
    const std::size_t machine = machineByName(song, positionals[1], context);
    if (machine == song::BuzzSong::kNameNotFound)
        return kExitFailure;
    if (const int result = edit(song, machine); result != kExitSuccess)
        return result;
    return saveSong(song, output, context);
}

int runRemoveMachine(const Arguments& args, Context& context)
{
    return editMachine(args, context, [&](song::BuzzSong& song, std::size_t machine) {
        const music::Result removed = song::removeMachine(song, machine);
        return removed ? kExitSuccess : context.fail(removed.message());
    });
}

int runRemovePatterns(const Arguments& args, Context& context)
{
    const std::vector<std::string> indexTexts = args.values("index");
    const int modes =
        (indexTexts.empty() ? 0 : 1) + (args.has("all") ? 1 : 0) + (args.has("unused") ? 1 : 0);
    if (modes != 1)
        throw UsageError("give exactly one of --index N, --all, --unused");
    std::set<std::size_t> indices;
    for (const std::string& text : indexTexts)
        indices.insert(
            static_cast<std::size_t>(Arguments::parseInteger(text, 0, 65535, "--index")));

    return editMachine(args, context, [&](song::BuzzSong& song, std::size_t machine) {
        if (args.has("all")) {
            song::removeAllPatterns(song, machine);
            return kExitSuccess;
        }
        if (args.has("unused")) {
            song::removeUnusedPatterns(song, machine);
            return kExitSuccess;
        }
        const std::size_t count = song.patternCount(machine);
        for (const std::size_t index : indices) {
            if (index >= count)
                return context.fail("machine \"" + args.positionals()[1] + "\" has no pattern " +
                                    std::to_string(index) + " (it has " + std::to_string(count) +
                                    ")");
        }
        song::removePatterns(song, machine,
                             std::vector<std::size_t>(indices.begin(), indices.end()));
        return kExitSuccess;
    });
}

int runTrim(const Arguments& args, Context& context)
{
    return editMachine(args, context, [](song::BuzzSong& song, std::size_t machine) {
        song::trimPatterns(song, machine);
        return kExitSuccess;
    });
}

} // namespace

void registerSongCommands(std::vector<Command>& commands)
{
    const std::string learnHelp = " [--learn] [--scan-dll DLL]";
    commands.push_back({"song-info", "SONG [--json]" + learnHelp,
                        "Show a Buzz song's sections, machines, patterns, connections and "
                        "sequences",
                        withSongReading({{"json", false, false}}), 1, 1, runSongInfo});
    commands.push_back({"song-copy", "IN OUT" + learnHelp,
                        "Read a Buzz song and write it back as OUT", withSongReading({}), 2, 2,
                        runSongCopy});
    commands.push_back({"remove-machine", "IN NAME -o OUT" + learnHelp,
                        "Remove a machine and everything that refers to it from a song",
                        withSongReading({outputOption()}), 2, 2, runRemoveMachine});
    commands.push_back({"remove-patterns",
                        "IN MACHINE (--index N ... | --all | --unused) -o OUT" + learnHelp,
                        "Remove patterns of a machine, keeping its sequences consistent",
                        withSongReading({outputOption(),
                                         {"index", true, true},
                                         {"all", false, false},
                                         {"unused", false, false}}),
                        2, 2, runRemovePatterns});
    commands.push_back({"trim", "IN MACHINE -o OUT" + learnHelp,
                        "Cut a machine's patterns after their last note and drop tracks "
                        "without notes",
                        withSongReading({outputOption()}), 2, 2, runTrim});
}

} // namespace cli
