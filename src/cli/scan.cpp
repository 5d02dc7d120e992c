#include "cli/commands.hpp"

namespace dravo {

void add_scan(CLI::App& program) { program.add_subcommand("scan", "Place a pair many times"); }

}  // namespace dravo
