#pragma once

#include "music/Result.h"
#include "music/ScaleType.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace music {

/**
 * The ordered list of scale types and its ".scl" file: the magic line, the number of scales, then
 * name and pattern of each scale, every line ending in a single line feed. Its messages carry no
 * full stop, unlike those of the chord files; each file keeps its own texts.
 *
 * The count is one byte. Rather than let it wrap, the list takes at most 255 scales, so a saved
 * list always reads back whole.
 */
class ScaleList
{
public:
    static constexpr std::string_view kMagic = "Tonalmancer_Scales";
    /** The list in the data folder that the type dialogs load and "Defaults" restores. */
    static constexpr const char* kDefaultFileName = "default.scl";
    static constexpr std::string_view kErrorOpening = "Error opening file";
    static constexpr std::string_view kNotValid = "Seems to be no valid file";
    static constexpr std::string_view kErrorInString = "Error in String";
    static constexpr std::size_t kMaxCount = 255;

    const std::vector<ScaleType>& scales() const { return m_scales; }
    std::uint8_t count() const { return static_cast<std::uint8_t>(m_scales.size()); }
    bool isEmpty() const { return m_scales.empty(); }
    const ScaleType& at(std::size_t index) const { return m_scales.at(index); }
    /** The first scale with this name (compared ignoring case); nullptr when there is none. */
    const ScaleType* find(std::string_view name) const;

    /** Appends a scale as it is; false when the list holds 255 scales already. */
    bool add(std::string name, std::string pattern);
    /**
     * What the "Add Scale" dialog does with its input: the text is lower-cased and its leading run
     * of "x" and "o" letters taken; fewer than twelve gives "Error in String" and adds nothing.
     */
    Result addFromInput(std::string name, std::string_view input);
    void rename(std::size_t index, std::string name);
    void remove(std::size_t index);
    void clear() { m_scales.clear(); }
    /** Orders the scales by name, ignoring case; equal names keep their order. */
    void sortByName(bool upwards);
    /** Orders the scales by their notes from the base note, compared lowest note first. */
    void sortByNotes(bool upwards);

    /** The pattern the dialog would store for `input`, or "Error in String". */
    static Result patternFromInput(std::string_view input, std::string& pattern);

    /** Replaces the list with the scales read from file bytes. */
    Result read(std::string_view bytes);
    Result load(const std::filesystem::path& path);
    std::string toBytes() const;
    /** Saves through a temporary file, so a failed save leaves the old file as it was. */
    Result save(const std::filesystem::path& path) const;

private:
    std::vector<ScaleType> m_scales;
};

} // namespace music
