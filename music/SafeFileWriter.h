#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string_view>

namespace music {

/**
 * Writes a file without ever destroying the old one: everything goes to a temporary file in the
 * target's folder, which replaces the target only in `commit()`, after all bytes were written,
 * flushed and synced. A writer destroyed without a successful commit removes its temporary file,
 * so a failed save (no room, no permission, an error half-way) leaves the old file as it was.
 *
 * Every file writer of the program saves through this class. Not thread-safe; one writer per save.
 */
class SafeFileWriter
{
public:
    explicit SafeFileWriter(std::filesystem::path target);
    ~SafeFileWriter();
    SafeFileWriter(const SafeFileWriter&) = delete;
    SafeFileWriter& operator=(const SafeFileWriter&) = delete;

    /** Creates the temporary file beside the target. False when that is impossible. */
    bool open();
    bool isOpen() const { return m_file != nullptr; }

    /** Appends bytes; false (and the writer is failed) on a short write. */
    bool write(const void* data, std::size_t size);
    bool write(std::string_view text) { return write(text.data(), text.size()); }
    bool writeByte(std::uint8_t byte) { return write(&byte, 1); }

    /** Moves the write position (for formats that patch a length after the fact). */
    bool seek(std::uint64_t offset);
    /** The current write position, in bytes from the start. */
    std::uint64_t tell() const;

    /** True once any write, seek or flush has failed. */
    bool failed() const { return m_failed; }

    /**
     * Flushes, syncs and closes the temporary file, then renames it over the target. On any
     * failure the temporary file is removed and the target is untouched. Returns success.
     */
    bool commit();
    /** Drops the temporary file; the target stays as it was. */
    void discard();

    const std::filesystem::path& target() const { return m_target; }
    const std::filesystem::path& temporaryPath() const { return m_temporary; }

private:
    std::filesystem::path m_target;
    std::filesystem::path m_temporary;
    std::FILE* m_file = nullptr;
    bool m_failed = false;
};

/** Writes `content` to `target` through a SafeFileWriter. Returns success. */
bool writeFileSafely(const std::filesystem::path& target, std::string_view content);

} // namespace music
