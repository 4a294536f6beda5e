#pragma once

#include "music/Result.h"
#include "part/PatternList.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace part {

/**
 * The pattern presets: a pattern list whose patterns are the presets (a pattern's name is the
 * preset's name), kept in a ".spr" file that starts with the magic line
 * "Tonalmancer pattern presets".
 *
 * Every change (add, replace, rename, remove) writes the whole list to the file given, normally
 * the default file, at once. A failed load leaves the list as it was, so that the next change
 * cannot overwrite the default file with an emptied list.
 */
class PatternPresetList
{
public:
    static constexpr const char* kMagic = "Tonalmancer pattern presets";
    static constexpr const char* kDefaultFileName = "default.spr";
    static constexpr const char* kFileFilter =
        "Pattern presets (*.spr)|*.spr|All Files (*.*)|*.*||";
    static constexpr const char* kOpenError = "Unable to open preset file";
    static constexpr const char* kMagicError = "No preset file";

    int count() const { return m_list.count(); }
    const Pattern& preset(int index) const { return m_list.pattern(index); }
    const PatternList& list() const { return m_list; }
    void clear() { m_list.clear(); }

    std::string serialize() const;
    /** Replaces the list by the presets in `bytes`; "No preset file" (list unchanged) on a bad
     * magic. */
    music::Result parse(std::string_view bytes);
    music::Result load(const std::filesystem::path& path);
    music::Result save(const std::filesystem::path& path) const;

    /** Appends a preset without saving (building a list); false when the list is full. */
    bool append(Pattern preset) { return m_list.append(std::move(preset)); }
    /** Appends a copy of `pattern` named `name`, then saves to `file`. */
    music::Result add(const Pattern& pattern, const std::string& name,
                      const std::filesystem::path& file);
    /** Replaces preset `index` by `pattern` (keeping the preset's name), then saves. */
    music::Result replace(int index, const Pattern& pattern, const std::filesystem::path& file);
    music::Result rename(int index, const std::string& name, const std::filesystem::path& file);
    music::Result remove(int index, const std::filesystem::path& file);
    /** Sorts the presets by name (see part::sortByName), then saves. */
    music::Result sortByName(bool upwards, const std::filesystem::path& file);

private:
    PatternList m_list;
};

} // namespace part
