/// Options that say where a pair of molecules is.
#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dravo/molecule.hpp"
#include "dravo/place.hpp"

namespace dravo {

/// Filled when the arguments are parsed; shared by the options and the work of a command.
using SharedRequest = std::shared_ptr<PairRequest>;

/// What tells how the file of a pair is read: `--split N1|auto`, `--frame K`, `--unit UNIT` and
/// `--no-check`.
void add_split_options(CLI::App& command, const SharedRequest& request);

/// The file of a pair as first argument, and how it is read.
SharedRequest add_pair_options(CLI::App& command);

/// `--like FILE`, the file of the same pair whose axes are carried along.
CLI::Option* add_like_option(CLI::App& command, std::string& file);

/// The pair of `--like`, divided as `pair`, which was read by the request; empty without the
/// option. Throws InvalidInput and IoFailure.
std::optional<Pair> reference_pair(const std::string& file, const PairRequest& request,
                                   const Pair& pair);

/// How poses are placed, and by whose axes.
struct PlacingOptions {
  Placing placing = Placing::automatic;
  std::string like;  ///< file of the reference; empty for none
};

/// `--exact`, `--as-qn-dravo` and `--like FILE`.
void add_placing_options(CLI::App& command, PlacingOptions& options);

/// A second argument, the file of molecule 2.
void add_second_file(CLI::App& command, const SharedRequest& request);

/// Every message on a line of its own on standard error.
void tell(const std::vector<std::string>& messages);

}  // namespace dravo
