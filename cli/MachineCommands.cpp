#include "cli/Command.h"

namespace cli {

void registerMachineCommands(std::vector<Command>& /*commands*/) {}

} // namespace cli
