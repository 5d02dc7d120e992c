#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "common/constants.hpp"
#include "dravo/error.hpp"
#include "dravo/frame.hpp"
#include "frames/symmetric_molecule.hpp"
#include "identify/axis_data.hpp"
#include "identify/frame_warnings.hpp"
#include "identify/strict_frame.hpp"
#include "molecules/pair_table.hpp"
#include "symmetry/extended_frame.hpp"

namespace dravo {
namespace {

/// A molecule of a pair: its rows and its place, 0 for molecule 1.
struct MoleculeRows {
  std::size_t index;
  RowRange rows;
};

constexpr std::size_t kRoles = 2;

/// Throws NoUniqueFrame when one of the molecules has no strict frame.
void require_strict_frames(std::span<const MoleculeRows> molecules,
                           std::span<const StrictAnalysis> analyses) {
  std::vector<int> symmetric;
  std::vector<std::string> reasons;
  for (std::size_t m = 0; m < molecules.size(); ++m) {
    if (has_strict_frame(analyses[m])) continue;
    symmetric.push_back(static_cast<int>(molecules[m].index) + 1);
    reasons.push_back(describe_symmetry(molecules[m].index, analyses[m]));
  }
  if (!reasons.empty())
    throw NoUniqueFrame(std::move(symmetric), std::move(reasons), kTwoAxesAreNeeded);
}

ReferenceAngles angles_with(const ReferenceVector& reference, const Vec3& axis) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  if (!reference) return {kNone, kNone};
  return {degrees_by_pi(angle_between(axis, *reference)),
          degrees_by_pi(angle_between(-axis, *reference))};
}

PrincipalFrame extended_frame_of(std::size_t index, const CentredAtoms& atoms,
                                 const StrictAnalysis& m) {
  const ExtendedFrame found = extended_frame(atoms, m.axes.eigenvectors);
  PrincipalFrame result;
  result.atoms = static_cast<std::int32_t>(atoms.size());
  result.kind = FrameKind::extended;
  result.shape = found.shape;
  result.rotor = found.rotor;
  result.cm = m.centre.cm;
  result.reference = reference_element_of(m.centre);
  for (std::size_t k = 0; k < 3; ++k) {
    PrincipalAxis& axis = result.axes[k];
    const Vec3& direction = found.axes.row[k];
    axis = axis_of_moment(index, k, found.moments[k] * g_cm2_per_amu_angstrom2(), direction);
    axis.angles = angles_with(m.reference, direction);
    axis.fixed_by = found.reasons[k].by;
    axis.reason = found.reasons[k];
  }
  result.rotations.reserve(found.rotations.size());
  for (const Operation& rotation : found.rotations)
    result.rotations.push_back({rotation.matrix.row, rotation.residual});
  result.warnings = warnings_of(found);
  return result;
}

/// Atoms at one place have no axes and are no atom.
void require_extent(std::size_t index, const CentredAtoms& atoms) {
  constexpr double kOnePlace = 1e-9;  // Angstrom
  if (atoms.size() > 1 && !(radius_of_gyration(atoms) > kOnePlace))
    throw InvalidInput(
        fmt::format("molecule {}: its {} atoms lie at one place", index + 1, atoms.size()));
}

PrincipalFrame frame_of_molecule(const MoleculeRows& molecule, const ConstAtomTable& table,
                                 const StrictAnalysis& analysis) {
  const auto& [index, rows] = molecule;
  const CentredAtoms atoms = centred_atoms(table, rows, analysis.centre.cm);
  require_extent(index, atoms);
  PrincipalFrame frame = has_strict_frame(analysis)
                             ? strict_frame(index, rows.end - rows.begin, analysis)
                             : extended_frame_of(index, atoms, analysis);
  if (frame.shape == Shape::general) add_warning_about_noise(atoms, frame);
  return frame;
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

std::string_view name_of(Shape shape) {
  constexpr std::array<std::string_view, 3> kNames{"atom", "linear", "general"};
  return kNames[static_cast<std::size_t>(shape)];
}

std::string_view name_of(FrameKind kind) {
  constexpr std::array<std::string_view, 3> kNames{"strict", "extended", "carried"};
  return kNames[static_cast<std::size_t>(kind)];
}

PrincipalFrame principal_frame(const Molecule& molecule, Role role, FrameRule rule) {
  const OwnedTable atoms = table_of(molecule);
  const std::array rows{
      MoleculeRows{role == Role::molecule1 ? std::size_t{0} : 1, {0, molecule.size()}}};
  const std::array analyses{analyse_strictly(atoms.table(), rows[0].rows)};
  if (rule == FrameRule::strict) require_strict_frames(rows, analyses);
  return frame_of_molecule(rows[0], atoms.table(), analyses[0]);
}

std::array<PrincipalFrame, kRoles> principal_frames(const Pair& pair, FrameRule rule) {
  const OwnedTable atoms = table_of(pair);
  const MoleculeSplit split = split_of(pair);
  const std::array rows{MoleculeRows{0, split.molecule1()}, MoleculeRows{1, split.molecule2()}};
  const std::array analyses{analyse_strictly(atoms.table(), rows[0].rows),
                            analyse_strictly(atoms.table(), rows[1].rows)};
  if (rule == FrameRule::strict) require_strict_frames(rows, analyses);
  return {frame_of_molecule(rows[0], atoms.table(), analyses[0]),
          frame_of_molecule(rows[1], atoms.table(), analyses[1])};
}

}  // namespace dravo
