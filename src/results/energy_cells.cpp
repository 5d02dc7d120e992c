#include "results/energy_cells.hpp"

#include <fmt/format.h>

#include "common/number_format.hpp"

namespace dravo {

void append_energy(std::string& row, const PoseEnergy& energy) {
  row += ',';
  if (energy.status == EnergyStatus::ok) append_fixed(row, energy.interaction, kEnergyDecimals);
  row.append(",").append(name_of(energy.status));
}

void EnergyTotals::add(std::int64_t index, const PoseEnergy& energy) {
  ++with_status.at(static_cast<std::size_t>(energy.status));
  if (energy.status != EnergyStatus::ok || energy.interaction >= lowest) return;
  lowest = energy.interaction;
  lowest_index = index;
}

std::string sentence_about(const EnergyTotals& totals, const char* what) {
  std::string text =
      totals.lowest_index == 0
          ? "no energy"
          : fmt::format("lowest energy {} kcal/mol in {} {}",
                        fixed_text(totals.lowest, kEnergyDecimals), what, totals.lowest_index);
  const char* before = "; ";
  for (std::size_t k = 1; k < kEnergyStatuses; ++k) {
    if (totals.with_status.at(k) == 0) continue;
    text += fmt::format("{}{} {}", before, totals.with_status.at(k),
                        name_of(static_cast<EnergyStatus>(k)));
    before = ", ";
  }
  return text;
}

}  // namespace dravo
