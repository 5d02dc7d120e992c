#include "identify/kept_frame.hpp"

#include <cmath>
#include <cstddef>
#include <limits>

#include "identify/closed_form.hpp"
#include "molecules/pair_table.hpp"
#include "symmetry/centred_atoms.hpp"
#include "symmetry/superposition.hpp"

namespace dravo {
namespace {

/// The turn about a unit vector that lays atoms best on others, by mass.
Matrix3 best_turn_about(const Vec3& axis, const CentredAtoms& from, const CentredAtoms& to) {
  double sine = 0.0, cosine = 0.0;
  for (std::size_t i = 0; i < from.size(); ++i) {
    const Vec3 &p = from.positions[i], &q = to.positions[i];
    sine += from.masses[i] * dot(axis, cross(p, q));
    cosine += from.masses[i] * (dot(p, q) - dot(axis, p) * dot(axis, q));
  }
  return rotation_by(std::atan2(sine, cosine) * axis);
}

/// The free turn of molecule 2 that brings atoms nearest to where they stood.
Matrix3 best_free_turn(const PrincipalFrame& molecule2, const CentredAtoms& from,
                       const CentredAtoms& to) {
  switch (molecule2.shape) {
    case Shape::atom:
      return best_rotation(from, to);
    case Shape::linear:
      return best_turn_about(molecule2.axes[0].direction, from, to);
    case Shape::general:
      break;
  }
  return kIdentity;
}

double sum_of_squares(const CentredAtoms& one, const CentredAtoms& other) {
  double sum = 0.0;
  for (std::size_t i = 0; i < one.size(); ++i) {
    const Vec3 d = one.positions[i] - other.positions[i];
    sum += one.masses[i] * dot(d, d);
  }
  return sum;
}

}  // namespace

std::vector<Vec3> molecule1_in_kept_frame(const Pair& pair,
                                          const std::array<PrincipalFrame, 2>& molecules,
                                          const PoseDegrees& pose) {
  const auto& [molecule1, molecule2] = molecules;
  const OwnedTable table = table_of(pair);
  const RowRange rows = split_of(pair).molecule1();
  const CentredAtoms own = centred_atoms(table.table(), rows, molecule1.cm);
  const CentredAtoms before = centred_atoms(table.table(), rows, molecule2.cm);
  const Matrix3 from_XYZ = transposed(frame_rows(molecule2, 1));
  const RelativePose placed = relative_pose(pose);
  const Matrix3 turn = from_XYZ * placed.turn * frame_rows(molecule1, 0);

  CentredAtoms nearest = before, tried = before;
  double least = std::numeric_limits<double>::infinity();
  for (const MoleculeRotation& h : molecule2.rotations)
    for (const MoleculeRotation& g : molecule1.rotations) {
      const Vec3 centre = Matrix3{h.rows} * (from_XYZ * placed.place);
      const Matrix3 turned = Matrix3{h.rows} * turn * Matrix3{g.rows};
      for (std::size_t i = 0; i < own.size(); ++i)
        tried.positions[i] = turned * own.positions[i] + centre;
      const Matrix3 freely = best_free_turn(molecule2, tried, before);
      for (Vec3& p : tried.positions) p = freely * p;
      const double sum = sum_of_squares(tried, before);
      if (!(sum < least)) continue;
      least = sum;
      nearest = tried;
    }
  for (Vec3& p : nearest.positions) p = p + molecule2.cm;
  return nearest.positions;
}

}  // namespace dravo
