#include "song/SpecDataStore.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "music/TextLineReader.h"

#include <algorithm>
#include <limits>

namespace song {

namespace {

constexpr std::string_view kDamagedMessage = "specdata.dat is damaged";

/** Little-endian reads that never run past the end of the data. */
class ByteCursor
{
public:
    explicit ByteCursor(std::string_view data) : m_data(data) {}

    std::size_t remaining() const { return m_data.size() - m_pos; }

    bool u16(std::uint16_t& value)
    {
        std::uint32_t v = 0;
        if (!little(2, v))
            return false;
        value = static_cast<std::uint16_t>(v);
        return true;
    }
    bool u32(std::uint32_t& value) { return little(4, value); }
    bool bytes(std::size_t count, std::string_view& out)
    {
        if (count > remaining())
            return false;
        out = m_data.substr(m_pos, count);
        m_pos += count;
        return true;
    }
    /** A zero-terminated string; false when no zero byte remains. */
    bool cString(std::string& out)
    {
        const std::size_t end = m_data.find('\0', m_pos);
        if (end == std::string_view::npos)
            return false;
        out.assign(m_data.substr(m_pos, end - m_pos));
        m_pos = end + 1;
        return true;
    }

private:
    bool little(std::size_t size, std::uint32_t& value)
    {
        if (size > remaining())
            return false;
        value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value |= std::uint32_t{static_cast<std::uint8_t>(m_data[m_pos + i])} << (8 * i);
        m_pos += size;
        return true;
    }

    std::string_view m_data;
    std::size_t m_pos = 0;
};

void putLittle(std::string& out, std::uint32_t value, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        out += static_cast<char>((value >> (8 * i)) & 0xFFu);
}

} // namespace

music::Result SpecDataStore::load(const std::filesystem::path& directory)
{
    m_entries.clear();
    const std::filesystem::path path = directory / kFileName;
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        (void)save(directory);
        return music::Result::success();
    }
    const auto bytes = music::readFileBytes(path);
    if (!bytes)
        return music::Result::failure("unable to open file");
    return loadFromBytes(*bytes);
}

music::Result SpecDataStore::loadFromBytes(std::string_view bytes)
{
    m_entries.clear();
    const auto damaged = [this] {
        m_entries.clear();
        return music::Result::failure(std::string(kDamagedMessage), kErrorDamaged);
    };

    ByteCursor in(bytes);
    std::uint16_t count = 0;
    if (!in.u16(count))
        return damaged();
    std::vector<SpecDataEntry> entries;
    for (std::uint16_t i = 0; i < count; ++i) {
        SpecDataEntry entry;
        std::uint16_t nameLength = 0;
        std::string_view name;
        if (!in.u16(nameLength) || !in.bytes(nameLength, name))
            return damaged();
        entry.dllName.assign(name);

        std::uint32_t dataSize = 0;
        std::string_view data;
        if (!in.u32(dataSize) || !in.bytes(dataSize, data))
            return damaged();
        entry.machineData.assign(data.begin(), data.end());

        std::uint16_t attributeCount = 0;
        if (!in.u16(attributeCount))
            return damaged();
        // Each attribute takes at least five bytes: a zero byte and the value.
        if (std::size_t{attributeCount} * 5 > in.remaining())
            return damaged();
        entry.attributes.reserve(attributeCount);
        for (std::uint16_t a = 0; a < attributeCount; ++a) {
            std::string attributeName;
            std::uint32_t value = 0;
            if (!in.cString(attributeName) || !in.u32(value))
                return damaged();
            entry.attributes.emplace_back(std::move(attributeName),
                                          static_cast<std::int32_t>(value));
        }
        entries.push_back(std::move(entry));
    }
    m_entries = std::move(entries);
    return music::Result::success();
}

std::string SpecDataStore::toBytes() const
{
    constexpr std::size_t kMax16 = std::numeric_limits<std::uint16_t>::max();
    const std::size_t count = std::min(m_entries.size(), kMax16);
    std::string out;
    putLittle(out, static_cast<std::uint32_t>(count), 2);
    for (std::size_t i = 0; i < count; ++i) {
        const SpecDataEntry& entry = m_entries[i];
        // A name longer than its 16-bit length field is cut; names are DLL file titles.
        const std::size_t nameLength = std::min(entry.dllName.size(), kMax16);
        putLittle(out, static_cast<std::uint32_t>(nameLength), 2);
        out.append(entry.dllName, 0, nameLength);
        putLittle(out, static_cast<std::uint32_t>(entry.machineData.size()), 4);
        out.append(entry.machineData.begin(), entry.machineData.end());
        const std::size_t attributeCount = std::min(entry.attributes.size(), kMax16);
        putLittle(out, static_cast<std::uint32_t>(attributeCount), 2);
        for (std::size_t a = 0; a < attributeCount; ++a) {
            const auto& [name, value] = entry.attributes[a];
            out.append(name.c_str()); // up to an embedded zero byte, which would end it anyway
            out += '\0';
            putLittle(out, static_cast<std::uint32_t>(value), 4);
        }
    }
    return out;
}

music::Result SpecDataStore::save(const std::filesystem::path& directory) const
{
    if (!music::writeFileSafely(directory / kFileName, toBytes()))
        return music::Result::failure("Error saving file.");
    return music::Result::success();
}

const SpecDataEntry* SpecDataStore::find(std::string_view dllName) const
{
    for (const SpecDataEntry& entry : m_entries) {
        if (music::equalsIgnoringCase(entry.dllName, dllName))
            return &entry;
    }
    return nullptr;
}

void SpecDataStore::add(std::string dllName, std::vector<std::uint8_t> machineData,
                        std::vector<std::pair<std::string, std::int32_t>> attributes)
{
    if (contains(dllName))
        return;
    m_entries.push_back({std::move(dllName), std::move(machineData), std::move(attributes)});
}

} // namespace song
