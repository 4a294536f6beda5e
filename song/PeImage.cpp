#include "song/PeImage.h"

#include <algorithm>
#include <cstring>

namespace song {

namespace {

constexpr std::uint16_t kOptionalMagic32 = 0x10B;
constexpr std::uint16_t kOptionalMagic64 = 0x20B;
constexpr std::size_t kMaxSections = 96; // the Windows loader's own limit
constexpr std::uint32_t kMaxExportNames = 1u << 16;

std::uint32_t fileU32(std::string_view bytes, std::size_t offset)
{
    std::uint32_t v = 0;
    for (std::size_t i = 0; i < 4; ++i)
        v |= std::uint32_t{static_cast<std::uint8_t>(bytes[offset + i])} << (8 * i);
    return v;
}

std::uint16_t fileU16(std::string_view bytes, std::size_t offset)
{
    return static_cast<std::uint16_t>(static_cast<std::uint8_t>(bytes[offset]) |
                                      (static_cast<std::uint8_t>(bytes[offset + 1]) << 8));
}

std::uint64_t fileU64(std::string_view bytes, std::size_t offset)
{
    return std::uint64_t{fileU32(bytes, offset)} |
           (std::uint64_t{fileU32(bytes, offset + 4)} << 32);
}

} // namespace

bool PeImage::parse(std::string_view fileBytes)
{
    *this = PeImage();
    m_bytes = fileBytes;
    const std::size_t size = fileBytes.size();
    if (size < 0x40 || fileBytes[0] != 'M' || fileBytes[1] != 'Z')
        return false;
    const std::size_t pe = fileU32(fileBytes, 0x3C);
    // Signature and file header: 4 + 20 bytes; then at least the optional header's magic.
    if (pe > size || size - pe < 24 + 2)
        return false;
    if (fileBytes.substr(pe, 4) != std::string_view("PE\0\0", 4))
        return false;
    const std::size_t fileHeader = pe + 4;
    m_machine = fileU16(fileBytes, fileHeader);
    const std::size_t sectionCount = fileU16(fileBytes, fileHeader + 2);
    const std::size_t optionalSize = fileU16(fileBytes, fileHeader + 16);
    const std::size_t optional = fileHeader + 20;
    if (sectionCount > kMaxSections || optionalSize > size - optional)
        return false;

    const std::uint16_t magic = fileU16(fileBytes, optional);
    std::size_t directoriesAt = 0;
    if (magic == kOptionalMagic32) {
        if (optionalSize < 96)
            return false;
        m_is64Bit = false;
        m_imageBase = fileU32(fileBytes, optional + 28);
        directoriesAt = 96;
    } else if (magic == kOptionalMagic64) {
        if (optionalSize < 112)
            return false;
        m_is64Bit = true;
        m_imageBase = fileU64(fileBytes, optional + 24);
        directoriesAt = 112;
    } else {
        return false;
    }
    m_headersSize = fileU32(fileBytes, optional + 60);
    const std::uint32_t directoryCount = fileU32(fileBytes, optional + directoriesAt - 4);
    if (directoryCount >= 1 && optionalSize >= directoriesAt + 8) {
        m_exportRva = fileU32(fileBytes, optional + directoriesAt);
        m_exportSize = fileU32(fileBytes, optional + directoriesAt + 4);
    }

    const std::size_t table = optional + optionalSize;
    if (sectionCount * 40 > size - table)
        return false;
    for (std::size_t i = 0; i < sectionCount; ++i) {
        const std::size_t at = table + i * 40;
        Section s;
        s.virtualSize = fileU32(fileBytes, at + 8);
        s.virtualAddress = fileU32(fileBytes, at + 12);
        s.rawSize = fileU32(fileBytes, at + 16);
        s.rawOffset = fileU32(fileBytes, at + 20);
        m_sections.push_back(s);
    }
    return true;
}

bool PeImage::locate(std::uint64_t rva, std::string_view& raw, std::uint64_t& zeros) const
{
    raw = {};
    zeros = 0;
    // The headers are mapped at RVA 0 as they stand in the file.
    const std::uint64_t headersEnd = std::min<std::uint64_t>(m_headersSize, m_bytes.size());
    if (rva < headersEnd) {
        raw = m_bytes.substr(static_cast<std::size_t>(rva),
                             static_cast<std::size_t>(headersEnd - rva));
        return true;
    }
    for (const Section& s : m_sections) {
        const std::uint64_t extent = std::max(s.virtualSize, s.rawSize);
        if (rva < s.virtualAddress || rva - s.virtualAddress >= extent)
            continue;
        const std::uint64_t within = rva - s.virtualAddress;
        if (within >= s.rawSize) {
            zeros = extent - within;
            return true;
        }
        const std::uint64_t offset = std::uint64_t{s.rawOffset} + within;
        const std::uint64_t wanted = s.rawSize - within;
        if (offset >= m_bytes.size())
            return false;
        const std::uint64_t held = std::min<std::uint64_t>(wanted, m_bytes.size() - offset);
        raw = m_bytes.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(held));
        // Raw data the file does not hold is a cut-off image: no zeros after it.
        if (held == wanted)
            zeros = extent - s.rawSize;
        return true;
    }
    return false;
}

