/// Interaction energies as tables and sentences tell them.
#pragma once

#include <string>

#include "dravo/energy.hpp"
#include "results/scan_totals.hpp"

namespace dravo {

/// Of interaction energies in kcal/mol.
inline constexpr int kEnergyDecimals = 6;

/// "-16.641720,ok", or ",clash" without a number.
void append_energy(std::string& row, const PoseEnergy& energy);

/// "lowest energy -16.641720 kcal/mol in frame 17; 2 clash, 1 scf_fail"; `what` is the word for
/// what was computed.
std::string sentence_about(const EnergyTotals& totals, const char* what);

}  // namespace dravo
