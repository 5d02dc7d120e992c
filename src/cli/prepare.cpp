#include "cli/commands.hpp"

namespace dravo {

void add_prepare(CLI::App& program) { program.add_subcommand("prepare", ""); }

}  // namespace dravo
