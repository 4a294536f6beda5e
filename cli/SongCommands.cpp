#include "cli/Command.h"

namespace cli {

void registerSongCommands(std::vector<Command>& /*commands*/) {}

} // namespace cli
