/// @file
/// The six association parameters of a pair as it stands.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "dravo/frame.hpp"
#include "dravo/molecule.hpp"
#include "dravo/pose.hpp"

namespace dravo {

/// The parameters of a pair, and its frames.
struct Identification {
  PoseDegrees parameters;  ///< theta and beta 0 to 180, the other angles from 0 to below 360
  std::array<PrincipalFrame, 2> molecules;  ///< frames of molecule 1 and molecule 2
  /// All parameters that make this pair, `parameters` first: rotations of the molecules make them
  /// equal.
  std::vector<PoseDegrees> equivalent;
};

/// By which frames a pair is measured.
struct IdentifyOptions {
  FrameRule frames = FrameRule::extended;  ///< which molecules have one
  /// The axes of each molecule are those of the same molecule here, carried along; parameters are
  /// then not reduced by symmetry. Not owned; null for none.
  const Pair* like = nullptr;
};

/// The parameters by which `Placer::place` makes this pair, turned and moved as a whole, in closed
/// form. Those that its molecules' rotations make equal are one, so a pair has one set of
/// parameters, whatever its pose and the order of its atoms. Angles without a meaning are 0, but
/// theta beside a linear molecule 2, which is 90 unless r is 0.
///
/// Throws NoUniqueFrame for a molecule without a frame, by the strict rule alone, and InvalidInput
/// for a reference of other molecules.
///
/// @code
/// const auto found = dravo::identify(dravo::read_pair({.file = "dimer.xyz", .split = 6}).pair);
/// std::cout << found.parameters.r << " Angstrom\n";
/// @endcode
Identification identify(const Pair& pair, const IdentifyOptions& options = {});

/// Whether `qn-dravo` can build the pair: both molecules have strict frames.
bool is_for_qn_dravo(const std::array<PrincipalFrame, 2>& molecules);

/// A parameter that a build moves off the value given, because angles lose their meaning there.
struct NudgedParameter {
  std::string_view name;  ///< of `kPoseParameters`
  double given;           ///< degrees; Angstrom for r
  double used;            ///< in the same unit
};

/// Those of a pose in range. Angstrom and degrees.
std::vector<NudgedParameter> nudged_in_a_build(const PoseDegrees& degrees);

/// What the parameters do not tell, or tell badly: angles without a meaning, uncertain frames. One
/// sentence each, without full stop.
std::vector<std::string> remarks_on(const Identification& identification);

/// What makes the frames of molecule 1 and 2 uncertain, and how far these are from a reference:
/// "molecule 1: it is nearly symmetric: C2 holds within 0.0063 Angstrom".
std::vector<std::string> remarks_on(const std::array<PrincipalFrame, 2>& molecules);

/// The sentence about a search that missed the axes by so many degrees, and thus about what is
/// uncertain: "the search missed the axes by 0.164 degrees: the parameters are that uncertain".
/// Empty for a search that did not miss them.
std::string remark_on_missed_axes(double missed, std::string_view what_is_uncertain);

}  // namespace dravo
