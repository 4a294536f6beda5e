// Writes the shipped default song into a folder, from the same recipe that the song tests compare
// data/default.bmx with. The build target regenerate-defaults runs it on data/.
//   tm_write_default_song FOLDER

#include "DefaultSongBuilder.h"
#include "music/SafeFileWriter.h"

#include <cstdio>
#include <filesystem>
#include <string>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    std::string bytes;
    if (const music::Result r = defaults::defaultSongBytes(bytes); !r) {
        std::fprintf(stderr, "%s: %s\n", argv[0], r.message().c_str());
        return 1;
    }
    const std::filesystem::path path = std::filesystem::path(argv[1]) / "default.bmx";
    if (!music::writeFileSafely(path, bytes)) {
        std::fprintf(stderr, "%s: cannot write %s\n", argv[0], path.string().c_str());
        return 1;
    }
    std::printf("Wrote %s\n", path.string().c_str());
    return 0;
}
