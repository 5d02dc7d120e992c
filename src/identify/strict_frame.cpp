#include "identify/strict_frame.hpp"

#include <fmt/format.h>

#include <cmath>
#include <span>
#include <utility>

#include "common/number_format.hpp"
#include "driver/element_table.hpp"
#include "frames/higher_z_reflection.hpp"
#include "frames/right_handed.hpp"
#include "frames/symmetric_molecule.hpp"
#include "identify/axis_data.hpp"

namespace dravo {
namespace {

bool decided(const StrictAnalysis& m, std::size_t axis) {
  return m.flags.distinguishable[axis] == kDistinguishable;
}

FixedBy reason_of(const StrictAnalysis& m, const HandednessCheck& check, std::size_t axis) {
  if (axis != check.applied->C) return FixedBy::reference_angle;
  return decided(m, axis) ? FixedBy::right_handedness_over_reference : FixedBy::right_handedness;
}

std::string describe_undecided(const StrictAnalysis& m, std::size_t axis, char letter) {
  const auto& [along, reversed] = (*m.angles)[axis];
  return fmt::format("{} ({} degrees from it, {} when reversed: these differ by {} degrees)",
                     letter, fixed_text(along, 1), fixed_text(reversed, 1),
                     fixed_text(std::abs(along - reversed), 1));
}

}  // namespace

std::string describe_symmetry(std::size_t index, const StrictAnalysis& m) {
  const ReferenceElement reference = reference_element_of(m.centre);
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
    text += separator + describe_undecided(m, k, axis_letter(index, k));
    separator = " and axis ";
  }
  return fmt::format("{}; more than {} degrees are needed", text,
                     fixed_text(diferenca_detectavel, 0));
}

StrictAnalysis analyse_strictly(const ConstAtomTable& atoms, RowRange rows) {
  StrictAnalysis m;
  m.centre = find_mass_centre(atoms, rows);
  m.axes = principal_axes(inertia_tensor(atoms, rows, m.centre.cm));
  m.frame = frame_of(m.centre.cm, m.axes);
  m.reference = reference_of(m.centre);
  m.angles = reference_angles(m.frame, m.reference);
  decide_directions(m.angles, m.flags);
  return m;
}

bool has_strict_frame(const StrictAnalysis& analysis) { return !is_symmetric(analysis.flags); }

PrincipalFrame strict_frame(std::size_t index, std::int32_t atoms, const StrictAnalysis& m) {
  MoleculeFrame frame = m.frame;
  AxisFlags flags = m.flags;
  reflect_towards_higher_z(frame, flags);
  const HandednessCheck check =
      make_right_handed(static_cast<int>(index) + 1, frame, flags).value();
  const auto angles = reference_angles(frame, m.reference).value();

  PrincipalFrame result;
  result.atoms = atoms;
  result.kind = FrameKind::strict;
  result.shape = Shape::general;
  result.rotor = rotor_type(m.axes.moments);
  result.cm = m.centre.cm;
  result.reference = reference_element_of(m.centre);
  const std::int32_t element = reference_number(m.centre);
  for (std::size_t k = 0; k < 3; ++k) {
    PrincipalAxis& axis = result.axes[k];
    axis = axis_of_moment(index, k, m.axes.moments[k], frame.axis(k));
    axis.angles = angles[k];
    axis.fixed_by = reason_of(m, check, k);
    axis.reason = {axis.fixed_by, element, result.reference.distance};
  }
  // A rotation of the molecule would leave the centre of its heaviest element on its axis, and two
  // of the principal axes without a direction.
  result.rotations = {kNoRotation};
  return result;
}

}  // namespace dravo
