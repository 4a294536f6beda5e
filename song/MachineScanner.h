#pragma once

#include "music/Result.h"
#include "song/DllMachineInfo.h"
#include "song/MachineDatabase.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace song {

/** What a full scan did, for callers that want to show more than "OK". */
struct GearScanReport
{
    std::vector<std::string> added;             // DLL names written, in file order
    std::vector<std::filesystem::path> skipped; // files that are no library at all
    std::vector<std::filesystem::path> refused; // libraries without a readable GetInfo
    /** The progress callback stopped the scan; machines.ini was not touched. */
    bool cancelled = false;
};

/**
 * Told before each DLL of a full scan is read (`done` of `total` read so far, `next` the file)
 * and once more with `done == total` before machines.ini is written. Returning false cancels the
 * scan. Called on the scanning thread.
 */
using GearScanProgress =
    std::function<bool(std::size_t done, std::size_t total, const std::filesystem::path& next)>;

/**
 * Builds and extends `machines.ini` in the data folder from machine DLLs, read without running
 * them (see DllMachineReader), and from machines learned from songs.
 *
 * The count line of a file written by a full scan is two below the number of entries it holds
 * (the counter starts at 3 although five built-in entries come first), so a loader, which reads
 * exactly "count" entries, never sees the last two. The single-DLL scan and `addEntry` keep to
 * that rule: both add one entry the loader does see and raise the count by one.
 */
class MachineScanner
{
public:
    /** The text a caller shows after a successful full scan. */
    static constexpr std::string_view kScanDoneMessage = "OK";
    static constexpr std::string_view kParentFolderError =
        "Error:\nSorry, but the parentfolder must be ..\\effects or ..\\generators";
    static constexpr std::string_view kLoadLibraryError =
        "Error:\nUnable to load library\nmaybe it is no dynamic link library";
    static constexpr std::string_view kNoGetInfoError = "Error:\nUnable to find function GetInfo()";
    /** Files the scans write in the data folder. */
    static constexpr std::string_view kDatabaseFileName = "machines.ini";
    static constexpr std::string_view kTemporaryFileName = "tmpmach.nam";
    static constexpr std::size_t kMaxDllsPerFolder = 1400;

    /**
     * Adds one DLL to `machines.ini`. Its parent folder must be named "effects" (type 2) or
     * "generators" (type 1), in any case. The new entry goes first; when `machines.ini` is
     * missing, the five built-in entries follow it and the count becomes 4 (3 plus the new one);
     * otherwise the count entries of the old file follow and the count grows by one. An entry
     * learned from a song for the same DLL (name in any case) is replaced: it is left out and the
     * count stays. Otherwise a DLL whose name (compared case-sensitively) is already among them
     * leaves the file byte for byte unchanged and `databaseChanged` false, with success.
     */
    static music::Result scanSingleDll(const std::filesystem::path& dataDir,
                                       const std::filesystem::path& dllPath, bool& databaseChanged);

    /**
     * Rebuilds `machines.ini` from the gear directory: the built-in entries, then every readable
     * DLL of its "generators" folder, then of its "effects" folder (folder names matched in any
     * case, files sorted by name, at most 1400 per folder); DLLs that cannot be read are skipped.
     * Success carries no message; show kScanDoneMessage. Fails with "unable to open file" when
     * the data folder cannot be written.
     */
    static music::Result scanGearDirectory(const std::filesystem::path& dataDir,
                                           const std::filesystem::path& gearDir);
    /**
     * The same, reporting what was added, skipped and refused, and telling `progress` (when
     * given) how far it got. A cancelled scan succeeds with `report.cancelled` set and leaves
     * machines.ini as it was.
     */
    static music::Result scanGearDirectory(const std::filesystem::path& dataDir,
                                           const std::filesystem::path& gearDir,
                                           GearScanReport& report,
                                           const GearScanProgress& progress = {});

    /**
     * Adds a machine learned elsewhere (from a song's parameter descriptions). A missing
     * `machines.ini` is first created with the built-in entries and the count 3. The entry is
     * inserted right after the last entry the loader reads and the count grows by one; entries
     * beyond the count stay as they were behind it. An entry whose DLL name the loader already
     * finds (ignoring case) leaves the file unchanged. Fails with the loader's message when the
     * existing file cannot be read.
     */
    static music::Result addEntry(const std::filesystem::path& dataDir,
                                  const MachineDatabaseEntry& entry);

    /**
     * Writes a `machines.ini` holding only the built-in entries with the count 3, as a full scan
     * of a gear directory without DLLs does.
     */
    static music::Result writeBuiltInDatabase(const std::filesystem::path& dataDir);

    /**
     * The database entry for a machine description: counts, widths (word 2, else 1) and row
     * sizes computed from the parameter types; a type outside 0 to 3 adds nothing to a row.
     */
    static MachineDatabaseEntry entryFromInfo(const DllMachineInfo& info, std::string dllName,
                                              std::uint8_t type);

    /** Machine type from a DLL's parent folder name: 1 generators, 2 effects, 0 neither. */
    static std::uint8_t typeFromFolderName(std::string_view folderName);
};

} // namespace song
