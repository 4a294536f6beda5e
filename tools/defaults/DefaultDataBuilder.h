#pragma once

#include "part/Part.h"
#include "part/PartPresetList.h"
#include "part/PatternPresetList.h"

#include <string>

// Builds the shipped default part and preset files from the library's own model and writer, so
// they are valid by construction. The test DefaultData.ShippedFilesMatchTheirBuilder compares
// data/ with these bytes; after a change here, the build target regenerate-defaults rewrites data/
// (cmake --build --preset dev --target regenerate-defaults).
namespace defaults {

part::Part defaultPart();
part::PatternList defaultPatternPresets();
part::PartPresetList defaultPartPresets();

std::string defaultPartBytes();
std::string defaultPatternPresetBytes();
std::string defaultPartPresetBytes();

} // namespace defaults
