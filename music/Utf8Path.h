#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace music {

// The program keeps file names as UTF-8 text (command-line arguments, messages, names stored in
// files). std::filesystem::path converts narrow text in the ANSI code page on Windows, which
// loses every character outside it, so text and paths meet through these two functions only.
// On other systems a file name is a byte string and passes unchanged both ways.

/** The path named by UTF-8 text. */
std::filesystem::path pathFromUtf8(std::string_view text);

/** The path as UTF-8 text, for messages and stored names. */
std::string utf8FromPath(const std::filesystem::path& path);

} // namespace music
