#pragma once

#include <string>
#include <vector>

namespace cli {

/**
 * The words after the program's name, as UTF-8. On Windows they come from the wide command line,
 * since `argv` holds them in the ANSI code page, which cannot spell every file name.
 */
std::vector<std::string> commandLineWords(int argc, char** argv);

/**
 * Makes standard output and error pass the program's bytes unchanged, as on Linux: on Windows no
 * line feed becomes CR LF, and a console shows the UTF-8 text as UTF-8.
 */
void useBinaryStandardStreams();

} // namespace cli
