#include "music/IntervalList.h"

#include "music/IntervalTable.h"

#include <string>

namespace music {

IntervalList IntervalList::error()
{
    IntervalList list;
    list.m_error = true;
    return list;
}

IntervalList IntervalList::parse(std::string_view text)
{
    std::string cleaned;
    cleaned.reserve(text.size());
    bool valid = true;
    for (const char c : text) {
        if (c == ' ')
            continue;
        const bool allowed =
            (c >= '0' && c <= '9') || c == ';' || c == '#' || c == 'b' || c == 'h' || c == 't';
        if (allowed)
            cleaned.push_back(c);
        else
            valid = false; // keep walking, as the dialog does, but the answer is fixed
    }
    if (!valid)
        return error();

    IntervalList list;
    std::string_view rest = cleaned;
    for (auto end = rest.find(';'); end != std::string_view::npos; end = rest.find(';')) {
        const int semitones = IntervalTable::semitonesOfSymbol(rest.substr(0, end));
        if (semitones < 0)
            return error();
        list.m_semitones.push_back(static_cast<std::uint8_t>(semitones));
        rest.remove_prefix(end + 1);
    }
    return list;
}

} // namespace music
