#include "symmetry/extended_frame.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "common/constants.hpp"
#include "inertia/inertia_tensor.hpp"
#include "symmetry/candidate_frames.hpp"
#include "symmetry/matrices.hpp"

namespace dravo {
namespace {

CentredAtoms with_positions(const CentredAtoms& atoms, std::vector<Vec3> positions) {
  return {std::move(positions), atoms.masses, atoms.numbers, atoms.elements};
}

// --- one choice -------------------------------------------------------------------------------

/// By how much operations within `kSymmetryForAxes` may miss a frame of this molecule, radians.
double slack_of(const CentredAtoms& atoms) {
  return 3.0 * kSymmetryForAxes / radius_of_gyration(atoms);
}

bool reverses(const Operation& rotation, const Vec3& axis) {
  constexpr double kNearlyOpposite = -0.99;
  return dot(rotation.matrix * axis, axis) < kNearlyOpposite;
}

/// An axis that no fact has settled and that a rotation reverses may point either way. The third
/// axis of a symmetric or spherical top follows from the other two.
void mark_reversed(const std::vector<Operation>& rotations, FixedBy reason, ExtendedFrame& frame) {
  for (std::size_t k = 0; k < 3; ++k) {
    const bool is_unique = frame.rotor == RotorType::linear ||
                           frame.rotor == RotorType::asymmetric ||
                           k == (frame.rotor == RotorType::oblate ? 2 : 0);
    if (!is_unique || frame.reasons[k].by != FixedBy::right_handedness) continue;
    if (std::any_of(rotations.begin(), rotations.end(),
                    [&](const Operation& r) { return reverses(r, frame.axes.row[k]); }))
      frame.reasons[k].by = reason;
  }
}

/// Goes down the ladder among frames that no rotation of `for_axes` turns into each other. Those
/// that are left, and all that the rotations make of them, show the molecule alike but for what the
/// rotations miss.
void choose(const CentredAtoms& given, const CentredAtoms& symmetrised,
            const std::vector<Operation>& for_axes, FrameChoices choices, ExtendedFrame& frame) {
  choices.frames = one_of_each_orbit(choices.frames, for_axes, slack_of(given));
  if (choices.frames.size() > 1) choose_by_facts(symmetrised, choices);
  frame.small_fact = choices.small_fact;
  frame.first_atom = choices.first_atom;
  frame.broken_choice = choices.frames.size() > 1 || for_axes.size() > frame.rotations.size();
  frame.reasons = choices.reasons;

  FrameChoices alike;
  for (const AxisRows& rows : choices.frames)
    for (const Operation& rotation : for_axes)
      alike.frames.push_back(rows * transposed(rotation.matrix));
  if (frame.broken_choice) choose_by_first_atom(given, kSameMolecule, alike);
  frame.axes = first_in_order(given, alike.frames);
  mark_reversed(frame.rotations, FixedBy::rotation, frame);
  mark_reversed(for_axes, FixedBy::broken_symmetry, frame);
}

std::optional<NearOperation> nearly_holding(const std::vector<Operation>& found) {
  const Operation* nearest = nullptr;
  for (const Operation& operation : found)
    if (operation.residual > kSameMolecule &&
        (nearest == nullptr || operation.residual < nearest->residual))
      nearest = &operation;
  if (nearest == nullptr) return std::nullopt;
  return NearOperation{name_of(*nearest), nearest->residual};
}

// --- shapes -----------------------------------------------------------------------------------

ExtendedFrame frame_of_atom() {
  ExtendedFrame frame{};
  frame.shape = Shape::atom;
  frame.rotor = RotorType::spherical;
  frame.axes = {{Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0}, Vec3{0.0, 0.0, -1.0}}};
  frame.rotations = {{kIdentity, {0}}};
  for (AxisReason& reason : frame.reasons) reason.by = FixedBy::nothing;
  return frame;
}

/// I_C = I_B x I_A.
AxisRows any_axes_along(const Vec3& a) {
  const Vec3 x = std::abs(a.x) < 0.5 ? Vec3{1.0, 0.0, 0.0} : Vec3{0.0, 1.0, 0.0};
  const Vec3 b = unit(cross(a, x));
  return {{a, b, cross(b, a)}};
}

/// The half turn across the axis of a linear molecule; its residual is infinite where atoms have no
/// partners.
Operation reversal_of(const CentredAtoms& atoms, const AxisRows& rows) {
  const Vec3& across = rows.row[1];
  Operation reversal{2.0 * square_of(across) - kIdentity, std::vector<std::int32_t>(atoms.size()),
                     0.0};
  std::vector<bool> taken(atoms.size(), false);
  for (std::size_t i = 0; i < atoms.size(); ++i) {
    const double place = -dot(rows.row[0], atoms.positions[i]);
    double nearest = std::numeric_limits<double>::infinity();
    std::size_t image = i;
    for (std::size_t j = 0; j < atoms.size(); ++j) {
      const double missed = std::abs(dot(rows.row[0], atoms.positions[j]) - place);
      if (taken[j] || atoms.numbers[j] != atoms.numbers[i] || !(missed < nearest)) continue;
      nearest = missed;
      image = j;
    }
    taken[image] = true;
    reversal.image[i] = static_cast<std::int32_t>(image);
    reversal.residual = std::max(reversal.residual, nearest);
  }
  return reversal;
}

ExtendedFrame frame_of_linear(const CentredAtoms& atoms, const Vec3& axis) {
  ExtendedFrame frame{};
  frame.shape = Shape::linear;
  frame.rotor = RotorType::linear;
  const AxisRows rows = any_axes_along(axis);
  const Matrix3 tensor = inertia_of(atoms);
  const double across = (trace(tensor) - dot(axis, tensor * axis)) / 2.0;
  frame.moments = {0.0, across, across};
  Operation identity{kIdentity, {}, 0.0};
  const Operation reversal = reversal_of(atoms, rows);
  for (std::size_t i = 0; i < atoms.size(); ++i)
    identity.image.push_back(static_cast<std::int32_t>(i));
  const std::vector<Operation> found{identity, reversal};
  const auto for_axes = exact_group(found, kSymmetryForAxes);
  frame.rotations = exact_group(found, kSameMolecule);
  if (reversal.residual <= kNearlySymmetric) frame.nearly = nearly_holding(found);

  std::vector<Vec3> on_axis;
  for (const Vec3& p : atoms.positions) on_axis.push_back(dot(rows.row[0], p) * rows.row[0]);
  const CentredAtoms symmetrised = with_positions(atoms, symmetrised_positions(on_axis, for_axes));
  FrameChoices choices;
  choices.frames = {rows, {{-rows.row[0], rows.row[1], -rows.row[2]}}};
  choices.reasons[1].by = choices.reasons[2].by = FixedBy::nothing;
  choose(with_positions(atoms, on_axis), symmetrised, for_axes, choices, frame);
  return frame;
}

ExtendedFrame frame_of_general(const CentredAtoms& atoms, const PrincipalDirections& directions) {
  ExtendedFrame frame{};
  frame.shape = Shape::general;
  const std::vector<Operation> found = find_operations(atoms, kNearlySymmetric);
  const std::vector<Operation> group = exact_group(found, kSymmetryForAxes);
  const std::vector<Operation> for_axes = proper_operations(group);
  frame.rotations = proper_operations(
      largest_residual(group) <= kSameMolecule ? group : exact_group(found, kSameMolecule));
  frame.nearly = nearly_holding(found);

  const Matrix3 tensor = inertia_of(atoms);
  const AveragedAxes axes =
      group.size() > 1 ? averaged_axes(averaged(tensor, group)) : axes_along(directions, tensor);
  frame.rotor = axes.rotor;
  frame.moments = axes.moments;
  const CentredAtoms symmetrised =
      with_positions(atoms, symmetrised_positions(atoms.positions, group));
  choose(atoms, symmetrised, for_axes, candidate_frames(symmetrised, axes), frame);
  return frame;
}

/// How operations hold two axes where they are.
enum class Hold {
  none,
  apart,    ///< one of them is reversed and the other is not
  together  ///< one is turned into the other: they are equal, and no noise makes them two
};

Hold hold_of(const Operation& operation, const AxisRows& rows, std::size_t j, std::size_t k) {
  constexpr double kMixes = 0.1;
  const Matrix3 in_frame = rows * operation.matrix * transposed(rows);
  const auto element = [&](std::size_t r, std::size_t c) {
    const Vec3& row = in_frame.row[r];
    return std::array{row.x, row.y, row.z}[c];
  };
  if (std::abs(element(j, k)) > kMixes) return Hold::together;
  return element(j, j) * element(k, k) < 0.0 ? Hold::apart : Hold::none;
}

Hold hold_of(const std::vector<Operation>& operations, const AxisRows& rows, std::size_t j,
             std::size_t k) {
  Hold hold = Hold::none;
  for (const Operation& operation : operations)
    hold = std::max(hold, hold_of(operation, rows, j, k));
  return hold;
}

}  // namespace

