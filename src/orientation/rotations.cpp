#include "orientation/rotations.hpp"

#include <cmath>

namespace dravo {

Turn Turn::of(double radians) {
  double sine = 0.0;
  double cosine = 0.0;
  ::sincos(radians, &sine, &cosine);
  return {radians, clamped_to_unit(sine), clamped_to_unit(cosine)};
}

Matrix3 euler_matrix(const Turn& alpha, const Turn& beta, const Turn& gamma) {
  const double sa = alpha.sine, ca = alpha.cosine;
  const double sb = beta.sine, cb = beta.cosine;
  const double sg = gamma.sine, cg = gamma.cosine;
  return {{{{ca * cb * cg - sa * sg, sa * cb * cg + ca * sg, -sb * cg},
            {-ca * cb * sg - sa * cg, ca * cg - sa * cb * sg, sb * sg},
            {ca * sb, sa * sb, cb}}}};
}

Matrix3 euler_matrix(double alpha, double beta, double gamma) {
  return euler_matrix(Turn::of(alpha), Turn::of(beta), Turn::of(gamma));
}

Matrix3 alignment_matrix(const Turn& a, const Turn& t, const Turn& b) {
  const double sa = a.sine, ca = a.cosine;
  const double st = t.sine, ct = t.cosine;
  const double sb = b.sine, cb = b.cosine;
  return {{{{ca * ct * cb - sa * sb, ca * ct * sb + sa * cb, -ca * st},
            {-sa * ct * cb - ca * sb, -sa * ct * sb + ca * cb, sa * st},
            {st * cb, st * sb, ct}}}};
}

}  // namespace dravo
