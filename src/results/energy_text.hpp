/// Interaction energies as tables have them.
#pragma once

#include <string>

#include "dravo/energy.hpp"

namespace dravo {

/// Of interaction energies in kcal/mol.
inline constexpr int kEnergyDecimals = 6;

/// "e_int_gfn2_kcal_mol": tables that may have energies by several methods name them so.
std::string energy_column(EnergyMethod method);

/// "-16.641720,ok", or ",clash" without a number.
void append_energy(std::string& row, const PoseEnergy& energy);

}  // namespace dravo
