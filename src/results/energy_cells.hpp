/// Interaction energies as tables tell them, and what they come to.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include "dravo/energy.hpp"

namespace dravo {

/// Of interaction energies in kcal/mol.
inline constexpr int kEnergyDecimals = 6;

/// How many values an EnergyStatus has.
inline constexpr std::size_t kEnergyStatuses = 5;

/// ",-16.641720,ok", or ",,clash" without a number.
void append_energy(std::string& row, const PoseEnergy& energy);

/// What the energies of some poses or frames come to.
struct EnergyTotals {
  double lowest = std::numeric_limits<double>::infinity();  ///< kcal/mol
  std::int64_t lowest_index = 0;                            ///< the first with it; 0 for none
  std::array<std::int64_t, kEnergyStatuses> with_status{};  ///< how many, by EnergyStatus

  void add(std::int64_t index, const PoseEnergy& energy);
};

/// "lowest energy -16.641720 kcal/mol in frame 17; 2 clash, 1 scf_fail"; `what` is the word for
/// what was computed.
std::string sentence_about(const EnergyTotals& totals, const char* what);

}  // namespace dravo
