#include "inertia/inertia_tensor.hpp"

#include <cstddef>

#include "common/constants.hpp"
#include "inertia/diasym.hpp"

namespace dravo {
namespace {
constexpr double kGramsPerMassUnit = 1.6605389005928226e-24;
constexpr double kCentimetresPerAngstrom = widened(1.0e-8F);
}  // namespace

Matrix3 inertia_tensor(const ConstAtomTable& atoms, RowRange rows, const Vec3& cm) {
  double xx = 0.0, yy = 0.0, zz = 0.0, xy = 0.0, xz = 0.0, yz = 0.0;
  for (std::int32_t i = rows.begin; i < rows.end; ++i) {
    const double m = atoms.mass(i) * kGramsPerMassUnit;
    const Vec3 p = atoms.position(i) - cm;
    const double x = p.x * kCentimetresPerAngstrom;
    const double y = p.y * kCentimetresPerAngstrom;
    const double z = p.z * kCentimetresPerAngstrom;
    xx = xx + m * (y * y) + m * (z * z);
    yy = yy + m * (x * x) + m * (z * z);
    zz = zz + m * (x * x) + m * (y * y);
    xy = xy + -m * x * y;
    xz = xz + -m * x * z;
    yz = yz + -m * y * z;
  }
  return {{{{xx, xy, xz}, {xy, yy, yz}, {xz, yz, zz}}}};
}

PrincipalAxes principal_axes(const Matrix3& tensor) {
  const auto& [first, second, third] = tensor.row;
  // Symmetric, so the rows one behind the other are the columns one behind the other.
  std::array<double, 9> a{first.x,  first.y, first.z, second.x, second.y,
                          second.z, third.x, third.y, third.z};
  PrincipalAxes axes{};
  diasym(a, axes.moments, 3);
  for (std::size_t k = 0; k < 3; ++k) axes.eigenvectors[k] = {a[3 * k], a[3 * k + 1], a[3 * k + 2]};
  return axes;
}

MoleculeFrame frame_of(const Vec3& cm, const PrincipalAxes& axes) {
  const auto& [first, second, third] = axes.eigenvectors;
  return {cm, {cm + first, cm + second, cm + third}};
}

}  // namespace dravo
