#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "common/constants.hpp"
#include "common/number_format.hpp"
#include "dravo/error.hpp"
#include "dravo/frame.hpp"
#include "driver/element_table.hpp"
#include "frames/axis_directions.hpp"
#include "frames/higher_z_reflection.hpp"
#include "frames/right_handed.hpp"
#include "frames/symmetric_molecule.hpp"
#include "inertia/centre_of_mass.hpp"
#include "inertia/inertia_tensor.hpp"
#include "molecules/pair_table.hpp"

namespace dravo {
namespace {

/// h / (8 pi^2) for a moment in amu Angstrom^2 and a constant in GHz: 505379.0 MHz, CODATA 2018.
/// (The log of `qn-dravo` has a factor of its own, 0.069 percent larger.)
constexpr double kGhzAmuAngstrom2 = 505.3790;

constexpr std::array<std::array<char, 3>, 2> kLetters{{{'z', 'y', 'x'}, {'Y', 'X', 'Z'}}};

/// A molecule before its frame is completed.
struct MoleculeAnalysis {
  MassCentre centre;
  PrincipalAxes axes;
  MoleculeFrame frame;
  MoleculeReferenceAngles angles;
  AxisFlags flags;
};

MoleculeAnalysis analyse(const ConstAtomTable& atoms, RowRange rows) {
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
  OwnedTable unit(1);
  AtomTable& table = unit.table();
  table.set_position(0, {1.0, 0.0, 0.0});
  table.set_element(0, 1.0, 1.0);
  return inertia_tensor(table, {0, 1}, {}).row[2].z;
}

FixedBy reason_of(const MoleculeAnalysis& m, const HandednessCheck& check, std::size_t axis) {
  if (axis != check.applied->C) return FixedBy::reference_angle;
  return decided(m, axis) ? FixedBy::right_handedness_over_reference : FixedBy::right_handedness;
}

/// `m` has two distinguishable axes at least.
PrincipalFrame identified(std::size_t index, RowRange rows, const MoleculeAnalysis& m) {
  MoleculeFrame frame = m.frame;
  AxisFlags flags = m.flags;
  reflect_towards_higher_z(frame, flags);
  const HandednessCheck check =
      make_right_handed(static_cast<int>(index) + 1, frame, flags).value();
  const auto angles = reference_angles(frame, reference_of(m.centre)).value();

  PrincipalFrame result{rows.end - rows.begin,
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
                      kGhzAmuAngstrom2 / (moment / unit),
                      frame.axis(k),
                      angles[k],
                      reason_of(m, check, k)};
  }
  return result;
}

std::string describe_undecided(const MoleculeAnalysis& m, std::size_t axis, char letter) {
  const auto& [along, reversed] = (*m.angles)[axis];
  return fmt::format("{} ({} degrees from it, {} when reversed: these differ by {} degrees)",
                     letter, fixed_text(along, 1), fixed_text(reversed, 1),
                     fixed_text(std::abs(along - reversed), 1));
}

/// Why a molecule with fewer than two distinguishable axes has no frame.
std::string describe_symmetry(std::size_t index, const MoleculeAnalysis& m) {
  const ReferenceElement reference = reference_element(m.centre);
  std::string text = fmt::format(
      "molecule {} has no unique frame: the centre of its heaviest element, {} ({} {})", index + 1,
      reference.symbol, reference.atoms, reference.atoms == 1 ? "atom" : "atoms");
  if (!m.angles)
    return fmt::format(
        "{}, lies {} Angstrom from the centre of mass, and more than {} are needed to give the "
        "axes a direction",
        text, fixed_text(reference.distance, 3), fixed_text(kUsableElementDistance, 1));
  text += ", gives no direction to";
  const char* separator = " axis ";
  for (std::size_t k = 0; k < 3; ++k) {
    if (decided(m, k)) continue;
    text += separator + describe_undecided(m, k, kLetters[index][k]);
    separator = " and axis ";
  }
  return fmt::format("{}; more than {} degrees are needed", text,
                     fixed_text(diferenca_detectavel, 0));
}

/// `first` is the place of the first analysis: 0 for molecule 1.
void require_frames(std::size_t first, std::span<const MoleculeAnalysis> molecules) {
  std::vector<int> symmetric;
  std::vector<std::string> reasons;
  for (std::size_t m = first; m < first + molecules.size(); ++m) {
    if (!is_symmetric(molecules[m - first].flags)) continue;
    symmetric.push_back(static_cast<int>(m) + 1);
    reasons.push_back(describe_symmetry(m, molecules[m - first]));
  }
  if (!reasons.empty())
    throw NoUniqueFrame(std::move(symmetric), std::move(reasons), kTwoAxesAreNeeded);
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

PrincipalFrame principal_frame(const Molecule& molecule, Role role) {
  const OwnedTable atoms = table_of(molecule);
  const RowRange rows{0, molecule.size()};
  const std::size_t index = role == Role::molecule1 ? 0 : 1;
  const std::array analyses{analyse(atoms.table(), rows)};
  require_frames(index, analyses);
  return identified(index, rows, analyses[0]);
}

std::array<PrincipalFrame, 2> principal_frames(const Pair& pair) {
  const OwnedTable atoms = table_of(pair);
  const auto rows = split_of(pair).molecules();
  const std::array analyses{analyse(atoms.table(), rows[0]), analyse(atoms.table(), rows[1])};
  require_frames(0, analyses);
  return {identified(0, rows[0], analyses[0]), identified(1, rows[1], analyses[1])};
}

}  // namespace dravo
