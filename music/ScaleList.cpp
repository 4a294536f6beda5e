#include "music/ScaleList.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "music/StableSortBy.h"

#include "music/TextLineReader.h"
#include "music/TwoLineRecords.h"
#include <algorithm>

namespace music {

const ScaleType* ScaleList::find(std::string_view name) const
{
    for (const ScaleType& scale : m_scales) {
        if (equalsIgnoringCase(scale.name(), name))
            return &scale;
    }
    return nullptr;
}

bool ScaleList::add(std::string name, std::string pattern)
{
    if (m_scales.size() >= kMaxCount)
        return false;
    m_scales.emplace_back(std::move(name), std::move(pattern));
    return true;
}

Result ScaleList::patternFromInput(std::string_view input, std::string& pattern)
{
    const std::string lower = toLower(input);
    std::size_t run = 0;
    while (run < lower.size() && (lower[run] == 'x' || lower[run] == 'o'))
        ++run;
    if (run < static_cast<std::size_t>(ScaleType::kPatternLength))
        return Result::failure(std::string(kErrorInString));
    pattern = lower.substr(0, run);
    return Result::success();
}

Result ScaleList::addFromInput(std::string name, std::string_view input)
{
    std::string pattern;
    if (Result result = patternFromInput(input, pattern); !result)
        return result;
    if (!add(std::move(name), std::move(pattern)))
        return Result::failure("The list holds 255 scales already");
    return Result::success();
}

void ScaleList::rename(std::size_t index, std::string name)
{
    if (index < m_scales.size())
        m_scales[index].setName(std::move(name));
}

void ScaleList::sortByName(bool upwards)
{
    stableSortBy(
        m_scales, [](const ScaleType& scale) { return toLower(scale.name()); }, upwards);
}

void ScaleList::sortByNotes(bool upwards)
{
    stableSortBy(
        m_scales,
        [](const ScaleType& scale) {
            std::vector<PitchClass> notes = scale.pitchClassesFrom(0);
            std::sort(notes.begin(), notes.end());
            return notes;
        },
        upwards);
}

void ScaleList::remove(std::size_t index)
{
    if (index < m_scales.size())
        m_scales.erase(m_scales.begin() + static_cast<std::ptrdiff_t>(index));
}

Result ScaleList::read(std::string_view bytes)
{
    m_scales.clear();
    auto records = readTwoLineRecords(bytes, kMagic);
    if (!records)
        return Result::failure(std::string(kNotValid));
    for (auto& [name, pattern] : *records)
        m_scales.emplace_back(std::move(name), std::move(pattern));
    return Result::success();
}

Result ScaleList::load(const std::filesystem::path& path)
{
    m_scales.clear();
    const auto bytes = readFileBytes(path);
    if (!bytes)
        return Result::failure(std::string(kErrorOpening));
    return read(*bytes);
}

std::string ScaleList::toBytes() const
{
    std::vector<std::pair<std::string_view, std::string_view>> records;
    records.reserve(m_scales.size());
    for (const ScaleType& scale : m_scales)
        records.emplace_back(scale.name(), scale.pattern());
    return writeTwoLineRecords(kMagic, records);
}

Result ScaleList::save(const std::filesystem::path& path) const
{
    if (!writeFileSafely(path, toBytes()))
        return Result::failure(std::string(kErrorOpening));
    return Result::success();
}

} // namespace music
