#include "music/ChordTypeList.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "music/StableSortBy.h"

#include "music/TextLineReader.h"
#include "music/TwoLineRecords.h"
#include <algorithm>

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
    // The text as typed is parsed, so that a character the filter would drop (an upper-case
    // "B" in "1;B3;5;") refuses the text instead of changing its meaning.
    if (!IntervalList::parse(construction).isUsable())
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

void ChordTypeList::sortByName(bool upwards)
{
    stableSortBy(
        m_types, [](const ChordType& type) { return toLower(type.name()); }, upwards);
}

void ChordTypeList::sortByNotes(bool upwards)
{
    stableSortBy(
        m_types,
        [](const ChordType& type) {
            const IntervalList intervals = type.intervals();
            std::vector<std::uint8_t> notes;
            if (!intervals.isError())
                notes = intervals.semitones();
            std::sort(notes.begin(), notes.end());
            return notes;
        },
        upwards);
}

Result ChordTypeList::read(std::string_view bytes)
{
    m_types.clear();
    auto records = readTwoLineRecords(bytes, kMagic);
    if (!records)
        return Result::failure(std::string(kNotValid));
    for (auto& [name, construction] : *records)
        m_types.emplace_back(std::move(name), std::move(construction));
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
    std::vector<std::pair<std::string_view, std::string_view>> records;
    records.reserve(m_types.size());
    for (const ChordType& type : m_types)
        records.emplace_back(type.name(), type.construction());
    return writeTwoLineRecords(kMagic, records);
}

Result ChordTypeList::save(const std::filesystem::path& path) const
{
    if (!writeFileSafely(path, toBytes()))
        return Result::failure(std::string(kErrorOpening));
    return Result::success();
}

} // namespace music
