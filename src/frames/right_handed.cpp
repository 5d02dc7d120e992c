#include "frames/right_handed.hpp"

#include <algorithm>

#include "common/rounding.hpp"

namespace dravo {
namespace {

using axis_of_molecule1::x;
using axis_of_molecule1::y;
using axis_of_molecule1::z;
using axis_of_molecule2::X;
using axis_of_molecule2::Y;
using axis_of_molecule2::Z;
using namespace decided_axes;

constexpr bool negative = false;
constexpr bool positive = true;

// Molecule, decided axes, A, B, C, sign of (A x B) . C.
// clang-format off
constexpr std::array<RightHandedCase, 16> kCases{{
    {1, NNN, z, y, x, negative},
    {2, NNN, Y, X, Z, negative},
    {1, YYY, z, y, x, negative},
    {2, YYY, Z, X, Y, positive},
    {1, YYN, z, y, x, negative},
    {2, YYN, Y, X, Z, negative},
    {1, YNY, x, z, y, negative},
    {2, YNY, Z, Y, X, negative},
    {1, NYY, y, x, z, negative},
    {2, NYY, X, Z, Y, negative},
    {1, YNN, z, y, x, negative},
    {2, YNN, Y, X, Z, negative},
    {1, NYN, z, y, x, negative},
    {2, NYN, Y, X, Z, negative},
    {1, NNY, x, z, y, negative},
    {2, NNY, Z, Y, X, negative},
}};
// clang-format on

/// Empty unless every flag is 0 or 10.
std::optional<DecidedAxes> decided_by(const AxisFlags& flags) {
  DecidedAxes decided{};
  for (std::size_t k = 0; k < 3; ++k) {
    const std::int32_t flag = nearest_integer(flags.distinguishable[k]);
    if (flag != 0 && flag != 10) return std::nullopt;
    decided[k] = flag == 10;
  }
  return decided;
}

}  // namespace

std::optional<HandednessCheck> make_right_handed(int molecule, MoleculeFrame& frame,
                                                 const AxisFlags& flags) {
  const auto decided = decided_by(flags);
  const auto* const found = std::find_if(kCases.begin(), kCases.end(), [&](const auto& entry) {
    return entry.molecule == molecule && decided == entry.decided;
  });
  if (found == kCases.end()) return std::nullopt;

  const Vec3 A = frame.axis(found->A);
  const Vec3 B = frame.axis(found->B);
  const Vec3 C = frame.axis(found->C);
  const Vec3 normal = cross(A, B);
  const double before = dot(normal, C);
  const bool wrong_sign = found->positive ? before < 0.0 : before > 0.0;
  if (wrong_sign) frame.tips[found->C] = reflected(frame.tips[found->C], frame.cm);
  const double after = dot(normal, frame.axis(found->C));
  return HandednessCheck{found, modulus(A), modulus(B), modulus(normal), modulus(C), before, after};
}

}  // namespace dravo
