#include "pairs/identification.hpp"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>
#include <utility>

#include "common/constants.hpp"
#include "common/errors.hpp"
#include "common/record_format.hpp"
#include "driver/element_table.hpp"
#include "frames/higher_z_reflection.hpp"
#include "frames/right_handed.hpp"
#include "frames/symmetric_molecule.hpp"
#include "inertia/centre_of_mass.hpp"
#include "inertia/inertia_tensor.hpp"
#include "inertia/moments_report.hpp"
#include "orientation/euler_search.hpp"
#include "orientation/molecule_alignment.hpp"
#include "orientation/pair_analysis.hpp"
#include "output/placement.hpp"
#include "pairs/discard.hpp"
#include "pairs/parameters.hpp"

namespace dravo {
namespace {

constexpr std::array<std::array<char, 3>, 2> kLetters{{{'z', 'y', 'x'}, {'Y', 'X', 'Z'}}};

/// Degrees; within it of 0 or 180 an angle makes others meaningless.
constexpr double kNearlySingular = 1.0;
/// Angstrom; the direction between nearer centres of mass means nothing.
constexpr double kNoDirectionDistance = 0.1;
/// Degrees; a search that ends farther from the axes has missed them.
constexpr double kMissed = 0.01;

std::string decimals(double value, int count) {
  std::string text;
  append_fixed(text, value, count);
  return text;
}

/// An atom table with its storage.
class OwnedTable {
 public:
  explicit OwnedTable(std::int32_t rows)
      : storage_(kColumns * static_cast<std::size_t>(rows)), table_(storage_, rows) {}
  OwnedTable(const OwnedTable&) = delete;
  OwnedTable& operator=(const OwnedTable&) = delete;
  ~OwnedTable() = default;

  [[nodiscard]] const AtomTable& table() const { return table_; }

