#include "music/SearchHistory.h"

#include "music/TextLineReader.h"

namespace music {

bool SearchHistory::add(std::string_view text)
{
    if (text.empty() || m_entries.size() >= kMaxEntries)
        return false;
    for (const std::string& entry : m_entries) {
        if (equalsIgnoringCase(entry, text))
            return false;
    }
    m_entries.emplace_back(text);
    return true;
}

} // namespace music