PrincipalDirections principal_directions(const CentredAtoms& atoms) {
  return principal_axes(inertia_of(atoms)).eigenvectors;
}

bool is_linear(const CentredAtoms& atoms, const PrincipalDirections& directions) {
  return std::all_of(atoms.positions.begin(), atoms.positions.end(), [&](const Vec3& p) {
    return length(cross(directions[0], p)) <= kSameMolecule;
  });
}

ExtendedFrame extended_frame(const CentredAtoms& atoms, const PrincipalDirections& directions) {
  if (atoms.size() == 1) return frame_of_atom();
  return is_linear(atoms, directions) ? frame_of_linear(atoms, directions[0])
                                      : frame_of_general(atoms, directions);
}

std::optional<LooseAxes> loose_axes(const CentredAtoms& atoms, const AxisRows& rows,
                                    AxesOf origin) {
  constexpr double kNoise = 0.001;      // Angstrom
  constexpr double kTellingTurn = 1.0;  // degrees
  // The gap of two moments varies by twice as many radians, of its size, as the axes turn. Four
  // standard deviations exchange them.
  constexpr double kExchange = kDegreesPerRadian / 8.0;
  std::optional<LooseAxes> loosest;
  std::vector<Operation> operations;
  std::array<double, 3> squares{};
  const Matrix3 in_frame = rows * inertia_of(atoms) * transposed(rows);
  const std::array<double, 3> moments{in_frame.row[0].x, in_frame.row[1].y, in_frame.row[2].z};
  for (std::size_t i = 0; i < atoms.size(); ++i) {
    const Vec3 p = rows * atoms.positions[i];
    const double m2 = atoms.masses[i] * atoms.masses[i];
    squares[0] += m2 * p.x * p.x;
    squares[1] += m2 * p.y * p.y;
    squares[2] += m2 * p.z * p.z;
  }
  constexpr std::array<std::pair<std::size_t, std::size_t>, 3> kPairs{{{0, 1}, {0, 2}, {1, 2}}};
  for (const auto& pair : kPairs) {
    const std::size_t j = pair.first, k = pair.second;
    const double gap = std::abs(moments[j] - moments[k]);
    const double degrees = kNoise * std::sqrt(squares[j] + squares[k]) / gap * kDegreesPerRadian;
    if (!(degrees > kTellingTurn) || (loosest && degrees <= loosest->degrees)) continue;
    if (operations.empty() && origin == AxesOf::symmetry)
      operations = find_operations(atoms, kSymmetryForAxes);
    const Hold hold = hold_of(operations, rows, j, k);
    if (hold == Hold::none || (hold == Hold::apart && degrees > kExchange))
      loosest = {j, k, degrees, hold == Hold::apart};
  }
  return loosest;
}

}  // namespace dravo
