/// Rotations and reflections as matrices.
#pragma once

#include <cmath>
#include <numbers>

#include "common/vector.hpp"

namespace dravo::test {

inline constexpr double kDegree = std::numbers::pi / 180.0;

/// A rotation matrix by Rodrigues' formula, about any axis.
inline Matrix3 turn_about(const Vec3& axis, double degrees) {
  const Vec3 u = (1.0 / modulus(axis)) * axis;
  const double c = std::cos(degrees * kDegree);
  const double s = std::sin(degrees * kDegree);
  const double t = 1.0 - c;
  return {{{{t * u.x * u.x + c, t * u.x * u.y - s * u.z, t * u.x * u.z + s * u.y},
            {t * u.x * u.y + s * u.z, t * u.y * u.y + c, t * u.y * u.z - s * u.x},
            {t * u.x * u.z - s * u.y, t * u.y * u.z + s * u.x, t * u.z * u.z + c}}}};
}

/// First `b`, then `a`.
inline Matrix3 product(const Matrix3& a, const Matrix3& b) {
  const Matrix3 columns = transposed(b);
  return transposed({{{a * columns.row[0], a * columns.row[1], a * columns.row[2]}}});
}

/// 1 of a rotation, -1 of a reflection.
inline double signed_volume(const Matrix3& m) { return dot(m.row[0], cross(m.row[1], m.row[2])); }

}  // namespace dravo::test
