#include "output/placement.hpp"

#include <cmath>

#include "inertia/centre_of_mass.hpp"
#include "orientation/molecule_alignment.hpp"

namespace dravo {
namespace {

MoleculeFrame moved_tips(const MoleculeFrame& frame, const Vec3& translation) {
  MoleculeFrame moved = frame;
  for (Vec3& tip : moved.tips) tip = tip + translation;
  return moved;
}

Placement measured(const MoleculeFrame& molecule1, const Vec3& cm2) {
  const SphericalPosition applied = measured_position(molecule1.cm, cm2);
  return {applied, cartesian(applied), molecule1};
}

}  // namespace

Vec3 cartesian(const SphericalPosition& position) {
  const Turn theta = Turn::of(position.theta);
  const Turn phi = Turn::of(position.phi);
  return {position.r * theta.sine * phi.cosine, position.r * theta.sine * phi.sine,
          position.r * theta.cosine};
}

SphericalPosition measured_position(const Vec3& cm1, const Vec3& cm2) {
  const double r = modulus(cm2 - cm1);
  return {r, std::acos(cm1.z / r), std::atan2(cm1.y, cm1.x)};
}

void translate_rows(AtomTable atoms, RowRange rows, const Vec3& translation) {
  for (std::int32_t i = rows.begin; i < rows.end; ++i)
    atoms.set_position(i, atoms.position(i) + translation);
}

Placement place_by_user(const ConstAtomTable& parallel, const MoleculeSplit& split,
                        const MoleculeFrame& molecule1, const EulerAngles& rotation,
                        const SphericalPosition& position, AtomTable placed) {
  const Vec3 translation = cartesian(position) - molecule1.cm;
  placed.copy_rows(parallel, split.N);
  turn_rows(placed, split.molecule1(), euler_matrix(rotation.alpha, rotation.beta, rotation.gamma),
            molecule1.cm);
  translate_rows(placed, split.molecule1(), translation);

  return measured_placement(molecule1, translation, centre_of_mass(placed, split.molecule1()),
                            centre_of_mass(placed, split.molecule2()));
}

Placement measured_placement(const MoleculeFrame& molecule1, const Vec3& translation,
                             const Vec3& cm1, const Vec3& cm2) {
  MoleculeFrame moved = moved_tips(molecule1, translation);
  moved.cm = cm1;
  return measured(moved, cm2);
}

Placement place_as_found(const ConstAtomTable& aligned, const MoleculeSplit& split,
                         const PairOfFrames& frames, AtomTable placed) {
  const auto& [molecule1, molecule2] = frames;
  const SphericalPosition found = measured_position(molecule1.cm, molecule2.cm);
  const Vec3 translation = cartesian(found) - molecule1.cm;
  placed.copy_rows(aligned, split.N);
  translate_rows(placed, split.molecule1(), translation);
  return measured(moved_tips(molecule1, translation), molecule2.cm);
}

}  // namespace dravo