bool PeImage::read(std::uint64_t rva, void* out, std::size_t size) const
{
    auto* target = static_cast<std::uint8_t*>(out);
    while (size > 0) {
        std::string_view raw;
        std::uint64_t zeros = 0;
        if (!locate(rva, raw, zeros) || (raw.empty() && zeros == 0))
            return false;
        std::size_t done = std::min(size, raw.size());
        if (done > 0)
            std::memcpy(target, raw.data(), done);
        if (done < size && done == raw.size()) {
            const auto more = static_cast<std::size_t>(std::min<std::uint64_t>(size - done, zeros));
            std::memset(target + done, 0, more);
            done += more;
        }
        target += done;
        rva += done;
        size -= done;
    }
    return true;
}

std::optional<std::uint8_t> PeImage::readU8(std::uint64_t rva) const
{
    std::uint8_t v = 0;
    if (!read(rva, &v, 1))
        return std::nullopt;
    return v;
}

std::optional<std::uint32_t> PeImage::readU32(std::uint64_t rva) const
{
    std::uint8_t b[4];
    if (!read(rva, b, 4))
        return std::nullopt;
    return std::uint32_t{b[0]} | std::uint32_t{b[1]} << 8 | std::uint32_t{b[2]} << 16 |
           std::uint32_t{b[3]} << 24;
}

std::optional<std::uint64_t> PeImage::readU64(std::uint64_t rva) const
{
    const auto low = readU32(rva);
    const auto high = readU32(rva + 4);
    if (!low || !high)
        return std::nullopt;
    return std::uint64_t{*low} | (std::uint64_t{*high} << 32);
}

std::optional<std::uint64_t> PeImage::readPointer(std::uint64_t rva) const
{
    if (m_is64Bit)
        return readU64(rva);
    const auto v = readU32(rva);
    if (!v)
        return std::nullopt;
    return std::uint64_t{*v};
}

std::optional<std::string> PeImage::readCString(std::uint64_t rva, std::size_t maxLength) const
{
    std::string text;
    while (text.size() <= maxLength) {
        std::string_view raw;
        std::uint64_t zeros = 0;
        if (!locate(rva, raw, zeros) || (raw.empty() && zeros == 0))
            return std::nullopt;
        const std::size_t room = maxLength + 1 - text.size();
        const std::string_view part = raw.substr(0, std::min(raw.size(), room));
        const std::size_t end = part.find('\0');
        if (end != std::string_view::npos) {
            text.append(part.substr(0, end));
            return text;
        }
        text.append(part);
        if (part.size() == raw.size() && zeros > 0)
            return text.size() <= maxLength ? std::optional<std::string>(text) : std::nullopt;
        rva += part.size();
    }
    return std::nullopt;
}

std::optional<std::uint64_t> PeImage::rvaFromVa(std::uint64_t va) const
{
    if (va < m_imageBase)
        return std::nullopt;
    return va - m_imageBase;
}

std::optional<std::uint32_t> PeImage::findExport(std::string_view name) const
{
    if (m_exportRva == 0)
        return std::nullopt;
    const std::uint64_t dir = m_exportRva;
    const auto functionCount = readU32(dir + 20);
    const auto nameCount = readU32(dir + 24);
    const auto functions = readU32(dir + 28);
    const auto names = readU32(dir + 32);
    const auto ordinals = readU32(dir + 36);
    if (!functionCount || !nameCount || !functions || !names || !ordinals)
        return std::nullopt;

    const std::uint32_t count = std::min(*nameCount, kMaxExportNames);
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto nameRva = readU32(std::uint64_t{*names} + std::uint64_t{i} * 4);
        if (!nameRva)
            return std::nullopt;
        const auto exportName = readCString(*nameRva, name.size());
        if (!exportName || *exportName != name)
            continue;
        std::uint8_t ordinalBytes[2];
        if (!read(std::uint64_t{*ordinals} + std::uint64_t{i} * 2, ordinalBytes, 2))
            return std::nullopt;
        const std::uint32_t ordinal = ordinalBytes[0] | (ordinalBytes[1] << 8);
        if (ordinal >= *functionCount)
            return std::nullopt;
        const auto function = readU32(std::uint64_t{*functions} + std::uint64_t{ordinal} * 4);
        if (!function || *function == 0)
            return std::nullopt;
        // An address inside the export directory names another DLL's function: not followed.
        if (*function >= m_exportRva && *function - m_exportRva < m_exportSize)
            return std::nullopt;
        return *function;
    }
    return std::nullopt;
}

} // namespace song