 private:
  std::vector<double> storage_;
  AtomTable table_;
};

void fill(AtomTable table, const Pair& pair) {
  for (std::int32_t i = 0; i < pair.split.N; ++i)
    table.set_position(i, pair.positions[static_cast<std::size_t>(i)]);
  std::vector<Label> labels = pair.labels;
  resolve_elements(pair.split.N, labels, table);
}

// --- molecules as given -----------------------------------------------------------------------

/// A molecule before its frame is completed.
struct MoleculeAnalysis {
  MassCentre centre;
  PrincipalAxes axes;
  MoleculeFrame frame;
  MoleculeReferenceAngles angles;
  AxisFlags flags;
};

MoleculeAnalysis analyse(const AtomTable& atoms, RowRange rows) {
  MoleculeAnalysis m;
  m.centre = find_mass_centre(atoms, rows);
  m.axes = principal_axes(inertia_tensor(atoms, rows, m.centre.cm));
  m.frame = frame_of(m.centre.cm, m.axes);
  m.angles = reference_angles(m.frame, reference_of(m.centre));
  decide_directions(m.angles, m.flags);
  return m;
}

ReferenceElement reference_element(const MassCentre& centre) {
  const ElementCentre* const higher_z = centre.higher_z();
  if (higher_z == nullptr) return {"", 0, 0.0};
  const auto entry = static_cast<std::size_t>(higher_z - centre.elements.data());
  return {element_table()[entry].symbol, higher_z->atoms, higher_z->distance};
}

bool decided(const MoleculeAnalysis& m, std::size_t axis) {
  return m.flags.distinguishable[axis] == kDistinguishable;
}

/// g cm^2 in one amu Angstrom^2, with the constants of the tensor: what one amu has at one
/// Angstrom.
double g_cm2_per_amu_angstrom2() {
  const OwnedTable unit(1);
  AtomTable table = unit.table();
  table.set_position(0, {1.0, 0.0, 0.0});
  table.set_element(0, 1.0, 1.0);
  return inertia_tensor(table, {0, 1}, {}).row[2].z;
}

FixedBy reason_of(const MoleculeAnalysis& m, const HandednessCheck& check, std::size_t axis) {
  if (axis != check.applied->C) return FixedBy::reference_angle;
  return decided(m, axis) ? FixedBy::right_handedness_over_reference : FixedBy::right_handedness;
}

/// `m` has two distinguishable axes at least.
IdentifiedMolecule identified(std::size_t index, RowRange rows, const MoleculeAnalysis& m) {
  MoleculeFrame frame = m.frame;
  AxisFlags flags = m.flags;
  reflect_towards_higher_z(frame, flags);
  const HandednessCheck check =
      make_right_handed(static_cast<int>(index) + 1, frame, flags).value();
  const auto angles = reference_angles(frame, reference_of(m.centre)).value();

  IdentifiedMolecule result{rows.end - rows.begin,
                            rotor_type(m.axes.moments),
                            m.centre.cm,
                            reference_element(m.centre),
                            {}};
  const double unit = g_cm2_per_amu_angstrom2();
  for (std::size_t k = 0; k < 3; ++k) {
    const double moment = m.axes.moments[k];
    result.axes[k] = {kLetters[index][k],
                      moment,
                      moment / unit,  //
                      rotational_constant_ghz(moment),
                      frame.axis(k),
                      angles[k],
                      reason_of(m, check, k)};
  }
  return result;
}

std::string describe_undecided(const MoleculeAnalysis& m, std::size_t axis, char letter) {
  const auto& [along, reversed] = (*m.angles)[axis];
  return std::string(1, letter) + " (" + decimals(along, 1) + " degrees from it, " +
         decimals(reversed, 1) + " when reversed: these differ by " +
         decimals(std::abs(along - reversed), 1) + " degrees)";
}

/// Why a molecule with fewer than two distinguishable axes has no frame.
std::string describe_symmetry(std::size_t index, const MoleculeAnalysis& m) {
  const ReferenceElement reference = reference_element(m.centre);
  std::string text = "molecule " + std::to_string(index + 1) +
                     " has no unique frame: the centre of its heaviest element, " +
                     std::string(reference.symbol) + " (" + std::to_string(reference.atoms) +
                     (reference.atoms == 1 ? " atom)" : " atoms)");
  if (!m.angles)
    return text + ", lies " + decimals(reference.distance, 3) +
           " Angstrom from the centre of mass, and more than " +
           decimals(kUsableElementDistance, 1) + " are needed to give the axes a direction";
  text += ", gives no direction to";
  const char* separator = " axis ";
  for (std::size_t k = 0; k < 3; ++k) {
    if (decided(m, k)) continue;
    text += separator + describe_undecided(m, k, kLetters[index][k]);
    separator = " and axis ";
  }
  return text + "; more than " + decimals(diferenca_detectavel, 0) + " degrees are needed";
}

constexpr auto kNoRemedy =
    "This method describes only pairs of molecules that each have two axes with a direction.";

void refuse_symmetric_molecules(const std::array<MoleculeAnalysis, 2>& molecules) {
  std::vector<std::string> reasons;
  for (std::size_t m = 0; m < 2; ++m)
    if (is_symmetric(molecules[m].flags)) reasons.push_back(describe_symmetry(m, molecules[m]));
  if (!reasons.empty()) throw Unidentifiable(std::move(reasons), kNoRemedy);
}

// --- parameters -------------------------------------------------------------------------------

/// From 0 to below 360.
double folded_turn(double degrees) {
  double folded = std::fmod(degrees, 360.0);
  if (folded < 0.0) folded += 360.0;
  return folded < 360.0 ? folded + 0.0 : 0.0;  // no negative zero
}

struct Found {
  UserParameters parameters;  ///< degrees
  double deviation;           ///< degrees
};

/// Largest angle between an axis of molecule 2 and the laboratory axis that it was laid on,
/// degrees.
double misalignment(const MoleculeFrame& molecule2) {
  using namespace axis_of_molecule2;
  double largest = 0.0;
  for (const auto& [tip, target] :
       {std::pair{X, Vec3{1.0, 0.0, 0.0}}, {Y, {0.0, 1.0, 0.0}}, {Z, {0.0, 0.0, 1.0}}})
    largest = std::max(largest, degrees_by_pi(angle_between(molecule2.axis(tip), target)));
  return largest;
}

/// Frames as they lie after the alignment. Rounding may put molecule 1 higher on Z than r.
UserParameters in_degrees(const PairOfFrames& frames, const EulerAngles& euler) {
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
std::optional<Found> find_in_pose(const AtomTable& given, const MoleculeSplit& split,
                                  const Matrix3& pose) {
  const std::array<OwnedTable, 4> owned{OwnedTable(split.N), OwnedTable(split.N),
                                        OwnedTable(split.N), OwnedTable(split.N)};
  AnalysisTables tables{owned[0].table(), owned[1].table(), owned[2].table(), owned[3].table()};
  tables.newcoo_and_m.copy_rows(given, split.N);
  turn_rows(tables.newcoo_and_m, {0, split.N}, pose, {});

  DiscardingSink nowhere;
  RecordStream unread(&nowhere);
  PairOfFrames frames;
  try {
    frames = align_pair(split, tables, unread, unread);
  } catch (const RunStop&) {
    return std::nullopt;
  }
  const auto euler = find_euler_angles(frames);
  if (!euler) return std::nullopt;
  return Found{in_degrees(frames, euler->angles),
               std::max(euler->deviation, misalignment(frames[1]))};
}

/// A search on a grid may miss in one pose and not in another: the first that does not miss, or
/// else the best.
std::optional<Found> find_parameters(const AtomTable& given, const MoleculeSplit& split) {
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

std::string shown(double degrees) { return decimals(degrees, 8); }

/// A build that knows beta as zero takes the whole turn from alpha.
std::string advice_for_beta_zero(const UserParameters& found) {
  const UserParameters used = nudged_parameters(found);
  if (used.gamma == found.gamma || found.beta >= 0.5) return "";
  return "; to build this pair give alpha as " +
         shown(folded_turn(found.alpha + found.gamma - used.gamma));
}

void remark_on_euler_angles(const UserParameters& p, std::vector<std::string>& remarks) {
  if (near(p.beta, 0.0))
    remarks.push_back(
        "beta is near 0: only alpha + gamma = " + shown(folded_turn(p.alpha + p.gamma)) +
        " has a meaning" + advice_for_beta_zero(p));
  if (near(p.beta, 180.0))
    remarks.push_back("beta is near 180: only alpha - gamma = " +
                      shown(folded_turn(p.alpha - p.gamma)) + " has a meaning");
}

void remark_on_position(const UserParameters& p, std::vector<std::string>& remarks) {
  if (p.r < kNoDirectionDistance) {
    remarks.emplace_back("r is below 0.1 Angstrom: theta and phi have no meaning");
  } else if (near(p.theta, 0.0) || near(p.theta, 180.0)) {
    remarks.emplace_back(near(p.theta, 0.0) ? "theta is near 0: phi has no meaning"
                                            : "theta is near 180: phi has no meaning");
  }
}

std::string joined(const std::vector<std::string>& lines, const std::string& last) {
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  return text + last;
}

}  // namespace

RotorType rotor_type(const std::array<double, 3>& moments) {
  const auto& [a, b, c] = moments;
  const auto equal = [](double smaller, double larger) {
    return larger - smaller <= kEqualMoments * larger;
  };
  if (equal(a, c)) return RotorType::spherical;
  if (a <= kEqualMoments * c) return RotorType::linear;
  if (equal(b, c)) return RotorType::prolate;
  if (equal(a, b)) return RotorType::oblate;
  return RotorType::asymmetric;
}

std::string_view name_of(RotorType type) {
  constexpr std::array<std::string_view, 5> kNames{
      "linear", "spherical top", "prolate symmetric top", "oblate symmetric top", "asymmetric top"};
  return kNames[static_cast<std::size_t>(type)];
}

std::string_view name_of(FixedBy reason) {
  constexpr std::array<std::string_view, 3> kNames{"reference angle", "right-handedness",
                                                   "right-handedness, not its reference angle"};
  return kNames[static_cast<std::size_t>(reason)];
}

Unidentifiable::Unidentifiable(std::vector<std::string> reasons, const std::string& advice)
    : Refusal(joined(reasons, advice)), reasons_(std::move(reasons)) {}

Identification identify(const Pair& pair) {
  if (pair.split.N > kMaxAtoms)
    throw Unidentifiable({"the pair has " + std::to_string(pair.split.N) + " atoms, more than " +
                          std::to_string(kMaxAtoms)},
                         "Use a smaller model.");
  const OwnedTable given(pair.split.N);
  fill(given.table(), pair);
  const auto rows = pair.split.molecules();
  const std::array analyses{analyse(given.table(), rows[0]), analyse(given.table(), rows[1])};
  refuse_symmetric_molecules(analyses);

  const auto found = find_parameters(given.table(), pair.split);
  if (!found)
    throw Unidentifiable({"no rotation was found that relates the frames of the two molecules"},
                         "Turn the geometry of the pair a little and try again.");
  return {found->parameters,
          found->deviation,
          {identified(0, rows[0], analyses[0]), identified(1, rows[1], analyses[1])}};
}

std::vector<NudgedParameter> nudged_in_a_build(const UserParameters& degrees) {
  const UserParameters used = nudged_parameters(degrees);
  std::vector<NudgedParameter> nudged;
  for (const auto& [name, parameter] : kParameterNames)
    if (used.*parameter != degrees.*parameter)
      nudged.push_back({name, degrees.*parameter, used.*parameter});
  return nudged;
}

std::vector<std::string> remarks_on(const Identification& identification) {
  const UserParameters& found = identification.parameters;
  std::vector<std::string> remarks;
  remark_on_euler_angles(found, remarks);
  remark_on_position(found, remarks);
  if (!(identification.deviation <= kMissed))
    remarks.push_back("the search missed the axes by " + decimals(identification.deviation, 3) +
                      " degrees: the parameters are that uncertain");
  for (const auto& [name, given, used] : nudged_in_a_build(found))
    remarks.push_back("a build uses " + decimals(used, 3) + " for " + std::string(name) + " " +
                      shown(given) + ", and its pair differs by that");
  return remarks;
}

}  // namespace dravo
