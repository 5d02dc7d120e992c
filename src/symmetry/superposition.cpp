#include "symmetry/superposition.hpp"

#include <array>
#include <cstddef>

#include "inertia/diasym.hpp"

namespace dravo {

/// The largest eigenvector of a symmetric 4 x 4 matrix is its quaternion (Horn, J. Opt. Soc. Am. A
/// 4, 629, 1987).
Matrix3 best_rotation(const CentredAtoms& from, const CentredAtoms& to) {
  Matrix3 s{};  // sum of m p q^T
  for (std::size_t i = 0; i < from.size(); ++i) {
    const Vec3 p = from.masses[i] * from.positions[i];
    const Vec3& q = to.positions[i];
    s = s + Matrix3{{p.x * q, p.y * q, p.z * q}};
  }
  const auto& [x, y, z] = s.row;
  std::array<double, 16> n{x.x + y.y + z.z, y.z - z.y,       z.x - x.z,        x.y - y.x,
                           y.z - z.y,       x.x - y.y - z.z, x.y + y.x,        z.x + x.z,
                           z.x - x.z,       x.y + y.x,       -x.x + y.y - z.z, y.z + z.y,
                           x.y - y.x,       z.x + x.z,       y.z + z.y,        -x.x - y.y + z.z};
  std::array<double, 4> eigenvalues{};
  diasym(n, eigenvalues, 4);
  const double w = n[12];
  const Vec3 v{n[13], n[14], n[15]};
  const Matrix3 across{{{{0.0, -v.z, v.y}, {v.z, 0.0, -v.x}, {-v.y, v.x, 0.0}}}};
  return (w * w - dot(v, v)) * kIdentity + 2.0 * square_of(v) + 2.0 * w * across;
}

}  // namespace dravo
