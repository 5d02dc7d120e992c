/// Energies of a scan: its options, and the keys of its plan.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "cli/energy_options.hpp"
#include "scan/plan_keys.hpp"

namespace dravo {

/// As options give them.
struct ScanEnergyWords : EnergyWords {
  std::string keep_below;
};

struct ScanEnergy {
  std::optional<EnergyOptions> options;  ///< none without `energy`
  std::optional<double> keep_below;      ///< kcal/mol
};

/// `--energy` and what belongs to it, and `--keep-below E`. Each may be a key of a plan too.
void add_scan_energy_options(CLI::App& command, ScanEnergyWords& words);

/// What options and plan say together; an option replaces the key of the plan. The keys are taken
/// out of `keys`. Throws InvalidInput, with the place in the plan.
ScanEnergy take_scan_energy(const CLI::App& command, ScanEnergyWords words, PlanKeys& keys);

}  // namespace dravo
