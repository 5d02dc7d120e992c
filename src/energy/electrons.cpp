#include "energy/electrons.hpp"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "driver/element_table.hpp"
#include "molecules/fragments.hpp"

namespace dravo {
namespace {

std::int64_t protons_in(std::span<const Label> labels) {
  std::int64_t protons = 0;
  for (const Label& label : labels) protons += atomic_number_of_symbol(label).value_or(0);
  return protons;
}

/// One molecule as it was asked for.
struct Asked {
  int number;  // 1 or 2
  std::span<const Label> labels;
  std::span<const Vec3> positions;
  int charge;
  int unpaired;
};

void require_possible(const Asked& molecule) {
  const auto& [number, labels, positions, charge, unpaired] = molecule;
  const std::int64_t protons = protons_in(labels), electrons = protons - charge;
  if (electrons < 0)
    throw InvalidInput(fmt::format("molecule {} cannot have charge {:+}: its nuclei have {:+}",
                                   number, charge, protons));
  const bool even = electrons % 2 == 0;
  if (unpaired >= 0 && unpaired <= electrons && unpaired % 2 == electrons % 2) return;
  throw InvalidInput(
      fmt::format("molecule {} with charge {} has {} electrons: expected {} number of unpaired "
                  "ones up to {}{}, found {}",
                  number, charge_text(charge), electrons, even ? "an even" : "an odd", electrons,
                  even ? "" : " (--unpaired), or another charge (--charges)", unpaired));
}

/// libxtb is told one atom that has the charge, and gives it to the fragment of that atom.
void require_one_part(const Asked& molecule) {
  if (molecule.charge == 0) return;
  const std::size_t parts = bonded_components(molecule.labels, molecule.positions).size();
  if (parts == 1) return;
  throw InvalidInput(
      fmt::format("molecule {} with charge {} is not bonded as a whole: GFN-FF cannot tell which "
                  "of its {} parts has the charge; gfn2 computes it",
                  molecule.number, charge_text(molecule.charge), parts));
}

}  // namespace

std::string charge_text(int charge) { return charge == 0 ? "0" : fmt::format("{:+}", charge); }

void require_possible_electrons(const Pair& pair, const EnergyOptions& options) {
  const std::span<const Label> labels(pair.labels());
  const std::span<const Vec3> positions(pair.positions());
  const auto n1 = static_cast<std::size_t>(pair.n1());
  const std::array<int, 2>&charges = options.charges, &unpaired = options.unpaired;
  const Asked molecule1{1, labels.first(n1), positions.first(n1), charges[0], unpaired[0]};
  const Asked molecule2{2, labels.subspan(n1), positions.subspan(n1), charges[1], unpaired[1]};
  require_possible(molecule1);
  require_possible(molecule2);
  if (options.method != EnergyMethod::gfnff) return;
  if (charges[0] != 0 && charges[1] != 0)
    throw InvalidInput(
        "GFN-FF cannot tell where the charges of two ions are, and its energies would be wrong by "
        "100 kcal/mol; gfn2 computes them");
  require_one_part(molecule1);
  require_one_part(molecule2);
}

}  // namespace dravo
