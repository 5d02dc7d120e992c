/// Options that say where a pair of molecules is.
#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "dravo/molecule.hpp"

namespace dravo {

/// Filled when the arguments are parsed; shared by the options and the work of a command.
using SharedRequest = std::shared_ptr<PairRequest>;

/// `--split N1|auto` and `--frame K`.
void add_split_options(CLI::App& command, const SharedRequest& request);

/// The file of a pair as first argument, `--split` and `--frame`.
SharedRequest add_pair_options(CLI::App& command);

/// Every message on a line of its own on standard error.
void tell(const std::vector<std::string>& messages);

}  // namespace dravo
