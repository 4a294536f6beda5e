#include "song/MachineScanner.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "music/TextLineReader.h"
#include "music/Utf8Path.h"
#include "song/DllMachineReader.h"

#include <algorithm>
#include <optional>
#include <system_error>

namespace song {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kEndOfFile = "ENDOFFILE";
constexpr std::string_view kUnableToOpen = "unable to open file";
constexpr std::string_view kDamagedMessage =
    "machines.ini is damaged\n please scan the buzz\\gear-directory";
constexpr std::uint16_t kFirstCount = 3; // five built-in entries, counted as three
constexpr int kErrorDamaged = MachineDatabase::kErrorNotFound;

/** The lines of one entry of machines.ini, as the loader would read them. */
struct EntryLines
{
    std::vector<std::string> lines;
    std::string dllName() const { return lines.empty() ? std::string() : lines.front(); }
    bool isLearned() const
    {
        return lines.size() > 1 && lines[1].ends_with(MachineDatabaseEntry::kLearnedMark);
    }
};

/**
 * The count line and the entries the loader reads, cleaned as every line of the program is read,
 * and the byte offset just past the last of them. Nothing when the file ends inside an entry.
 */
struct ParsedDatabase
{
    std::uint16_t count = 0;
    std::vector<EntryLines> entries;
    std::size_t endOfCounted = 0;
};

std::optional<ParsedDatabase> parseDatabase(std::string_view bytes)
{
    music::TextLineReader in(bytes);
    bool isShort = false;
    const auto line = [&] {
        if (in.atEnd())
            isShort = true;
        return in.readLine();
    };
    ParsedDatabase parsed;
    parsed.count = static_cast<std::uint16_t>(music::TextLineReader::toInt(line()));
    for (std::uint16_t i = 0; i < parsed.count && !isShort; ++i) {
        EntryLines entry;
        for (int l = 0; l < 10; ++l)
            entry.lines.push_back(line());
        const std::size_t parameters =
            std::size_t{static_cast<std::uint16_t>(music::TextLineReader::toInt(entry.lines[6]))} +
            std::size_t{static_cast<std::uint16_t>(music::TextLineReader::toInt(entry.lines[7]))};
        for (std::size_t l = 0; l < parameters * 6 && !isShort; ++l)
            entry.lines.push_back(line());
        parsed.entries.push_back(std::move(entry));
    }
    if (isShort)
        return std::nullopt;
    parsed.endOfCounted = in.position();
    return parsed;
}

std::string builtInLines()
{
    std::string out;
    for (const MachineDatabaseEntry& entry : MachineDatabase::builtInEntries())
        out += MachineDatabase::formatEntry(entry);
    return out;
}

/**
 * Writes `lines` and the end marker to tmpmach.nam, then machines.ini from `count` and the
 * temporary file's lines up to the marker, and removes the temporary file. The last marker
 * line ends the copy, so a machine that calls a parameter "ENDOFFILE" cannot cut the file.
 */
music::Result writeThroughTemporary(const fs::path& dataDir, std::uint16_t count,
                                    const std::string& lines)
{
    const fs::path temporary = dataDir / MachineScanner::kTemporaryFileName;
    std::string content = lines;
    content += kEndOfFile;
    content += '\n';
    if (!music::writeFileSafely(temporary, content))
        return music::Result::failure(std::string(kUnableToOpen));

    const auto copied = music::readFileBytes(temporary);
    std::error_code ignored;
    fs::remove(temporary, ignored);
    if (!copied)
        return music::Result::failure(std::string(kUnableToOpen));

    std::vector<std::string> tempLines;
    music::TextLineReader in(*copied);
    while (!in.atEnd())
        tempLines.push_back(in.readLine());
    const auto marker = std::find(tempLines.rbegin(), tempLines.rend(), kEndOfFile);
    const std::size_t end = marker == tempLines.rend()
                                ? tempLines.size()
                                : tempLines.size() - 1 - (marker - tempLines.rbegin());

    std::string database = std::to_string(count) + '\n';
    for (std::size_t i = 0; i < end; ++i) {
        database += tempLines[i];
        database += '\n';
    }
    if (!music::writeFileSafely(dataDir / MachineScanner::kDatabaseFileName, database))
        return music::Result::failure(std::string(kUnableToOpen));
    return music::Result::success();
}

/**
 * The subfolder of `dir` with this name in any case, spelt as it is on disk (also where the file
 * system ignores case, so that reports name the folder the user sees); an exact match wins.
 */
std::optional<fs::path> findSubfolder(const fs::path& dir, std::string_view name)
{
    std::error_code error;
    std::vector<fs::path> matches;
    for (fs::directory_iterator it(dir, error), end; !error && it != end; it.increment(error)) {
        const std::string entry = music::utf8FromPath(it->path().filename());
        if (!it->is_directory(error) || !music::equalsIgnoringCase(entry, name))
            continue;
        if (entry == name)
            return it->path();
        matches.push_back(it->path());
    }
    if (matches.empty())
        return std::nullopt;
    std::sort(matches.begin(), matches.end());
    return matches.front();
}

/** The DLL files of a folder ("*.dll" in any case), sorted by name, at most `limit`. */
std::vector<fs::path> listDlls(const std::optional<fs::path>& folder, std::size_t limit)
{
    std::vector<fs::path> files;
    if (!folder)
        return files;
    std::error_code error;
    for (fs::directory_iterator it(*folder, error), end; !error && it != end; it.increment(error)) {
        std::error_code typeError;
        if (it->is_regular_file(typeError) &&
            music::equalsIgnoringCase(music::utf8FromPath(it->path().extension()), ".dll"))
            files.push_back(it->path());
    }
    std::sort(files.begin(), files.end(), [](const fs::path& a, const fs::path& b) {
        const std::string la = music::toLower(music::utf8FromPath(a.filename()));
        const std::string lb = music::toLower(music::utf8FromPath(b.filename()));
        return la != lb ? la < lb : a.filename() < b.filename();
    });
    if (files.size() > limit)
        files.resize(limit);
    return files;
}

std::uint8_t rowWidth(std::int32_t type)
{
    switch (type) {
    case 0:
    case 1:
    case 2:
        return 1;
    case 3:
        return 2;
    default:
        return 0;
    }
}

} // namespace

