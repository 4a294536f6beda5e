#pragma once

#include "music/ChordTypeList.h"
#include "music/Result.h"

#include <filesystem>
#include <string_view>

namespace music {

/**
 * The program's data folder: the default files (chord types, scales, chord database, presets,
 * the default part and song), the settings file and the machine database.
 *
 * It is the executable's own folder when that holds the shipped data (a build tree, or a portable
 * copy); otherwise a per-user folder (the XDG data home on Linux, %APPDATA% on Windows,
 * Application Support on macOS), created on first start and seeded with the shipped defaults of
 * the installation. User files are offered in its "user" subfolder.
 */
class DataFolder
{
public:
    DataFolder() = default;
    explicit DataFolder(std::filesystem::path root) : m_root(std::move(root)) {}

    /** The file whose presence marks a folder as holding the shipped data. */
    static constexpr std::string_view kMarkerFile = ChordTypeList::kDefaultFileName;

    /**
     * Finds the data folder for an executable in `executableDir`. A non-empty `explicitDir`
     * (the --data option) wins; it is created when missing but not seeded.
     */
    static Result resolve(const std::filesystem::path& executableDir,
                          const std::filesystem::path& explicitDir, DataFolder& out);

    /** The folder of the running executable; empty when the platform cannot tell. */
    static std::filesystem::path executableDirectory();
    /** The per-user folder used when the executable's folder holds no shipped data. */
    static std::filesystem::path perUserFolder();

    const std::filesystem::path& root() const { return m_root; }
    bool isValid() const { return !m_root.empty(); }
    /** A file of the data folder, for example file("default.crd"). */
    std::filesystem::path file(std::string_view name) const { return m_root / name; }
    /** The "user" subfolder, created when missing. */
    std::filesystem::path userFolder() const;

private:
    std::filesystem::path m_root;
};

} // namespace music
