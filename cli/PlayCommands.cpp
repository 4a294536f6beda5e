#include "cli/Command.h"

namespace cli {

void registerPlayCommands(std::vector<Command>& /*commands*/) {}

} // namespace cli
