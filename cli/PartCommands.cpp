#include "cli/Command.h"

namespace cli {

void registerPartCommands(std::vector<Command>& /*commands*/) {}

} // namespace cli
