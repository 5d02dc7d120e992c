#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstddef>

#include "dravo/error.hpp"
#include "dravo/frame.hpp"
#include "identify/axis_data.hpp"
#include "identify/closed_form.hpp"
#include "inertia/centre_of_mass.hpp"
#include "molecules/pair_table.hpp"
#include "symmetry/centred_atoms.hpp"
#include "symmetry/extended_frame.hpp"
#include "symmetry/matrices.hpp"
#include "symmetry/superposition.hpp"

namespace dravo {
namespace {

double rmsd_after(const Matrix3& rotation, const CentredAtoms& from, const CentredAtoms& to) {
  double sum = 0.0, mass = 0.0;
  for (std::size_t i = 0; i < from.size(); ++i) {
    const Vec3 d = rotation * from.positions[i] - to.positions[i];
    sum += from.masses[i] * dot(d, d);
    mass += from.masses[i];
  }
  return std::sqrt(sum / mass);
}

void require_same_molecules(const Pair& pair, const Pair& reference) {
  const auto atoms_of = [](const Pair& p) { return std::array{p.n1(), p.size() - p.n1()}; };
  for (const std::size_t m : {0U, 1U})
    if (atoms_of(pair)[m] != atoms_of(reference)[m])
      throw InvalidInput(
          fmt::format("the reference is another pair: its molecule {} has {} atoms, "
                      "not {}",
                      m + 1, atoms_of(reference)[m], atoms_of(pair)[m]));
  for (std::size_t i = 0; i < pair.labels().size(); ++i) {
    const auto &here = pair.labels()[i], &there = reference.labels()[i];
    if (here != there)
      throw InvalidInput(fmt::format(
          "the reference is another pair: its atom {} is {}, not {}; atoms must stand in the same "
          "order",
          i + 1, std::string_view(there.data(), there[1] == ' ' ? 1 : 2),
          std::string_view(here.data(), here[1] == ' ' ? 1 : 2)));
  }
}

/// The moments stay those about the carried axes.
PrincipalFrame carried(std::size_t index, const PrincipalFrame& reference, const CentredAtoms& from,
                       const CentredAtoms& to, const Vec3& cm) {
  const Matrix3 rotation = best_rotation(from, to);
  PrincipalFrame frame = reference;
  frame.kind = FrameKind::carried;
  frame.cm = cm;
  frame.rotations = {kNoRotation};
  frame.warnings.clear();
  if (reference.shape == Shape::linear && !is_linear(to, principal_directions(to))) {
    frame.shape = Shape::general;
    frame.warnings.emplace_back(
        "it is linear in the reference and not here: its turn about z or Y "
        "is not carried along");
  }
  frame.rmsd = rmsd_after(rotation, from, to);
  const Matrix3 tensor = inertia_of(to);
  for (std::size_t k = 0; k < frame.axes.size(); ++k) {
    const Vec3 direction = rotation * reference.axes[k].direction;
    const double moment = dot(direction, tensor * direction) * g_cm2_per_amu_angstrom2();
    frame.axes[k] = axis_of_moment(index, k, moment, direction);
    frame.axes[k].angles = reference.axes[k].angles;
    frame.axes[k].fixed_by = FixedBy::reference_molecule;
    frame.axes[k].reason = {FixedBy::reference_molecule, 0, frame.rmsd};
  }
  return frame;
}

}  // namespace

std::array<PrincipalFrame, 2> frames_like(const Pair& pair, const Pair& reference) {
  require_same_molecules(pair, reference);
  const auto of_reference = preferred_frames(principal_frames(reference));
  const OwnedTable from = table_of(reference), to = table_of(pair);
  const auto rows = split_of(pair).molecules();
  const auto frame_of = [&](std::size_t m) {
    const Vec3 cm = centre_of_mass(to.table(), rows[m]);
    return carried(m, of_reference[m], centred_atoms(from.table(), rows[m], of_reference[m].cm),
                   centred_atoms(to.table(), rows[m], cm), cm);
  };
  return {frame_of(0), frame_of(1)};
}

}  // namespace dravo
