#include "music/DataFolder.h"

#include "music/Utf8Path.h"

#include <cstdlib>
#include <system_error>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#elif defined(__APPLE__)
#include <mach-o/dyld.h>
#endif

namespace music {

namespace fs = std::filesystem;

namespace {

bool holdsShippedData(const fs::path& dir)
{
    std::error_code error;
    return !dir.empty() && fs::is_regular_file(dir / DataFolder::kMarkerFile, error);
}

/** Copies every shipped file that the target folder does not have yet. */
void seedFrom(const fs::path& shipped, const fs::path& target)
{
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(shipped, error)) {
        if (!entry.is_regular_file(error))
            continue;
        const fs::path destination = target / entry.path().filename();
        if (!fs::exists(destination, error))
            fs::copy_file(entry.path(), destination, error);
    }
}

#ifdef _WIN32
/** An environment variable that names a folder; read wide, since it may hold any character. */
fs::path environmentPath(const wchar_t* name)
{
    const wchar_t* value = _wgetenv(name);
    return value != nullptr && *value != L'\0' ? fs::path(value) : fs::path();
}
#else
fs::path environmentPath(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? fs::path(value) : fs::path();
}
#endif

} // namespace

Result DataFolder::resolve(const fs::path& executableDir, const fs::path& explicitDir,
                           DataFolder& out)
{
    std::error_code error;
    if (!explicitDir.empty()) {
        fs::create_directories(explicitDir, error);
        if (!fs::is_directory(explicitDir, error))
            return Result::failure("Unable to use the data folder " + utf8FromPath(explicitDir));
        out = DataFolder(explicitDir);
        return Result::success();
    }
    if (holdsShippedData(executableDir)) {
        out = DataFolder(executableDir);
        return Result::success();
    }

    const fs::path perUser = perUserFolder();
    if (perUser.empty())
        return Result::failure("Unable to find a folder for the program's data");
    fs::create_directories(perUser, error);
    if (!fs::is_directory(perUser, error))
        return Result::failure("Unable to create the data folder " + utf8FromPath(perUser));

    const std::vector<fs::path> shippedCandidates = {
        executableDir.parent_path() / "share" / "tonalmancer",
        executableDir / "data",
        executableDir.parent_path() / "Resources" / "data",
    };
    for (const fs::path& shipped : shippedCandidates) {
        if (holdsShippedData(shipped)) {
            seedFrom(shipped, perUser);
            break;
        }
    }
    out = DataFolder(perUser);
    return Result::success();
}

fs::path DataFolder::executableDirectory()
{
#ifdef _WIN32
    std::wstring buffer(32768, L'\0');
    const DWORD length =
        GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
    if (length == 0)
        return {};
    buffer.resize(length);
    return fs::path(buffer).parent_path();
#elif defined(__APPLE__)
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size);
    std::string buffer(size, '\0');
    if (_NSGetExecutablePath(buffer.data(), &size) != 0)
        return {};
    std::error_code error;
    return fs::canonical(fs::path(buffer.c_str()), error).parent_path();
#else
    std::error_code error;
    const fs::path self = fs::read_symlink("/proc/self/exe", error);
    return error ? fs::path() : self.parent_path();
#endif
}

fs::path DataFolder::perUserFolder()
{
#ifdef _WIN32
    const fs::path appData = environmentPath(L"APPDATA");
    return appData.empty() ? fs::path() : appData / "Tonalmancer";
#elif defined(__APPLE__)
    const fs::path home = environmentPath("HOME");
    return home.empty() ? fs::path() : home / "Library" / "Application Support" / "Tonalmancer";
#else
    const fs::path xdg = environmentPath("XDG_DATA_HOME");
    if (!xdg.empty())
        return xdg / "tonalmancer";
    const fs::path home = environmentPath("HOME");
    return home.empty() ? fs::path() : home / ".local" / "share" / "tonalmancer";
#endif
}

fs::path DataFolder::userFolder() const
{
    const fs::path folder = m_root / "user";
    std::error_code error;
    fs::create_directories(folder, error);
    return folder;
}

} // namespace music
