#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace song {

/**
 * A Windows PE image (PE32 or PE32+) read from the bytes of its file, mapped by relative virtual
 * address (RVA) as the loader would map it, without running anything. Every read is checked:
 * one that leaves the headers or a section fails instead of reading past the data. Bytes of a
 * section beyond its raw data but inside its virtual size read as zero.
 *
 * The image keeps a view of the bytes given to `parse`; they must outlive it.
 */
class PeImage
{
public:
    /** Parses the headers and section table; false when the bytes are no PE image. */
    bool parse(std::string_view fileBytes);

    bool is64Bit() const { return m_is64Bit; }
    std::uint16_t machine() const { return m_machine; }
    std::uint64_t imageBase() const { return m_imageBase; }

    /** Copies `size` bytes at `rva`; false when any of them lies outside the image. */
    bool read(std::uint64_t rva, void* out, std::size_t size) const;
    std::optional<std::uint8_t> readU8(std::uint64_t rva) const;
    std::optional<std::uint32_t> readU32(std::uint64_t rva) const;
    std::optional<std::uint64_t> readU64(std::uint64_t rva) const;
    /** A pointer-sized value: 4 bytes in a 32-bit image, 8 in a 64-bit one. */
    std::optional<std::uint64_t> readPointer(std::uint64_t rva) const;
    /** A zero-terminated string of at most `maxLength` bytes; nothing when unterminated. */
    std::optional<std::string> readCString(std::uint64_t rva, std::size_t maxLength = 1024) const;

    /** The RVA an absolute address of the image points to, or nothing below the image base. */
    std::optional<std::uint64_t> rvaFromVa(std::uint64_t va) const;

    /**
     * The RVA of an exported function, looked up by exact name. Nothing when the image has no
     * export directory, no such name, or the export is forwarded to another DLL.
     */
    std::optional<std::uint32_t> findExport(std::string_view name) const;

private:
    struct Section
    {
        std::uint32_t virtualAddress = 0;
        std::uint32_t virtualSize = 0;
        std::uint32_t rawOffset = 0;
        std::uint32_t rawSize = 0;
    };

    /**
     * The file bytes mapped at `rva` up to the end of the raw data holding it, and how many zero
     * bytes follow them inside the section. False when `rva` is outside the image.
     */
    bool locate(std::uint64_t rva, std::string_view& raw, std::uint64_t& zeros) const;

    std::string_view m_bytes;
    std::vector<Section> m_sections;
    std::uint64_t m_imageBase = 0;
    std::uint32_t m_headersSize = 0;
    std::uint32_t m_exportRva = 0;
    std::uint32_t m_exportSize = 0;
    std::uint16_t m_machine = 0;
    bool m_is64Bit = false;
};

} // namespace song
