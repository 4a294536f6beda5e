#include "music/Utf8Path.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace music {

#ifdef _WIN32

// The Win32 conversions put U+FFFD in place of what cannot be converted (bytes that are no UTF-8,
// unpaired surrogates in a file name) instead of failing, so no file name makes them throw.

std::filesystem::path pathFromUtf8(std::string_view text)
{
    if (text.empty())
        return {};
    const int size = static_cast<int>(text.size());
    std::wstring wide(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0)),
        L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
    return std::filesystem::path(std::move(wide));
}

std::string utf8FromPath(const std::filesystem::path& path)
{
    const std::wstring& wide = path.native();
    if (wide.empty())
        return {};
    const int size = static_cast<int>(wide.size());
    std::string text(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), size,
                                                                  nullptr, 0, nullptr, nullptr)),
                     '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, text.data(), static_cast<int>(text.size()),
                        nullptr, nullptr);
    return text;
}

#else

std::filesystem::path pathFromUtf8(std::string_view text)
{
    return std::filesystem::path(text);
}

std::string utf8FromPath(const std::filesystem::path& path)
{
    return path.string();
}

#endif

} // namespace music
