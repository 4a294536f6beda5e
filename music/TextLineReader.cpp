#include "music/TextLineReader.h"

#include <cctype>

namespace music {

namespace {

bool isTrailingSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

} // namespace

std::string TextLineReader::readLine()
{
    const std::size_t start = m_pos;
    std::size_t end = m_data.find('\n', start);
    if (end == std::string_view::npos) {
        end = m_data.size();
        m_pos = end;
    } else {
        m_pos = end + 1;
    }

    std::string line(m_data.substr(start, end - start));
    for (char& c : line) {
        if (c == '\0')
            c = ' ';
    }
    while (!line.empty() && isTrailingSpace(line.back()))
        line.pop_back();
    return line;
}

std::int32_t TextLineReader::toInt(std::string_view text)
{
    std::size_t i = 0;
    while (i < text.size() && isTrailingSpace(text[i]))
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        negative = text[i] == '-';
        ++i;
    }
    std::uint32_t value = 0;
    while (i < text.size() && text[i] >= '0' && text[i] <= '9') {
        value = value * 10u + static_cast<std::uint32_t>(text[i] - '0');
        ++i;
    }
    if (negative)
        value = 0u - value;
    return static_cast<std::int32_t>(value);
}

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    }
    return true;
}

std::string toLower(std::string_view text)
{
    std::string out(text);
    for (char& c : out)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

} // namespace music
