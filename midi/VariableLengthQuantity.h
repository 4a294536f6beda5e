#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace midi {

/**
 * The variable-length quantities of Standard MIDI files: 7-bit groups, most significant first,
 * bit 7 set on every byte but the last. Values up to kMaximum take at most four bytes; the
 * encoder keeps only the low 28 bits of anything larger.
 */
class VariableLengthQuantity
{
public:
    static constexpr std::uint32_t kMaximum = 0x0FFFFFFF;
    static constexpr std::size_t kMaximumSize = 4;

    /** The encoded bytes of `value` (its low 28 bits); `size` tells how many are used. */
    struct Encoded
    {
        std::array<std::uint8_t, kMaximumSize> bytes{};
        std::size_t size = 0;
    };

    static Encoded encode(std::uint32_t value);
    /** Appends the encoding of `value` to `out`. */
    static void append(std::vector<std::uint8_t>& out, std::uint32_t value);

    /**
     * Reads one quantity from `data` starting at `position`, which is moved past it. Nothing when
     * the data ends inside the quantity or when it runs longer than four bytes.
     */
    static std::optional<std::uint32_t> decode(std::string_view data, std::size_t& position);
};

} // namespace midi
