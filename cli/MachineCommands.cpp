// Commands over the machine database: rebuilding machines.ini from a gear directory, adding one
// machine DLL, and showing what a DLL describes. DLLs are read, never run.

#include "cli/Command.h"
#include "music/Utf8Path.h"
#include "song/BuzzSong.h"
#include "song/DataFolderMachineCatalog.h"
#include "song/DllMachineReader.h"
#include "song/FileErrorCode.h"
#include "song/MachineDatabase.h"
#include "song/MachineScanner.h"
#include "song/SongReader.h"
#include "song/UnknownMachineHandler.h"

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace cli {

namespace {

namespace fs = std::filesystem;
using song::MachineScanner;

/** Agrees to learn every unknown machine the song describes; never scans a DLL. */
class LearnEverything : public song::UnknownMachineHandler
{
public:
    bool learnFromSong(const std::string& machineName, const std::string& dllName) override
    {
        learned.push_back({machineName, dllName});
        return true;
    }
    std::optional<fs::path> chooseDllToScan(const std::string& /*message*/) override
    {
        return std::nullopt;
    }

    std::vector<std::pair<std::string, std::string>> learned; // machine name, DLL name
};

int runLearnMachines(const Arguments& args, Context& context)
{
    const fs::path dataDir = context.dataFolder().root();
    std::error_code error;
    if (!fs::exists(dataDir / MachineScanner::kDatabaseFileName, error)) {
        // A fresh data folder: start from the built-in machines, as an empty gear scan would.
        if (const music::Result created = MachineScanner::writeBuiltInDatabase(dataDir); !created)
            return context.fail(created.message());
        context.out() << "created machines.ini with the built-in machines\n";
    }
    song::DataFolderMachineCatalog catalog(dataDir);
    LearnEverything handler;
    song::SongReader reader(catalog, &handler);
    song::BuzzSong songFile;
    const music::Result result = reader.read(args.positionalPath(0), songFile);
    // Machines learned before a failure stay in machines.ini.
    for (const auto& [machine, dll] : handler.learned)
        context.out() << "learned\t" << dll << "\t(machine \"" << machine << "\")\n";
    if (!result) {
        if (!result.message().empty())
            context.err() << result.message() << '\n';
        return context.fail(song::loadErrorText(result.code()));
    }
    if (handler.learned.empty())
        context.out() << "every machine of the song is known\n";
    return kExitSuccess;
}

int runScanGear(const Arguments& args, Context& context)
{
    const fs::path gear = args.positionalPath(0);
    std::error_code error;
    if (!fs::is_directory(gear, error))
        return context.fail("unable to open file\n" + music::utf8FromPath(gear) +
                            " is no directory");
    song::GearScanReport report;
    const music::Result result =
        MachineScanner::scanGearDirectory(context.dataFolder().root(), gear, report);
    if (!result)
        return context.fail(result.message());
    if (args.has("list")) {
        for (const std::string& name : report.added)
            context.out() << "added\t" << name << '\n';
        for (const fs::path& file : report.skipped)
            context.out() << "skipped\t" << music::utf8FromPath(file) << '\n';
        for (const fs::path& file : report.refused)
            context.out() << "refused\t" << music::utf8FromPath(file) << '\n';
    }
    context.out() << MachineScanner::kScanDoneMessage << '\n';
    return kExitSuccess;
}

int runScanDll(const Arguments& args, Context& context)
{
    const fs::path dll = args.positionalPath(0);
    bool changed = false;
    const music::Result result =
        MachineScanner::scanSingleDll(context.dataFolder().root(), dll, changed);
    if (!result)
        return context.fail(result.message());
    context.out() << (changed ? "added\t" : "already known\t") << music::utf8FromPath(dll.stem())
                  << '\n';
    return kExitSuccess;
}

const char* typeName(int type)
{
    switch (type) {
    case 0:
        return "note";
    case 1:
        return "switch";
    case 2:
        return "byte";
    case 3:
        return "word";
    default:
        return "unknown";
    }
}

int runDllInfo(const Arguments& args, Context& context)
{
    const fs::path dll = args.positionalPath(0);
    song::DllMachineInfo info;
    switch (song::DllMachineReader::readFile(dll, info)) {
    case song::DllMachineReader::Status::NotAnImage:
        return context.fail(std::string(MachineScanner::kLoadLibraryError));
    case song::DllMachineReader::Status::NoGetInfo:
        return context.fail(std::string(MachineScanner::kNoGetInfoError));
    case song::DllMachineReader::Status::Ok:
        break;
    }
    const std::string folder = music::utf8FromPath(dll.parent_path().filename());
    const std::uint8_t type = MachineScanner::typeFromFolderName(folder);
    const song::MachineDatabaseEntry entry =
        MachineScanner::entryFromInfo(info, music::utf8FromPath(dll.stem()), type);

    if (args.has("ini")) {
        context.out() << song::MachineDatabase::formatEntry(entry);
        return kExitSuccess;
    }
    std::ostream& out = context.out();
    out << "DLL name:    " << entry.dllName << '\n'
        << "Image:       " << (info.is64Bit ? "PE32+ (64-bit)" : "PE32 (32-bit)") << '\n'
        << "Name:        " << info.name << '\n'
        << "Short name:  " << info.shortName << '\n'
        << "Author:      " << info.author << '\n'
        << "Type:        "
        << (type == 1   ? "1 generator (from the folder)"
            : type == 2 ? "2 effect (from the folder)"
                        : "unknown (the folder is neither generators nor effects)")
        << '\n'
        << "Tracks:      " << info.minTracks << " to " << info.maxTracks << '\n'
        << "Parameters:  " << info.globalParameterCount << " global, " << info.trackParameterCount
        << " per track\n"
        << "Row sizes:   global " << int{entry.globalRowSize} << ", track "
        << int{entry.trackRowSize} << " (bytes)\n";
    if (!entry.parameters.empty())
        out << "#\tscope\ttype\twidth\tno-value\tdefault\tmin\tmax\tname\n";
    for (std::size_t i = 0; i < entry.parameters.size(); ++i) {
        const song::MachineParameter& p = entry.parameters[i];
        const song::DllParameterInfo& source = info.parameters[i];
        out << i << '\t' << (p.isGlobal() ? "global" : "track") << '\t' << p.type << ' '
            << typeName(p.type) << '\t' << int{p.width} << '\t' << p.noValue << '\t'
            << p.defaultValue << '\t' << source.minValue << '\t' << source.maxValue << '\t'
            << p.name << '\n';
    }
    return kExitSuccess;
}

} // namespace

void registerMachineCommands(std::vector<Command>& commands)
{
    commands.push_back({"learn-machines",
                        "SONG",
                        "Add every machine of SONG that machines.ini lacks, from the song's own "
                        "parameter descriptions",
                        {},
                        1,
                        1,
                        runLearnMachines});
    commands.push_back({"scan-gear",
                        "GEAR_DIR [--list]",
                        "Rebuild machines.ini from the DLLs of GEAR_DIR/generators and /effects",
                        {{"list", false, false}},
                        1,
                        1,
                        runScanGear});
    commands.push_back({"scan-dll",
                        "FILE.dll",
                        "Add one machine DLL (in a generators or effects folder) to machines.ini",
                        {},
                        1,
                        1,
                        runScanDll});
    commands.push_back({"dll-info",
                        "FILE.dll [--ini]",
                        "Show the machine description of a DLL without changing anything",
                        {{"ini", false, false}},
                        1,
                        1,
                        runDllInfo});
}

} // namespace cli
