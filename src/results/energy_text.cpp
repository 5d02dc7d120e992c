#include "results/energy_text.hpp"

#include "common/number_format.hpp"

namespace dravo {

void append_energy(std::string& row, const PoseEnergy& energy) {
  if (energy.status == EnergyStatus::ok) append_fixed(row, energy.interaction, kEnergyDecimals);
  row.append(",").append(name_of(energy.status));
}

}  // namespace dravo
