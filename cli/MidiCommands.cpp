#include "cli/Command.h"

namespace cli {

void registerMidiCommands(std::vector<Command>& /*commands*/) {}

} // namespace cli
