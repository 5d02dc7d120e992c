#include "cli/commands.hpp"

namespace dravo {

void add_merge(CLI::App& program) {
  program.add_subcommand("merge", "Join the parts of a scan that several machines made");
}

}  // namespace dravo
