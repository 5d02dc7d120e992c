/// Three-component vectors and 3 x 3 matrices, in the order of operations of the printed formulas.
///
/// Sums run left to right (x, y, z), because users repeat these numbers by hand and compare the
/// last digit.
#pragma once

#include <array>

#include "dravo/atoms.hpp"

namespace dravo {

constexpr Vec3 operator+(const Vec3& a, const Vec3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
constexpr Vec3 operator-(const Vec3& a, const Vec3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
constexpr Vec3 operator-(const Vec3& a) { return {-a.x, -a.y, -a.z}; }
constexpr Vec3 operator*(double s, const Vec3& a) { return {s * a.x, s * a.y, s * a.z}; }
constexpr bool operator==(const Vec3& a, const Vec3& b) {
  return a.x == b.x && a.y == b.y && a.z == b.z;
}

constexpr double dot(const Vec3& a, const Vec3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

constexpr Vec3 cross(const Vec3& a, const Vec3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// Square root as the power 0.5 of the C library, which differs from `sqrt` in the last digit for
/// some values.
///
/// Not inline: where several calls stand side by side, an optimiser may turn them into one vector
/// square root, and printed digits would depend on the build.
double half_power(double value);

inline double modulus(const Vec3& a) { return half_power(dot(a, a)); }

/// Every component below a limit; false for a not-a-number.
constexpr bool all_below(const Vec3& a, double limit) {
  return a.x < limit && a.y < limit && a.z < limit;
}

/// Point reflected through a centre: the reversed axis when the point is an axis tip.
constexpr Vec3 reflected(const Vec3& point, const Vec3& centre) {
  return centre - (point - centre);
}

/// Into [-1, 1]; a not-a-number passes unchanged.
constexpr double clamped_to_unit(double value) {
  if (value > 1.0) return 1.0;
  if (value < -1.0) return -1.0;
  return value;
}

/// Three rows.
///
///     | row[0].x  row[0].y  row[0].z |
///     | row[1].x  row[1].y  row[1].z |
///     | row[2].x  row[2].y  row[2].z |
struct Matrix3 {
  std::array<Vec3, 3> row;
};

constexpr Vec3 operator*(const Matrix3& m, const Vec3& v) {
  return {dot(m.row[0], v), dot(m.row[1], v), dot(m.row[2], v)};
}

constexpr Matrix3 transposed(const Matrix3& m) {
  const auto& [a, b, c] = m.row;
  return {{{{a.x, b.x, c.x}, {a.y, b.y, c.y}, {a.z, b.z, c.z}}}};
}

}  // namespace dravo
