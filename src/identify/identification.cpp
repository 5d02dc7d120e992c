#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>
#include <utility>

#include "common/constants.hpp"
#include "common/errors.hpp"
#include "common/number_format.hpp"
#include "dravo/identify.hpp"
#include "driver/user_parameters.hpp"
#include "molecules/pair_table.hpp"
#include "orientation/euler_search.hpp"
#include "orientation/molecule_alignment.hpp"
#include "orientation/pair_analysis.hpp"
#include "output/placement.hpp"

namespace dravo {
namespace {

/// Degrees; within it of 0 or 180 an angle makes others meaningless.
constexpr double kNearlySingular = 1.0;
/// Angstrom; the direction between nearer centres of mass means nothing.
constexpr double kNoDirectionDistance = 0.1;
/// Degrees; a search that ends farther from the axes has missed them.
constexpr double kMissed = 0.01;

// --- parameters -------------------------------------------------------------------------------

/// From 0 to below 360.
double folded_turn(double degrees) {
  double folded = std::fmod(degrees, 360.0);
  if (folded < 0.0) folded += 360.0;
  return folded < 360.0 ? folded + 0.0 : 0.0;  // no negative zero
}

struct Found {
  PoseDegrees parameters;  ///< degrees
  double deviation;        ///< degrees
};

/// Frames as they lie after the alignment. Rounding may put molecule 1 higher on Z than r.
PoseDegrees in_degrees(const PairOfFrames& frames, const EulerAngles& euler) {
  const SphericalPosition at = measured_position(frames[0].cm, frames[1].cm);
  const double at_pole = frames[0].cm.z < 0.0 ? kPi : 0.0;
  return {at.r,
          degrees_by_pi(std::isnan(at.theta) ? at_pole : at.theta),
          folded_turn(degrees_by_pi(at.phi)),
          folded_turn(degrees_by_pi(euler.alpha)),
          degrees_by_pi(euler.beta),
          folded_turn(degrees_by_pi(euler.gamma))};
}

struct FoundEuler {
  EulerAngles angles;
  double deviation;  ///< degrees
};

/// Both alpha and gamma larger by an angle: molecule 1's frame turned about its own z and about Z.
PairOfFrames with_larger_angles(const PairOfFrames& frames, double shift) {
  using namespace axis_of_molecule1;
  const Matrix3 turn = euler_matrix(shift, 0.0, 0.0);
  const Matrix3 columns = transposed(turn);
  PairOfFrames turned = frames;
  MoleculeFrame& molecule1 = turned[0];
  for (const auto& [tip, mix] :
       {std::pair{x, columns.row[0]}, {y, columns.row[1]}, {z, columns.row[2]}})
    molecule1.tips[tip] =
        molecule1.cm +
        turn * (mix.x * frames[0].axis(x) + mix.y * frames[0].axis(y) + mix.z * frames[0].axis(z));
  return turned;
}

/// The grid does not wrap, so angles just below a full turn are found only when they are made
/// larger.
std::optional<FoundEuler> find_euler_angles(const PairOfFrames& frames) {
  std::optional<FoundEuler> best;
  for (const double shift : {0.0, 1.0, 2.0}) {
    double missed = 0.0;
    EulerSearchWatcher watcher;
    watcher.pass_done = [&](int, const BestPoint& point, const ScanPass&, double) {
      missed = point.soma_diferencas;
    };
    const auto found =
        search_euler_angles(shift == 0.0 ? frames : with_larger_angles(frames, shift), watcher);
    if (found && (!best || missed < best->deviation))
      best = {{found->alpha - shift, found->beta, found->gamma - shift}, missed};
    if (best && best->deviation <= kMissed) break;
  }
  return best;
}

/// The parameters of the pair turned as a whole, which they do not depend on; empty when a search
/// finds nothing.
std::optional<Found> find_in_pose(const ConstAtomTable& given, const MoleculeSplit& split,
                                  const Matrix3& pose) {
  std::array<OwnedTable, 4> owned{OwnedTable(split.N), OwnedTable(split.N), OwnedTable(split.N),
                                  OwnedTable(split.N)};
  AnalysisTables tables{owned[0].table(), owned[1].table(), owned[2].table(), owned[3].table(),
                        owned[3].table()};
  tables.newcoo_and_m.copy_rows(given, split.N);
  turn_rows(tables.newcoo_and_m, {0, split.N}, pose, {});

  AnalysisObserver nobody;
  PairOfFrames frames;
  try {
    frames = align_pair(split, tables, nobody);
  } catch (const NoRotationFound&) {
    return std::nullopt;
  }
  const auto euler = find_euler_angles(frames);
  if (!euler) return std::nullopt;
  return Found{in_degrees(frames, euler->angles),
               std::max(euler->deviation, misalignment(frames[1]))};
}

/// A search on a grid may miss in one pose and not in another: the first that does not miss, or
/// else the best.
std::optional<Found> find_parameters(const ConstAtomTable& given, const MoleculeSplit& split) {
  constexpr std::array<EulerAngles, 3> kPoses{{{0.0, 0.0, 0.0}, {1.1, 0.7, 0.4}, {2.3, 1.9, 3.6}}};
  std::optional<Found> best;
  for (const auto& [alpha, beta, gamma] : kPoses) {
    const auto found = find_in_pose(given, split, euler_matrix(alpha, beta, gamma));
    if (found && (!best || found->deviation < best->deviation)) best = found;
    if (best && best->deviation <= kMissed) break;
  }
  return best;
}

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

void remark_on_euler_angles(const PoseDegrees& p, std::vector<std::string>& remarks) {
  if (near(p.beta, 0.0))
    remarks.push_back(fmt::format("beta is near 0: only alpha + gamma = {} has a meaning{}",
                                  shown(folded_turn(p.alpha + p.gamma)), advice_for_beta_zero(p)));
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

}  // namespace

Identification identify(const Pair& pair) {
  const auto molecules = principal_frames(pair);
  const OwnedTable given = table_of(pair);
  const auto found = find_parameters(given.table(), split_of(pair));
  if (!found) throw NoRotationFound(NoRotationFound::Search::euler);
  return {found->parameters, found->deviation, molecules};
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

std::vector<std::string> remarks_on(const Identification& identification) {
  const PoseDegrees& found = identification.parameters;
  std::vector<std::string> remarks;
  remark_on_euler_angles(found, remarks);
  remark_on_position(found, remarks);
  const std::string missed = remark_on_missed_axes(identification.missed, "the parameters");
  if (!missed.empty()) remarks.push_back(missed);
  for (const auto& [name, given, used] : nudged_in_a_build(found))
    remarks.push_back(fmt::format("a build uses {} for {} {}, and its pair differs by that",
                                  fixed_text(used, 3), name, shown(given)));
  return remarks;
}

}  // namespace dravo
