#pragma once

#include "music/Result.h"
#include "part/PartPreset.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace part {

/**
 * The part presets, kept in a ".ppr" file: the magic line "Tonalmancer chord presets", the
 * preset count, then per preset its name, beats per minute, ticks per beat, first and last
 * selected chord, base octave, twelve flags, a pattern list block and a chord list block.
 *
 * Every change (add, replace, rename, remove) writes the whole list to the file given, normally
 * the default file, at once. A failed load leaves the list as it was.
 */
class PartPresetList
{
public:
    static constexpr const char* kMagic = "Tonalmancer chord presets";
    static constexpr const char* kDefaultFileName = "default.ppr";
    static constexpr const char* kFileFilter = "Part presets (*.ppr)|*.ppr|All Files (*.*)|*.*||";
    static constexpr const char* kOpenError = "Unable to open preset file";
    static constexpr const char* kMagicError = "No preset file";
    static constexpr int kMaxCount = 65535;

    int count() const { return static_cast<int>(m_presets.size()); }
    const PartPreset& preset(int index) const { return m_presets.at(index); }
    const std::vector<PartPreset>& presets() const { return m_presets; }
    void clear() { m_presets.clear(); }

    /** A preset record of a part (its current pattern is not kept), named `name`. */
    static PartPreset presetOf(const Part& part, const std::string& name);

    std::string serialize() const;
    music::Result parse(std::string_view bytes);
    music::Result load(const std::filesystem::path& path);
    music::Result save(const std::filesystem::path& path) const;

    /** Appends a record without saving (building a list); false when the list is full. */
    bool append(PartPreset preset);
    /** Appends a copy of `part` named `name`, then saves to `file`. */
    music::Result add(const Part& part, const std::string& name, const std::filesystem::path& file);
    /** Replaces preset `index` by `part` (keeping the preset's name), then saves. */
    music::Result replace(int index, const Part& part, const std::filesystem::path& file);
    music::Result rename(int index, const std::string& name, const std::filesystem::path& file);
    music::Result remove(int index, const std::filesystem::path& file);
    /** Sorts the presets by name (see part::sortByName), then saves. */
    music::Result sortByName(bool upwards, const std::filesystem::path& file);

private:
    std::vector<PartPreset> m_presets;
};

} // namespace part
