/// Completes the axes of each molecule into a right-handed frame.
///
/// Two axes are kept; the third is reversed when its triple product with them has the wrong sign.
/// Which axis may be reversed depends on which directions are certain ("Y") and which are not
/// ("N"): an axis that the reference angle decided is not touched while another one can take the
/// correction.
#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "common/frame.hpp"

namespace dravo {

/// Which axes of a molecule have a certain direction, in tip order.
using DecidedAxes = std::array<bool, 3>;

/// The eight combinations by their letters: Y for a certain direction, N for an uncertain one.
namespace decided_axes {
inline constexpr DecidedAxes NNN{false, false, false};
inline constexpr DecidedAxes YYY{true, true, true};
inline constexpr DecidedAxes YYN{true, true, false};
inline constexpr DecidedAxes YNY{true, false, true};
inline constexpr DecidedAxes NYY{false, true, true};
inline constexpr DecidedAxes YNN{true, false, false};
inline constexpr DecidedAxes NYN{false, true, false};
inline constexpr DecidedAxes NNY{false, false, true};
}  // namespace decided_axes

/// One of the eight combinations of certain and uncertain axes of one molecule. A and B are the
/// kept axes, C the one that may be reversed.
struct RightHandedCase {
  int molecule;  ///< 1 or 2
  DecidedAxes decided;
  std::size_t A;  ///< tip indices
  std::size_t B;
  std::size_t C;
  bool positive;  ///< sign of (A x B) . C in a right-handed frame
};

/// What one case measured and did.
struct HandednessCheck {
  const RightHandedCase* applied;
  double modulus_A;
  double modulus_B;
  double modulus_normal;
  double modulus_C;
  double before;  ///< triple product as found
  double after;   ///< triple product as left
};

/// Reverses at most one axis of `frame`. A triple product of exactly zero, or a not-a-number,
/// reverses nothing. Empty, and the frame unchanged, when a flag is neither 0.0 nor 10.0.
std::optional<HandednessCheck> make_right_handed(int molecule, MoleculeFrame& frame,
                                                 const AxisFlags& flags);

}  // namespace dravo
