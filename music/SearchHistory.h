#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace music {

/**
 * The earlier texts of a search field, oldest first, for its drop-down list. The count is one
 * byte, so the history stops growing at 255 entries.
 */
class SearchHistory
{
public:
    static constexpr std::size_t kMaxEntries = 255;

    const std::vector<std::string>& entries() const { return m_entries; }

    /**
     * Appends `text` unless it is empty, already present (compared ignoring case) or the history
     * is full. Returns whether it was appended.
     */
    bool add(std::string_view text);
    void clear() { m_entries.clear(); }

private:
    std::vector<std::string> m_entries;
};

} // namespace music
