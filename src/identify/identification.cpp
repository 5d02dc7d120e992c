#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "common/number_format.hpp"
#include "common/turn.hpp"
#include "dravo/identify.hpp"
#include "driver/user_parameters.hpp"
#include "identify/closed_form.hpp"

namespace dravo {
namespace {

/// Degrees; within it of 0 or 180 an angle makes others meaningless.
constexpr double kNearlySingular = 1.0;
/// Angstrom; the direction between nearer centres of mass means nothing.
constexpr double kNoDirectionDistance = 0.1;
/// Degrees; a search that ends farther from the axes has missed them.
constexpr double kMissed = 0.01;

// --- remarks ----------------------------------------------------------------------------------

bool near(double degrees, double singular) {
  return std::abs(degrees - singular) < kNearlySingular;
}

std::string shown(double degrees) { return fixed_text(degrees, 8); }

/// A build that knows beta as zero takes the whole turn from alpha.
std::string advice_for_beta_zero(const PoseDegrees& found) {
  const PoseDegrees used = nudged_parameters(found);
  if (used.gamma == found.gamma || found.beta >= 0.5) return "";
  return "; to build this pair give alpha as " +
         shown(folded_turn(found.alpha + found.gamma - used.gamma));
}

void remark_on_euler_angles(const PoseDegrees& p, bool for_qn_dravo,
                            std::vector<std::string>& remarks) {
  if (near(p.beta, 0.0))
    remarks.push_back(fmt::format("beta is near 0: only alpha + gamma = {} has a meaning{}",
                                  shown(folded_turn(p.alpha + p.gamma)),
                                  for_qn_dravo ? advice_for_beta_zero(p) : ""));
  if (near(p.beta, 180.0))
    remarks.push_back(fmt::format("beta is near 180: only alpha - gamma = {} has a meaning",
                                  shown(folded_turn(p.alpha - p.gamma))));
}

void remark_on_position(const PoseDegrees& p, std::vector<std::string>& remarks) {
  if (p.r < kNoDirectionDistance) {
    remarks.emplace_back("r is below 0.1 Angstrom: theta and phi have no meaning");
  } else if (near(p.theta, 0.0) || near(p.theta, 180.0)) {
    remarks.emplace_back(near(p.theta, 0.0) ? "theta is near 0: phi has no meaning"
                                            : "theta is near 180: phi has no meaning");
  }
}

/// Which parameters a molecule without three directions leaves without a meaning.
void remark_on_shapes(const Identification& found, std::vector<std::string>& remarks) {
  constexpr std::array<std::string_view, 2> kShapes{"an atom", "linear"};
  const Shapes shapes = shapes_of(found.molecules);
  // The parameters of a pose without poles.
  const auto counts = meaningful(shapes, {1.0, 90.0, 90.0, 90.0, 90.0, 90.0});
  std::string names;
  for (std::size_t k = 0; k < kPoseParameters.size(); ++k)
    if (!counts[k]) names.append(names.empty() ? "" : ", ").append(kPoseParameters[k].name);
  if (names.empty()) return;
  std::string reasons;
  for (std::size_t m = 0; m < shapes.size(); ++m)
    if (shapes[m] != Shape::general)
      reasons += fmt::format("{}molecule {} is {}", reasons.empty() ? "" : " and ", m + 1,
                             kShapes[static_cast<std::size_t>(shapes[m])]);
  remarks.push_back(fmt::format("{}: no meaning for {}", reasons, names));
}

}  // namespace

Identification identify(const Pair& pair, const IdentifyOptions& options) {
  Identification found{{},
                       options.like == nullptr ? principal_frames(pair, options.frames)
                                               : frames_like(pair, *options.like),
                       {}};
  found.equivalent = equivalent_parameters(found.molecules);
  found.parameters = found.equivalent.front();
  return found;
}

bool is_for_qn_dravo(const std::array<PrincipalFrame, 2>& molecules) {
  const auto& [one, two] = molecules;
  return one.kind == FrameKind::strict && two.kind == FrameKind::strict;
}

std::vector<NudgedParameter> nudged_in_a_build(const PoseDegrees& degrees) {
  const PoseDegrees used = nudged_parameters(degrees);
  std::vector<NudgedParameter> nudged;
  for (const auto& [name, parameter] : kPoseParameters)
    if (used.*parameter != degrees.*parameter)
      nudged.push_back({name, degrees.*parameter, used.*parameter});
  return nudged;
}

std::string remark_on_missed_axes(double missed, std::string_view what_is_uncertain) {
  if (missed <= kMissed) return "";
  return fmt::format("the search missed the axes by {} degrees: {} are that uncertain",
                     fixed_text(missed, 3), what_is_uncertain);
}

std::vector<std::string> remarks_on(const std::array<PrincipalFrame, 2>& molecules) {
  std::vector<std::string> remarks;
  for (std::size_t m = 0; m < molecules.size(); ++m) {
    const PrincipalFrame& frame = molecules[m];
    if (frame.kind == FrameKind::carried)
      remarks.push_back(fmt::format("molecule {}: {} Angstrom from the reference (RMSD)", m + 1,
                                    fixed_text(frame.rmsd, 4)));
    for (const std::string& warning : frame.warnings)
      remarks.push_back(fmt::format("molecule {}: {}", m + 1, warning));
  }
  return remarks;
}

std::vector<std::string> remarks_on(const Identification& identification) {
  const PoseDegrees& found = identification.parameters;
  const bool for_qn_dravo = is_for_qn_dravo(identification.molecules);
  const Shapes shapes = shapes_of(identification.molecules);
  std::vector<std::string> remarks;
  remark_on_shapes(identification, remarks);
  if (shapes[0] != Shape::atom && shapes[1] != Shape::atom)
    remark_on_euler_angles(found, for_qn_dravo, remarks);
  remark_on_position(found, remarks);
  for (std::string& remark : remarks_on(identification.molecules))
    remarks.push_back(std::move(remark));
  if (!for_qn_dravo) return remarks;
  for (const auto& [name, given, used] : nudged_in_a_build(found))
    remarks.push_back(fmt::format("qn-dravo uses {} for {} {}, so its pair differs by that",
                                  fixed_text(used, 3), name, shown(given)));
  return remarks;
}

}  // namespace dravo
