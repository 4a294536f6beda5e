#include "music/SafeFileWriter.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <string>
#include <system_error>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#else
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace music {

namespace {

std::string temporarySuffix()
{
    static std::atomic<unsigned> counter{0};
    const auto now = static_cast<unsigned long long>(
        std::chrono::steady_clock::now().time_since_epoch().count());
#ifdef _WIN32
    const unsigned long long pid = static_cast<unsigned long long>(_getpid());
#else
    const unsigned long long pid = static_cast<unsigned long long>(getpid());
#endif
    return ".tmp-" + std::to_string(pid) + "-" + std::to_string(now % 1000000007ULL) + "-" +
           std::to_string(counter++);
}

bool syncToDisk(std::FILE* file)
{
#ifdef _WIN32
    return _commit(_fileno(file)) == 0;
#else
    return fsync(fileno(file)) == 0;
#endif
}

} // namespace

SafeFileWriter::SafeFileWriter(std::filesystem::path target) : m_target(std::move(target))
{}

SafeFileWriter::~SafeFileWriter()
{
    discard();
}

bool SafeFileWriter::open()
{
    discard();
    m_failed = false;
    // "x" makes the open fail rather than reuse a file of the same name.
    for (int attempt = 0; attempt < 16 && m_file == nullptr; ++attempt) {
        m_temporary = m_target;
        m_temporary += temporarySuffix();
#ifdef _WIN32
        // Windows' msvcrt.dll, the C runtime of mingw-w64 programs, refuses "x" in a mode (EINVAL;
        // Wine's accepts it, so tests under Wine would not notice): _wopen creates exclusively.
        const int fd = _wopen(m_temporary.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY,
                              _S_IREAD | _S_IWRITE);
        if (fd >= 0) {
            m_file = _wfdopen(fd, L"wb");
            if (m_file == nullptr)
                _close(fd);
        }
#else
        m_file = std::fopen(m_temporary.c_str(), "wbx");
#endif
        if (m_file == nullptr && errno != EEXIST)
            break;
    }
    if (m_file == nullptr) {
        m_temporary.clear();
        m_failed = true;
        return false;
    }
    return true;
}

bool SafeFileWriter::write(const void* data, std::size_t size)
{
    if (m_file == nullptr || m_failed)
        return false;
    if (size != 0 && std::fwrite(data, 1, size, m_file) != size)
        m_failed = true;
    return !m_failed;
}

bool SafeFileWriter::seek(std::uint64_t offset)
{
    if (m_file == nullptr || m_failed)
        return false;
#ifdef _WIN32
    if (_fseeki64(m_file, static_cast<long long>(offset), SEEK_SET) != 0)
#else
    if (fseeko(m_file, static_cast<off_t>(offset), SEEK_SET) != 0)
#endif
        m_failed = true;
    return !m_failed;
}

std::uint64_t SafeFileWriter::tell() const
{
    if (m_file == nullptr)
        return 0;
#ifdef _WIN32
    const long long pos = _ftelli64(m_file);
#else
    const off_t pos = ftello(m_file);
#endif
    return pos < 0 ? 0 : static_cast<std::uint64_t>(pos);
}

bool SafeFileWriter::commit()
{
    if (m_file == nullptr)
        return false;
    bool ok = !m_failed && std::fflush(m_file) == 0 && syncToDisk(m_file);
    ok = (std::fclose(m_file) == 0) && ok;
    m_file = nullptr;
    if (ok) {
#ifndef _WIN32
        // Keep the permissions of the file being replaced.
        struct stat old
        {};
        if (::stat(m_target.c_str(), &old) == 0)
            ::chmod(m_temporary.c_str(), old.st_mode & 07777);
#endif
        std::error_code error;
        std::filesystem::rename(m_temporary, m_target, error);
        ok = !error;
    }
    if (!ok) {
        m_failed = true;
        std::error_code ignored;
        std::filesystem::remove(m_temporary, ignored);
    }
    m_temporary.clear();
    return ok;
}

void SafeFileWriter::discard()
{
    if (m_file != nullptr) {
        std::fclose(m_file);
        m_file = nullptr;
    }
    if (!m_temporary.empty()) {
        std::error_code ignored;
        std::filesystem::remove(m_temporary, ignored);
        m_temporary.clear();
    }
}

bool writeFileSafely(const std::filesystem::path& target, std::string_view content)
{
    SafeFileWriter writer(target);
    return writer.open() && writer.write(content) && writer.commit();
}

} // namespace music
