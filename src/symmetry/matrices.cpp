#include "symmetry/matrices.hpp"

#include <limits>

namespace dravo {

Matrix3 nearest_orthogonal(const Matrix3& m) {
  constexpr int kMostSteps = 30;  // six are enough for what is nearly orthogonal
  Matrix3 x = m;
  for (int step = 0; step < kMostSteps; ++step) {
    const Matrix3 next = 0.5 * (x + transposed(inverse(x)));
    const double change = difference(next, x);
    x = next;
    if (!(change > 4.0 * std::numeric_limits<double>::epsilon())) break;
  }
  return x;
}

Matrix3 rotation_by(const Vec3& turn) {
  const double angle = length(turn);
  if (angle == 0.0) return kIdentity;
  const Vec3 u = (1.0 / angle) * turn;
  const double c = std::cos(angle), s = std::sin(angle);
  const Matrix3 across{{{{0.0, -u.z, u.y}, {u.z, 0.0, -u.x}, {-u.y, u.x, 0.0}}}};
  return c * kIdentity + s * across + (1.0 - c) * square_of(u);
}

}  // namespace dravo
