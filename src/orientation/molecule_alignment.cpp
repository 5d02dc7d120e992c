#include "orientation/molecule_alignment.hpp"

#include "common/constants.hpp"
#include "common/rounding.hpp"

namespace dravo {

void turn_rows(AtomTable atoms, RowRange rows, const Matrix3& rotation, const Vec3& centre) {
  for (std::int32_t i = rows.begin; i < rows.end; ++i)
    atoms.set_position(i, rotation * (atoms.position(i) - centre) + centre);
}

void align_molecule1(AtomTable auxiliar_paralelas, RowRange molecule1, const EulerAngles& found,
                     const Vec3& cm1) {
  const Matrix3 back = transposed(euler_matrix(found.alpha, found.beta, found.gamma));
  turn_rows(auxiliar_paralelas, molecule1, back, cm1);
}

EulerAngles full_turns_folded(const EulerAngles& angles) {
  const auto folded = [](double radians) {
    return nearest_integer(degrees_by_pi(radians)) == 360 ? 0.0 : radians;
  };
  return {folded(angles.alpha), folded(angles.beta), folded(angles.gamma)};
}

}  // namespace dravo
