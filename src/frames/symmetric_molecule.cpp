#include "frames/symmetric_molecule.hpp"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "common/errors.hpp"
#include "common/rounding.hpp"

namespace dravo {

bool is_symmetric(const AxisFlags& flags) {
  const auto& [first, second, third] = flags.distinguishable;
  return nearest_integer(first + second + third) <= 19;
}

void refuse_symmetric_molecules(const PairOfFlags& flags) {
  std::vector<int> symmetric;
  std::vector<std::string> reasons;
  for (std::size_t m = 0; m < 2; ++m) {
    if (!is_symmetric(flags[m])) continue;
    symmetric.push_back(static_cast<int>(m) + 1);
    reasons.push_back("molecule " + std::to_string(m + 1) +
                      " has fewer than two principal axes with a direction");
  }
  if (!symmetric.empty())
    throw NoUniqueFrame(std::move(symmetric), std::move(reasons), kTwoAxesAreNeeded);
}

}  // namespace dravo
