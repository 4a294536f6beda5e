#include "cli/Console.h"

#ifdef _WIN32
#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <windows.h>
// After windows.h, which it needs.
#include <shellapi.h>

#include "music/Utf8Path.h"
#endif

namespace cli {

std::vector<std::string> commandLineWords(int argc, char** argv)
{
#ifdef _WIN32
    int count = 0;
    if (LPWSTR* wide = CommandLineToArgvW(GetCommandLineW(), &count)) {
        std::vector<std::string> words;
        for (int i = 1; i < count; ++i)
            words.push_back(music::utf8FromPath(std::filesystem::path(wide[i])));
        LocalFree(wide);
        return words;
    }
#endif
    return std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc);
}

void useBinaryStandardStreams()
{
#ifdef _WIN32
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
#endif
}

} // namespace cli
