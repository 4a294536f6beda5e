#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace music {

/**
 * Reads the program's line-oriented text files from a buffer holding the whole file.
 *
 * A line ends at a line feed or at the end of the data. A NUL byte reads as a blank and trailing
 * white space (blanks, tabs, carriage returns) is dropped, so files with CRLF line ends read the
 * same as files with line feeds; leading blanks stay. Reading past the end yields empty lines and
 * numbers of 0, so a short file never fails here: its callers decide what a missing value means.
 */
class TextLineReader
{
public:
    /** Reads `data`, which must outlive the reader. */
    explicit TextLineReader(std::string_view data) : m_data(data) {}
    explicit TextLineReader(const char* data) : m_data(data) {}
    TextLineReader(std::string&&) = delete; // would read a destroyed temporary

    /** The next line, cleaned as described above; empty at the end of the data. */
    std::string readLine();
    /** The next line converted with `toInt`. */
    std::int32_t readInt() { return toInt(readLine()); }
    /** True when every byte has been consumed. */
    bool atEnd() const { return m_pos >= m_data.size(); }
    /** Byte offset of the next line. */
    std::size_t position() const { return m_pos; }

    /**
     * Decimal conversion as the C library's atoi reads a line: leading white space skipped, an
     * optional sign, digits up to the first non-digit, 0 when there are none. Digits beyond the
     * range of 32 bits wrap, so callers keeping the low 8 or 16 bits get a defined result.
     */
    static std::int32_t toInt(std::string_view text);

private:
    std::string_view m_data;
    std::size_t m_pos = 0;
};

/** Compares two texts ignoring the case of ASCII letters (magic lines, names). */
bool equalsIgnoringCase(std::string_view a, std::string_view b);

/** Lower-cases the ASCII letters of a text. */
std::string toLower(std::string_view text);

} // namespace music
