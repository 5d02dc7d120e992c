#include "energy/electrons.hpp"

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <span>

#include "driver/element_table.hpp"

namespace dravo {
namespace {

std::int64_t protons_in(std::span<const Label> labels) {
  std::int64_t protons = 0;
  for (const Label& label : labels) protons += atomic_number_of_symbol(label).value_or(0);
  return protons;
}

void require_possible(int molecule, std::int64_t protons, int charge, int unpaired) {
  const std::int64_t electrons = protons - charge;
  const auto refuse = [&](const std::string& expected) {
    throw InvalidInput(
        fmt::format("molecule {} with charge {:+} has {} electrons: expected {}, found {} unpaired",
                    molecule, charge, electrons, expected, unpaired));
  };
  if (electrons < 0)
    throw InvalidInput(fmt::format("molecule {}: charge {:+}, but its nuclei have only {}",
                                   molecule, charge, protons));
  if (unpaired < 0 || unpaired > electrons) refuse(fmt::format("0 to {} unpaired", electrons));
  if ((electrons - unpaired) % 2 != 0)
    refuse(electrons % 2 == 0 ? "an even number of unpaired ones"
                              : "an odd number of unpaired ones (--unpaired), or another charge "
                                "(--charges)");
}

}  // namespace

void require_possible_electrons(const Pair& pair, const EnergyOptions& options) {
  const std::span<const Label> labels(pair.labels());
  const auto n1 = static_cast<std::size_t>(pair.n1());
  require_possible(1, protons_in(labels.first(n1)), options.charges[0], options.unpaired[0]);
  require_possible(2, protons_in(labels.subspan(n1)), options.charges[1], options.unpaired[1]);
  if (options.method == EnergyMethod::gfnff && options.charges[0] != 0 && options.charges[1] != 0)
    throw InvalidInput(
        "GFN-FF cannot tell where the charges of two ions are, and its energies would be wrong by "
        "100 kcal/mol; gfn2 computes them");
}

}  // namespace dravo
