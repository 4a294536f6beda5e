// Writes the shipped default part, pattern presets and part presets into a folder, from the same
// builder that DefaultData.ShippedFilesMatchTheirBuilder compares data/ with. The build target
// regenerate-defaults runs it on data/; tests never write into the source tree.
//   tm_write_default_parts FOLDER

#include "DefaultDataBuilder.h"
#include "music/SafeFileWriter.h"
#include "part/PartFile.h"
#include "part/PartPresetList.h"
#include "part/PatternPresetList.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    const std::pair<const char*, std::string> files[] = {
        {part::PartFile::kDefaultFileName, defaults::defaultPartBytes()},
        {part::PatternPresetList::kDefaultFileName, defaults::defaultPatternPresetBytes()},
        {part::PartPresetList::kDefaultFileName, defaults::defaultPartPresetBytes()},
    };
    for (const auto& [name, bytes] : files) {
        const std::filesystem::path path = folder / name;
        if (!music::writeFileSafely(path, bytes)) {
            std::fprintf(stderr, "%s: cannot write %s\n", argv[0], path.string().c_str());
            return 1;
        }
        std::printf("Wrote %s\n", path.string().c_str());
    }
    return 0;
}
