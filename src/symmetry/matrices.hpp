/// Rotations and reflections as matrices.
#pragma once

#include <cmath>
#include <cstddef>

#include "common/vector.hpp"

namespace dravo {

inline double length(const Vec3& a) { return std::sqrt(dot(a, a)); }
inline Vec3 unit(const Vec3& a) { return (1.0 / length(a)) * a; }

inline constexpr Matrix3 kIdentity{{{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}}};

constexpr Matrix3 operator*(double s, const Matrix3& m) {
  return {{s * m.row[0], s * m.row[1], s * m.row[2]}};
}
constexpr Matrix3 operator+(const Matrix3& a, const Matrix3& b) {
  return {{a.row[0] + b.row[0], a.row[1] + b.row[1], a.row[2] + b.row[2]}};
}
constexpr Matrix3 operator-(const Matrix3& a, const Matrix3& b) { return a + -1.0 * b; }

/// Column k, from 0.
constexpr Vec3 column(const Matrix3& m, std::size_t k) { return transposed(m).row[k]; }

/// About Y, by the angle with this cosine and sine; z goes towards x.
constexpr Matrix3 turn_about_y(double c, double s) {
  return {{{{c, 0.0, s}, {0.0, 1.0, 0.0}, {-s, 0.0, c}}}};
}

/// First b, then a.
constexpr Matrix3 operator*(const Matrix3& a, const Matrix3& b) {
  const Matrix3 columns = transposed(b);
  return {{columns * a.row[0], columns * a.row[1], columns * a.row[2]}};
}

constexpr double trace(const Matrix3& m) { return m.row[0].x + m.row[1].y + m.row[2].z; }
constexpr double determinant(const Matrix3& m) { return dot(m.row[0], cross(m.row[1], m.row[2])); }

/// Of a matrix whose determinant is not zero.
constexpr Matrix3 inverse(const Matrix3& m) {
  const auto& [a, b, c] = m.row;
  return (1.0 / determinant(m)) * transposed({{cross(b, c), cross(c, a), cross(a, b)}});
}

/// v v^T
constexpr Matrix3 square_of(const Vec3& v) { return {{v.x * v, v.y * v, v.z * v}}; }

/// Root of the sum of the squares of the differences of all elements.
inline double difference(const Matrix3& a, const Matrix3& b) {
  const Matrix3 d = a - b;
  return std::sqrt(dot(d.row[0], d.row[0]) + dot(d.row[1], d.row[1]) + dot(d.row[2], d.row[2]));
}

/// The orthogonal matrix nearest to one that is nearly orthogonal (Newton's iteration for the polar
/// decomposition: Higham, SIAM J. Sci. Stat. Comput. 7, 1160, 1986).
Matrix3 nearest_orthogonal(const Matrix3& m);

/// Rotation about the direction of `turn` by its length in radians.
Matrix3 rotation_by(const Vec3& turn);

/// Sum of (p^2 - p p^T), the inertia of points of unit mass.
constexpr Matrix3 spread_of(const Vec3& p) { return dot(p, p) * kIdentity - square_of(p); }

}  // namespace dravo
