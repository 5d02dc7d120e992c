#include "results/energy_text.hpp"

#include <fmt/format.h>

#include "common/number_format.hpp"

namespace dravo {

void append_energy(std::string& row, const PoseEnergy& energy) {
  if (energy.status == EnergyStatus::ok) append_fixed(row, energy.interaction, kEnergyDecimals);
  row.append(",").append(name_of(energy.status));
}

std::string sentence_about(const EnergyTotals& totals, const char* what) {
  std::string text =
      totals.lowest_index == 0
          ? "no energy"
          : fmt::format("lowest energy {} kcal/mol in {} {}",
                        fixed_text(totals.lowest, kEnergyDecimals), what, totals.lowest_index);
  const char* before = "; ";
  for (const EnergyStatus status : kEnergyStatuses) {
    if (status == EnergyStatus::ok || totals.of(status) == 0) continue;
    text += fmt::format("{}{} {}", before, totals.of(status), name_of(status));
    before = ", ";
  }
  return text;
}

}  // namespace dravo
