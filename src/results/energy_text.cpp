#include "results/energy_text.hpp"

#include <fmt/format.h>

#include "common/number_format.hpp"

namespace dravo {

std::string energy_column(EnergyMethod method) {
  return fmt::format("e_int_{}_kcal_mol", name_of(method));
}

void append_energy(std::string& row, const PoseEnergy& energy) {
  if (energy.status == EnergyStatus::ok) append_fixed(row, energy.interaction, kEnergyDecimals);
  row.append(",").append(name_of(energy.status));
}

}  // namespace dravo
