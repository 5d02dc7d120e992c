/// Principal-axis frames of the two molecules and the flags of their axes.
///
/// An axis is stored as its tip, the point one eigenvector away from the centre of mass, because
/// that is what is logged and drawn. Tips stand in the order of ascending moments. The letters of
/// the axes differ between the molecules on purpose:
///
///     tip               0 (I_A)   1 (I_B)   2 (I_C)
///     molecule 1, xyz      z         y         x
///     molecule 2, XYZ      Y         X         Z
#pragma once

#include <array>
#include <cstddef>

#include "common/vector.hpp"

namespace dravo {

struct MoleculeFrame {
  Vec3 cm;                   ///< centre of mass, Angstrom
  std::array<Vec3, 3> tips;  ///< cm + unit eigenvector, Angstrom

  /// Axis vector, always recomputed as tip minus centre of mass.
  [[nodiscard]] Vec3 axis(std::size_t k) const { return tips[k] - cm; }
};

/// Index of a tip by the letter of its axis.
namespace axis_of_molecule1 {
inline constexpr std::size_t z = 0, y = 1, x = 2;
}
namespace axis_of_molecule2 {
inline constexpr std::size_t Y = 0, X = 1, Z = 2;
}

/// Molecule 1, then molecule 2.
using PairOfFrames = std::array<MoleculeFrame, 2>;

/// Flags of one molecule's axes, in tip order.
struct AxisFlags {
  /// 10.0 ("Y") when the reference angle told the two directions of the axis apart, else 0.0 ("N").
  /// A flag that was raised stays raised for the whole run.
  std::array<double, 3> distinguishable{0.0, 0.0, 0.0};
  /// -1.0 when the axis points away from the higher-Z-CM, else 1.0.
  std::array<double, 3> direction{1.0, 1.0, 1.0};
};

using PairOfFlags = std::array<AxisFlags, 2>;

inline constexpr double kDistinguishable = 10.0;

}  // namespace dravo
