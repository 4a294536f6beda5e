// Commands that edit a song's machines: rename, clone, replace and add machines, transpose and
// invert their notes, and remove empty sequences. Each reads the song IN, changes it and saves it
// as -o OUT; a refused edit prints why and writes nothing.

#include "cli/Command.h"
#include "cli/SongLoading.h"

#include "music/Note.h"
#include "song/BuzzSong.h"
#include "song/DataFolderMachineCatalog.h"
#include "song/MachineEdits.h"
#include "song/MachineReplacement.h"
#include "song/NoteTransforms.h"
#include "song/SpecDataStore.h"

#include <functional>
#include <ostream>

namespace cli {

namespace {

using Edit = std::function<int(song::BuzzSong&)>;

/** Reads the song named by the first argument, applies `edit` and saves the song as -o OUT. */
int editSong(const Arguments& args, Context& context, const Edit& edit)
{
    const std::filesystem::path output = args.requiredPath("output");
    song::BuzzSong song;
    if (!loadSong(args.positionalPath(0), args, context, song))
        return kExitFailure;
    if (const int result = edit(song); result != kExitSuccess)
        return result;
    return saveSong(song, output, context);
}

/** The index of the machine with this name; prints why and gives nothing when there is none. */
std::optional<std::size_t> machineNamed(const song::BuzzSong& song, const std::string& name,
                                        Context& context)
{
    const std::size_t index = song.findMachine(name);
    if (index == song::BuzzSong::kNameNotFound) {
        context.err() << "no machine named \"" << name << "\" in the song\n";
        return std::nullopt;
    }
    return index;
}

/** A machine database entry by DLL name, from the data folder's machines.ini. */
struct DatabaseMachine
{
    song::MachineDatabaseEntry entry;
    std::size_t index = 0;
    std::optional<song::SpecDataEntry> machineData; // from specdata.dat, when the DLL has one
};

std::optional<DatabaseMachine> databaseMachine(const std::string& dll, Context& context)
{
    song::DataFolderMachineCatalog catalog(context.dataFolder().root());
    if (const music::Result loaded = catalog.loadDatabase(); !loaded) {
        context.fail(loaded.message());
        return std::nullopt;
    }
    const std::size_t index = catalog.findByDllName(dll);
    if (index == song::MachineDatabase::kNotFound) {
        context.fail("machines.ini has no machine \"" + dll + "\" (scan its DLL first)");
        return std::nullopt;
    }
    DatabaseMachine found{catalog.entry(index), index, std::nullopt};
    song::SpecDataStore store;
    if (store.load(context.dataFolder().root()) && store.find(dll) != nullptr)
        found.machineData = *store.find(dll);
    return found;
}

int runRenameMachine(const Arguments& args, Context& context)
{
    return editSong(args, context, [&](song::BuzzSong& song) {
        const auto machine = machineNamed(song, args.positionals()[1], context);
        if (!machine)
            return kExitFailure;
        const music::Result renamed = song::renameMachine(song, *machine, args.positionals()[2]);
        return renamed ? kExitSuccess : context.fail(renamed.message());
    });
}

int runCloneMachine(const Arguments& args, Context& context)
{
    return editSong(args, context, [&](song::BuzzSong& song) {
        const auto machine = machineNamed(song, args.positionals()[1], context);
        if (!machine)
            return kExitFailure;
        std::size_t clone = 0;
        if (const music::Result cloned = song::cloneMachine(song, *machine, clone); !cloned)
            return context.fail(cloned.message());
        context.out() << song.machines()[clone].name << '\n';
        return kExitSuccess;
    });
}

int runReplaceMachine(const Arguments& args, Context& context)
{
    const bool dryRun = args.has("dry-run");
    const std::string& name = args.positionals()[1];
    const std::string& dll = args.positionals()[2];
    const auto report = [&](const song::ReplacementPlan& plan) {
        const std::vector<std::string> lines = plan.describe();
        context.out() << "Replacing \"" << name << "\" by \"" << dll << "\" "
                      << (dryRun ? "would lose" : "lost") << (lines.empty() ? " nothing." : ":")
                      << '\n';
        for (const std::string& line : lines)
            context.out() << "  " << line << '\n';
    };
    const auto replace = [&](song::BuzzSong& song) {
        const auto machine = machineNamed(song, name, context);
        if (!machine)
            return kExitFailure;
        const std::optional<DatabaseMachine> target = databaseMachine(dll, context);
        if (!target)
            return kExitFailure;
        song::ReplacementPlan plan;
        const music::Result r =
            dryRun
                ? song::planReplacement(song, *machine, target->entry, plan)
                : song::replaceMachine(song, *machine, target->entry, target->index,
                                       target->machineData ? &*target->machineData : nullptr, plan);
        if (!r)
            return context.fail(r.message());
        report(plan);
        return kExitSuccess;
    };
    if (!dryRun)
        return editSong(args, context, replace);
    song::BuzzSong song;
    if (!loadSong(args.positionalPath(0), args, context, song))
        return kExitFailure;
    return replace(song);
}

int runAddMachine(const Arguments& args, Context& context)
{
    return editSong(args, context, [&](song::BuzzSong& song) {
        std::optional<std::size_t> connectTo;
        if (const auto to = args.value("to")) {
            connectTo = machineNamed(song, *to, context);
            if (!connectTo)
                return kExitFailure;
        }
        const std::optional<DatabaseMachine> target =
            databaseMachine(args.positionals()[1], context);
        if (!target)
            return kExitFailure;
        std::size_t added = 0;
        const music::Result r = song::addMachine(
            song, target->entry, target->index,
            target->machineData ? &*target->machineData : nullptr, connectTo, added);
        if (!r)
            return context.fail(r.message());
        context.out() << song.machines()[added].name << '\n';
        return kExitSuccess;
    });
}

/** The machines named by the arguments after the song; nothing when one is missing. */
std::optional<std::vector<std::size_t>> machinesNamed(const song::BuzzSong& song,
                                                      const Arguments& args, Context& context)
{
    std::vector<std::size_t> machines;
    for (std::size_t i = 1; i < args.positionals().size(); ++i) {
        const auto machine = machineNamed(song, args.positionals()[i], context);
        if (!machine)
            return std::nullopt;
        machines.push_back(*machine);
    }
    return machines;
}

void printReport(const song::NoteTransformReport& report, const song::BuzzSong& song,
                 Context& context)
{
    context.out() << report.changed << (report.changed == 1 ? " note" : " notes") << " changed\n";
    if (report.outOfRange.empty())
        return;
    context.out() << report.outOfRange.size()
                  << " left as they are: they would leave the tracker's range C-0 to B-9\n";
    for (const std::string& line : report.describe(song))
        context.out() << "  " << line << '\n';
}

int transformNotes(const Arguments& args, Context& context,
                   const std::function<song::NoteTransformReport(
                       song::BuzzSong&, const std::vector<std::size_t>&)>& transform)
{
    return editSong(args, context, [&](song::BuzzSong& song) {
        const auto machines = machinesNamed(song, args, context);
        if (!machines)
            return kExitFailure;
        printReport(transform(song, *machines), song, context);
        return kExitSuccess;
    });
}

int runTranspose(const Arguments& args, Context& context)
{
    const auto semitones = static_cast<int>(Arguments::parseInteger(
        args.required("by"), -song::kHighestTrackerNote, song::kHighestTrackerNote, "--by"));
    return transformNotes(args, context, [&](song::BuzzSong& song, const auto& machines) {
        return song::transposeNotes(song, machines, semitones);
    });
}

/** A note as "C4", "F#5" or the tracker's "C-4"; throws UsageError. */
music::NoteValue parseNote(const std::string& text)
{
    std::string name = text;
    if (name.size() < 2 || name.back() < '0' || name.back() > '9')
        throw UsageError("--around needs a note such as C4, F#5 or C-4, not \"" + text + "\"");
    const int octave = name.back() - '0';
    name.pop_back();
    if (name.size() == 2 && name[1] == '-')
        name.pop_back();
    const auto pitchClass = music::parseNoteName(name);
    if (!pitchClass)
        throw UsageError("--around needs a note such as C4, F#5 or C-4, not \"" + text + "\"");
    return music::noteValue(octave, *pitchClass);
}

int runInvert(const Arguments& args, Context& context)
{
    const music::NoteValue centre = parseNote(args.required("around"));
    return transformNotes(args, context, [&](song::BuzzSong& song, const auto& machines) {
        return song::invertNotes(song, machines, centre);
    });
}

int runRemoveEmptySequences(const Arguments& args, Context& context)
{
    return editSong(args, context, [&](song::BuzzSong& song) {
        const std::size_t removed = song::removeEmptySequences(song);
        context.out() << "removed " << removed
                      << (removed == 1 ? " empty sequence" : " empty sequences") << '\n';
        return kExitSuccess;
    });
}

} // namespace

void registerSongMachineCommands(std::vector<Command>& commands)
{
    const std::string learnHelp = " [--learn] [--scan-dll DLL]";
    constexpr std::size_t kMany = 65535;
    commands.push_back({"rename-machine", "IN NAME NEW_NAME -o OUT" + learnHelp,
                        "Rename a machine; its parameter set, window and MIDI bindings follow",
                        withSongReading({outputOption()}), 3, 3, runRenameMachine,
                        "The new name must be free (ignoring case); the master keeps its name."});
    commands.push_back({"clone-machine", "IN NAME -o OUT" + learnHelp,
                        "Add a copy of a machine with its patterns and connections",
                        withSongReading({outputOption()}), 2, 2, runCloneMachine,
                        "The copy takes a free name after the original's (Name2, Name3, ...),\n"
                        "which is printed. Its sequences are not copied."});
    commands.push_back(
        {"replace-machine", "IN NAME DLL (-o OUT | --dry-run)" + learnHelp,
         "Replace a machine by another of machines.ini with the same note parameter",
         withSongReading({outputOption(), {"dry-run", false, false}}), 3, 3, runReplaceMachine,
         "Patterns keep the values of the parameters both machines name alike (ignoring\n"
         "case); what has no counterpart is lost and listed. --dry-run only lists it."});
    commands.push_back({"add-machine", "IN DLL -o OUT [--to MACHINE]" + learnHelp,
                        "Add a machine of machines.ini, connected to the master or an effect",
                        withSongReading({outputOption(), {"to", true, false}}), 2, 2, runAddMachine,
                        "The machine starts with its default values and minimum tracks under a\n"
                        "free name after its short name, which is printed; write-part can write\n"
                        "into it at once."});
    commands.push_back({"transpose", "IN MACHINE... --by N -o OUT" + learnHelp,
                        "Move the notes of machines' patterns by N half-notes",
                        withSongReading({outputOption(), {"by", true, false}}), 2, kMany,
                        runTranspose,
                        "Empty cells and note-offs stay. A note that would leave C-0..B-9 is left\n"
                        "as it is and listed with its pattern, row and track."});
    commands.push_back(
        {"invert", "IN MACHINE... --around NOTE -o OUT" + learnHelp,
         "Mirror the notes of machines' patterns around a note (C4, F#5, C-4)",
         withSongReading({outputOption(), {"around", true, false}}), 2, kMany, runInvert,
         "A note n half-notes above NOTE goes n half-notes below it. Empty cells\n"
         "and note-offs stay; notes that would leave C-0..B-9 stay and are listed."});
    commands.push_back({"remove-empty-sequences", "IN -o OUT" + learnHelp,
                        "Remove every sequence without events", withSongReading({outputOption()}),
                        1, 1, runRemoveEmptySequences});
}

} // namespace cli