std::uint8_t MachineScanner::typeFromFolderName(std::string_view folderName)
{
    if (music::equalsIgnoringCase(folderName, "generators"))
        return 1;
    if (music::equalsIgnoringCase(folderName, "effects"))
        return 2;
    return 0;
}

MachineDatabaseEntry MachineScanner::entryFromInfo(const DllMachineInfo& info, std::string dllName,
                                                   std::uint8_t type)
{
    MachineDatabaseEntry entry;
    entry.dllName = std::move(dllName);
    entry.shortName = info.shortName;
    entry.type = type;
    entry.minTracks = static_cast<std::uint16_t>(info.minTracks);
    entry.maxTracks = static_cast<std::uint16_t>(info.maxTracks);
    const std::size_t globalCount = std::min(
        info.parameters.size(), static_cast<std::size_t>(std::max(0, info.globalParameterCount)));
    entry.globalParameterCount = static_cast<std::uint16_t>(globalCount);
    entry.trackParameterCount = static_cast<std::uint16_t>(info.parameters.size() - globalCount);
    entry.totalParameterCount = static_cast<std::uint16_t>(info.parameters.size());
    for (std::size_t i = 0; i < info.parameters.size(); ++i) {
        const DllParameterInfo& source = info.parameters[i];
        MachineParameter p;
        p.name = source.name;
        p.type = source.type;
        p.width = source.type == static_cast<int>(ParameterType::Word) ? 2 : 1;
        p.scope = i < globalCount ? 'g' : 't';
        p.noValue = source.noValue;
        p.defaultValue = source.defaultValue;
        // Row sizes are 8-bit in the file and wrap like it.
        if (p.isGlobal())
            entry.globalRowSize = static_cast<std::uint8_t>(entry.globalRowSize + rowWidth(p.type));
        else
            entry.trackRowSize = static_cast<std::uint8_t>(entry.trackRowSize + rowWidth(p.type));
        entry.parameters.push_back(std::move(p));
    }
    return entry;
}

music::Result MachineScanner::scanSingleDll(const fs::path& dataDir, const fs::path& dllPath,
                                            bool& databaseChanged)
{
    databaseChanged = false;
    const std::uint8_t type =
        typeFromFolderName(music::utf8FromPath(dllPath.parent_path().filename()));
    if (type == 0)
        return music::Result::failure(std::string(kParentFolderError));

    DllMachineInfo info;
    switch (DllMachineReader::readFile(dllPath, info)) {
    case DllMachineReader::Status::NotAnImage:
        return music::Result::failure(std::string(kLoadLibraryError));
    case DllMachineReader::Status::NoGetInfo:
        return music::Result::failure(std::string(kNoGetInfoError));
    case DllMachineReader::Status::Ok:
        break;
    }
    const MachineDatabaseEntry entry =
        entryFromInfo(info, music::utf8FromPath(dllPath.stem()), type);
    std::string lines = MachineDatabase::formatEntry(entry);
    // The name as the file will hold it once read back: trailing blanks dropped.
    const std::string newName = music::TextLineReader(lines).readLine();

    std::uint16_t count = kFirstCount;
    const auto existing = music::readFileBytes(dataDir / kDatabaseFileName);
    std::error_code error;
    if (!existing && fs::exists(dataDir / kDatabaseFileName, error))
        return music::Result::failure(std::string(kUnableToOpen)); // never replace it unread
    if (!existing) {
        lines += builtInLines();
    } else {
        const auto parsed = parseDatabase(*existing);
        if (!parsed)
            return music::Result::failure(std::string(kDamagedMessage), kErrorDamaged);
        count = parsed->count;
        for (const EntryLines& old : parsed->entries) {
            // An entry learned from a song (any case of the name) gives way to the DLL's own.
            if (old.isLearned() && music::equalsIgnoringCase(old.dllName(), newName)) {
                --count;
                continue;
            }
            if (old.dllName() == newName)
                return music::Result::success(); // already known: the file stays as it is
            for (const std::string& line : old.lines) {
                lines += line;
                lines += '\n';
            }
        }
    }
    const music::Result written =
        writeThroughTemporary(dataDir, static_cast<std::uint16_t>(count + 1), lines);
    databaseChanged = written.ok();
    return written;
}

