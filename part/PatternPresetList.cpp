#include "part/PatternPresetList.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "music/TextLineReader.h"
#include "part/PartTextFormat.h"
#include "part/PresetOrder.h"

namespace part {

std::string PatternPresetList::serialize() const
{
    std::string out;
    textformat::writeText(out, kMagic);
    textformat::writePatternList(out, m_list);
    return out;
}

music::Result PatternPresetList::parse(std::string_view bytes)
{
    music::TextLineReader in(bytes);
    if (!music::equalsIgnoringCase(in.readLine(), kMagic))
        return music::Result::failure(kMagicError);
    textformat::readPatternList(in, m_list);
    return music::Result::success();
}

music::Result PatternPresetList::load(const std::filesystem::path& path)
{
    const std::optional<std::string> bytes = music::readFileBytes(path);
    if (!bytes)
        return music::Result::failure(kOpenError);
    return parse(*bytes);
}

music::Result PatternPresetList::save(const std::filesystem::path& path) const
{
    if (!music::writeFileSafely(path, serialize()))
        return music::Result::failure(kOpenError);
    return music::Result::success();
}

music::Result PatternPresetList::add(const Pattern& pattern, const std::string& name,
                                     const std::filesystem::path& file)
{
    Pattern copy = pattern;
    copy.setName(name);
    if (!m_list.append(std::move(copy)))
        return music::Result::failure("The preset list is full.");
    return save(file);
}

music::Result PatternPresetList::replace(int index, const Pattern& pattern,
                                         const std::filesystem::path& file)
{
    if (index < 0 || index >= count())
        return music::Result::success();
    std::string name = m_list.pattern(index).name();
    m_list.pattern(index) = pattern;
    m_list.pattern(index).setName(std::move(name));
    return save(file);
}

music::Result PatternPresetList::rename(int index, const std::string& name,
                                        const std::filesystem::path& file)
{
    if (index < 0 || index >= count())
        return music::Result::success();
    m_list.pattern(index).setName(name);
    return save(file);
}

music::Result PatternPresetList::remove(int index, const std::filesystem::path& file)
{
    if (index < 0 || index >= count())
        return music::Result::success();
    m_list.removeAt(index);
    return save(file);
}

music::Result PatternPresetList::sortByName(bool upwards, const std::filesystem::path& file)
{
    std::vector<Pattern> presets = m_list.patterns();
    part::sortByName(presets, upwards,
                     [](const Pattern& p) -> const std::string& { return p.name(); });
    m_list.clear();
    for (Pattern& preset : presets)
        m_list.append(std::move(preset));
    return save(file);
}

} // namespace part
