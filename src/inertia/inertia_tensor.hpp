/// Tensor of the moment of inertia and its principal axes.
#pragma once

#include <array>

#include "common/atom_table.hpp"
#include "common/frame.hpp"

namespace dravo {

/// About the centre of mass, in g cm^2:
///
///     |  sum m(y^2+z^2)   -sum m x y       -sum m x z      |
///     | -sum m x y         sum m(x^2+z^2)  -sum m y z      |
///     | -sum m x z        -sum m y z        sum m(x^2+y^2) |
Matrix3 inertia_tensor(const ConstAtomTable& atoms, RowRange rows, const Vec3& cm);

struct PrincipalAxes {
  std::array<double, 3> moments;     ///< I_A <= I_B <= I_C, g cm^2
  std::array<Vec3, 3> eigenvectors;  ///< unit vectors in the same order, sign as the solver gave it
};

PrincipalAxes principal_axes(const Matrix3& tensor);

/// Tips one eigenvector away from the centre of mass (Angstrom).
MoleculeFrame frame_of(const Vec3& cm, const PrincipalAxes& axes);

/// One molecule's eigenproblem with its solution.
struct EigenProblem {
  Matrix3 tensor;       ///< g cm^2
  PrincipalAxes axes;   ///< as the solver returned them
  MoleculeFrame frame;  ///< tips at these axes
};

}  // namespace dravo
