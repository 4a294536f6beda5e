#include "cli/Command.h"

namespace cli {

void registerMusicCommands(std::vector<Command>& /*commands*/) {}

} // namespace cli
