#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace song {

/** Little-endian reads over the bytes of a whole file; every read checks what remains. */
class ByteCursor
{
public:
    explicit ByteCursor(std::string_view data) : m_data(data) {}

    std::size_t position() const { return m_pos; }
    std::size_t remaining() const { return m_data.size() - m_pos; }
    /** Like a C seek: positions beyond the end are allowed, reads from there are short. */
    void seekClamped(std::uint64_t pos)
    {
        m_pos = static_cast<std::size_t>(std::min<std::uint64_t>(pos, m_data.size()));
    }
    bool seek(std::uint64_t pos)
    {
        if (pos > m_data.size())
            return false;
        m_pos = static_cast<std::size_t>(pos);
        return true;
    }

    bool u8(std::uint8_t& out)
    {
        if (remaining() < 1)
            return false;
        out = byteAt(m_pos++);
        return true;
    }
    bool u16(std::uint16_t& out)
    {
        if (remaining() < 2)
            return false;
        out = static_cast<std::uint16_t>(byteAt(m_pos) | byteAt(m_pos + 1) << 8);
        m_pos += 2;
        return true;
    }
    bool u32(std::uint32_t& out)
    {
        if (remaining() < 4)
            return false;
        out = 0;
        for (int i = 3; i >= 0; --i)
            out = out << 8 | byteAt(m_pos + static_cast<std::size_t>(i));
        m_pos += 4;
        return true;
    }
    bool i32(std::int32_t& out)
    {
        std::uint32_t value = 0;
        if (!u32(value))
            return false;
        out = static_cast<std::int32_t>(value);
        return true;
    }
    /** A value of `width` bytes (1 or 2). */
    bool sized(std::uint8_t width, std::uint16_t& out)
    {
        if (width == 1) {
            std::uint8_t value = 0;
            const bool ok = u8(value);
            out = value;
            return ok;
        }
        return u16(out);
    }
    bool bytes(std::uint64_t count, std::vector<std::uint8_t>& out)
    {
        if (count > remaining())
            return false;
        const auto* begin = reinterpret_cast<const std::uint8_t*>(m_data.data()) + m_pos;
        out.assign(begin, begin + count);
        m_pos += static_cast<std::size_t>(count);
        return true;
    }
    template <std::size_t N> bool array(std::array<std::uint8_t, N>& out)
    {
        if (remaining() < N)
            return false;
        for (std::size_t i = 0; i < N; ++i)
            out[i] = byteAt(m_pos + i);
        m_pos += N;
        return true;
    }
    bool text(std::size_t length, std::string& out)
    {
        if (remaining() < length)
            return false;
        out.assign(m_data.substr(m_pos, length));
        m_pos += length;
        return true;
    }
    /** A zero-terminated string; the terminator is consumed and trailing blanks are dropped. */
    bool string(std::string& out)
    {
        const std::size_t end = m_data.find('\0', m_pos);
        if (end == std::string_view::npos)
            return false;
        std::string_view s = m_data.substr(m_pos, end - m_pos);
        while (!s.empty() && s.back() == ' ')
            s.remove_suffix(1);
        out.assign(s);
        m_pos = end + 1;
        return true;
    }

private:
    std::uint8_t byteAt(std::size_t i) const { return static_cast<std::uint8_t>(m_data[i]); }

    std::string_view m_data;
    std::size_t m_pos = 0;
};

} // namespace song
