/// Euler rotation matrices.
///
/// A = Rz(gamma) Ry(beta) Rz(alpha), z-y-z, built from elementary rotations that transform
/// coordinates:
///
///     |  ca cb cg - sa sg    sa cb cg + ca sg   -sb cg |
///     | -ca cb sg - sa cg    ca cg - sa cb sg    sb sg |
///     |  ca sb               sa sb               cb    |
///
/// A carries molecule 2's axes onto molecule 1's; its transpose carries molecule 1 back onto
/// molecule 2's frame. The user's angles turn molecule 1 with A itself.
#pragma once

#include "common/vector.hpp"

namespace dravo {

/// An angle with its sine and cosine, each clamped into [-1, 1].
struct Turn {
  double radians;
  double sine;
  double cosine;

  static Turn of(double radians);
};

/// Radians.
struct EulerAngles {
  double alpha = 0.0;
  double beta = 0.0;
  double gamma = 0.0;
};

Matrix3 euler_matrix(const Turn& alpha, const Turn& beta, const Turn& gamma);
Matrix3 euler_matrix(double alpha, double beta, double gamma);

/// The same rotation as A(b, t, a), with the factors in the order of the alignment fit:
///
///     |  ca ct cb - sa sb    ca ct sb + sa cb   -ca st |
///     | -sa ct cb - ca sb   -sa ct sb + ca cb    sa st |
///     |  st cb               st sb               ct    |
///
/// The order decides the last digit, and with it which of two close grid points is the better one.
Matrix3 alignment_matrix(const Turn& a, const Turn& t, const Turn& b);

}  // namespace dravo
