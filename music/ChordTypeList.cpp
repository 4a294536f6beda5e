#include "music/ChordTypeList.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "music/TextLineReader.h"

namespace music {

std::string ChordTypeList::filterConstruction(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        if ((c >= '0' && c <= '9') || c == '#' || c == ';' || c == 'b' || c == 'h' || c == 't')
            out.push_back(c);
    }
    return out;
}

bool ChordTypeList::add(std::string name, std::string_view construction)
{
    if (m_types.size() >= kMaxCount)
        return false;
    m_types.emplace_back(std::move(name), filterConstruction(construction));
    return true;
}

Result ChordTypeList::addChecked(std::string name, std::string_view construction)
{
    if (!IntervalList::parse(filterConstruction(construction)).isUsable())
        return Result::failure(std::string(kInvalidConstruction));
    if (!add(std::move(name), construction))
        return Result::failure("The list holds 65535 chord types already");
    return Result::success();
}

void ChordTypeList::remove(std::size_t index)
{
    if (index < m_types.size())
        m_types.erase(m_types.begin() + static_cast<std::ptrdiff_t>(index));
}

void ChordTypeList::rename(std::size_t index, std::string name)
{
    if (index < m_types.size())
        m_types[index].setName(std::move(name));
}

Result ChordTypeList::read(std::string_view bytes)
{
    m_types.clear();
    TextLineReader reader(bytes);
    if (!equalsIgnoringCase(reader.readLine(), kMagic))
        return Result::failure(std::string(kNotValid));
    const int count = reader.readInt() & 0xFF;
    // A record that would start past the end of the data could only be empty texts.
    for (int i = 0; i < count && !reader.atEnd(); ++i) {
        std::string name = reader.readLine();
        std::string construction = reader.readLine();
        m_types.emplace_back(std::move(name), std::move(construction));
    }
    return Result::success();
}

Result ChordTypeList::load(const std::filesystem::path& path)
{
    m_types.clear();
    const auto bytes = readFileBytes(path);
    if (!bytes)
        return Result::failure(std::string(kErrorOpening));
    return read(*bytes);
}

std::string ChordTypeList::toBytes() const
{
    std::string out;
    out += kMagic;
    out += '\n';
    out += std::to_string(m_types.size());
    out += '\n';
    for (const ChordType& type : m_types) {
        out += type.name();
        out += '\n';
        out += type.construction();
        out += '\n';
    }
    return out;
}

Result ChordTypeList::save(const std::filesystem::path& path) const
{
    if (!writeFileSafely(path, toBytes()))
        return Result::failure(std::string(kErrorOpening));
    return Result::success();
}

} // namespace music
