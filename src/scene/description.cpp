#include "scene/description.hpp"

#include <fmt/format.h>

#include "common/number_format.hpp"
#include "molecules/fragments.hpp"

namespace dravo {

std::string description_of(std::span<const Label> molecule1, std::span<const Label> molecule2,
                           const PoseDegrees& pose) {
  return fmt::format(
      "Molecule 1, {}, and molecule 2, {}: r {} Angstrom, theta {}, phi {}, alpha {}, beta {}, "
      "gamma {} degrees.",
      formula_of(molecule1), formula_of(molecule2), fixed_text(pose.r, 2),
      fixed_text(pose.theta, 1), fixed_text(pose.phi, 1), fixed_text(pose.alpha, 1),
      fixed_text(pose.beta, 1), fixed_text(pose.gamma, 1));
}

}  // namespace dravo