music::Result MachineScanner::scanGearDirectory(const fs::path& dataDir, const fs::path& gearDir)
{
    GearScanReport report;
    return scanGearDirectory(dataDir, gearDir, report);
}

music::Result MachineScanner::scanGearDirectory(const fs::path& dataDir, const fs::path& gearDir,
                                                GearScanReport& report,
                                                const GearScanProgress& progress)
{
    report = GearScanReport();
    std::vector<std::pair<fs::path, std::uint8_t>> files; // with the type their folder gives
    for (const fs::path& file : listDlls(findSubfolder(gearDir, "generators"), kMaxDllsPerFolder))
        files.emplace_back(file, 1);
    for (const fs::path& file : listDlls(findSubfolder(gearDir, "effects"), kMaxDllsPerFolder))
        files.emplace_back(file, 2);

    std::string lines = builtInLines();
    std::uint16_t count = kFirstCount;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const auto& [file, type] = files[i];
        if (progress && !progress(i, files.size(), file)) {
            report.cancelled = true;
            return music::Result::success();
        }
        DllMachineInfo info;
        switch (DllMachineReader::readFile(file, info)) {
        case DllMachineReader::Status::NotAnImage:
            report.skipped.push_back(file);
            continue;
        case DllMachineReader::Status::NoGetInfo:
            report.refused.push_back(file);
            continue;
        case DllMachineReader::Status::Ok:
            break;
        }
        const MachineDatabaseEntry entry =
            entryFromInfo(info, music::utf8FromPath(file.stem()), type);
        lines += MachineDatabase::formatEntry(entry);
        report.added.push_back(entry.dllName);
        ++count;
    }
    if (progress && !progress(files.size(), files.size(), {})) {
        report.cancelled = true;
        return music::Result::success();
    }
    return writeThroughTemporary(dataDir, count, lines);
}

music::Result MachineScanner::writeBuiltInDatabase(const fs::path& dataDir)
{
    return writeThroughTemporary(dataDir, kFirstCount, builtInLines());
}

music::Result MachineScanner::addEntry(const fs::path& dataDir, const MachineDatabaseEntry& entry)
{
    if (entry.parameters.size() !=
        std::size_t{entry.globalParameterCount} + std::size_t{entry.trackParameterCount})
        return music::Result::failure("invalid machine description");

    const fs::path path = dataDir / kDatabaseFileName;
    std::string existing;
    if (const auto bytes = music::readFileBytes(path)) {
        existing = *bytes;
    } else {
        std::error_code error;
        if (fs::exists(path, error))
            return music::Result::failure(std::string(kUnableToOpen));
        existing = std::to_string(kFirstCount) + '\n' + builtInLines();
    }

    const auto parsed = parseDatabase(existing);
    if (!parsed)
        return music::Result::failure(std::string(kDamagedMessage), kErrorDamaged);
    for (const EntryLines& old : parsed->entries) {
        if (music::equalsIgnoringCase(old.dllName(), entry.dllName))
            return music::Result::success();
    }
    if (parsed->count == 0xFFFF)
        return music::Result::failure("machines.ini is full");

    // Keep the bytes of the counted entries and of whatever the loader does not read as they
    // are; only the count line changes and the new entry goes between the two.
    const std::string_view bytes(existing);
    const std::size_t afterCount = std::min(bytes.find('\n'), bytes.size() - 1) + 1;
    std::string counted(bytes.substr(afterCount, parsed->endOfCounted -
                                                     std::min(afterCount, parsed->endOfCounted)));
    if (!counted.empty() && counted.back() != '\n')
        counted += '\n';
    std::string content = std::to_string(parsed->count + 1) + '\n';
    content += counted;
    content += MachineDatabase::formatEntry(entry);
    content += bytes.substr(parsed->endOfCounted);
    if (!music::writeFileSafely(path, content))
        return music::Result::failure(std::string(kUnableToOpen));
    return music::Result::success();
}

} // namespace song
