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
#include "common/record_stream.hpp"

namespace dravo {

/// One of the eight combinations of certain and uncertain axes of one molecule. A and B are the
/// kept axes, C the one that may be reversed.
struct RightHandedCase {
  int molecule;                 ///< 1 or 2
  std::array<bool, 3> decided;  ///< distinguishable flags in tip order
  std::size_t A;                ///< tip indices
  std::size_t B;
  std::size_t C;
  bool positive;                              ///< sign of (A x B) . C in a right-handed frame
  const char* header;                         ///< texts of the log, fixed; some name another axis
  std::array<const char*, 3> modulus_labels;  ///< of A, B, C
  const char* cross_label;
  const char* dot_label;
  const char* expectation;
  const char* after_label;
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

/// The blocks of both molecules in the order of the cases, not of the molecules.
void write_right_handed(RecordStream& log,
                        const std::array<std::optional<HandednessCheck>, 2>& checks);

/// Tips and centres of mass after the analysis.
void write_right_handed_summary(RecordStream& log, const PairOfFrames& frames);

}  // namespace dravo
