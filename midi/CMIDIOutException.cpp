#include "midi/CMIDIOutException.h"

#include <algorithm>

namespace midi {

CMIDIOutException::CMIDIOutException(std::string_view errorText) noexcept
{
    const std::size_t length = std::min(errorText.size(), m_text.size() - 1);
    std::copy_n(errorText.begin(), length, m_text.begin());
    m_text[length] = '\0';
}

} // namespace midi
