#include "cli/commands.hpp"

namespace dravo {

void add_identify(CLI::App& program) { program.add_subcommand("identify", ""); }

}  // namespace dravo
