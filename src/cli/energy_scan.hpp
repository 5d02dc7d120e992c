/// `dravo energy` for the poses of a finished scan.
#pragma once

#include "cli/energy_options.hpp"
#include "results/energy_run.hpp"

namespace dravo {

/// As the options say.
struct ScanEnergyCommand {
  EnergyRequest request;  ///< but for its method, and for what follows
  EnergyWords words;      ///< empty charges and unpaired electrons are those of the scan
  std::int64_t best = 0;  ///< 0 for `request.poses`
  std::string by;         ///< empty for the energies of the scan, or the shortest distance
  bool quiet = false;
  bool json = false;
};

/// Writes the results, and tells the lowest energies. Throws EndedBySignal, which says how to go
/// on.
void compute_poses(const ScanEnergyCommand& command);

}  // namespace dravo
