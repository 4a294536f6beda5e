#include "midi/VariableLengthQuantity.h"

namespace midi {

VariableLengthQuantity::Encoded VariableLengthQuantity::encode(std::uint32_t value)
{
    value &= kMaximum;
    std::size_t groups = 1;
    while (groups < kMaximumSize && (value >> (7 * groups)) != 0)
        ++groups;

    Encoded encoded;
    encoded.size = groups;
    for (std::size_t i = 0; i < groups; ++i) {
        const std::size_t shift = 7 * (groups - 1 - i);
        auto byte = static_cast<std::uint8_t>((value >> shift) & 0x7F);
        if (i + 1 < groups)
            byte = static_cast<std::uint8_t>(byte | 0x80);
        encoded.bytes[i] = byte;
    }
    return encoded;
}

void VariableLengthQuantity::append(std::vector<std::uint8_t>& out, std::uint32_t value)
{
    const Encoded encoded = encode(value);
    out.insert(out.end(), encoded.bytes.begin(),
               encoded.bytes.begin() + static_cast<std::ptrdiff_t>(encoded.size));
}

std::optional<std::uint32_t> VariableLengthQuantity::decode(std::string_view data,
                                                            std::size_t& position)
{
    std::uint32_t value = 0;
    std::size_t pos = position;
    for (std::size_t count = 0; count < kMaximumSize; ++count) {
        if (pos >= data.size())
            return std::nullopt;
        const auto byte = static_cast<std::uint8_t>(data[pos++]);
        value = (value << 7) | (byte & 0x7Fu);
        if ((byte & 0x80) == 0) {
            position = pos;
            return value;
        }
    }
    return std::nullopt;
}

} // namespace midi
