#include "dock/same_minimum.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "symmetry/matrices.hpp"
#include "symmetry/operations.hpp"

namespace dravo {
namespace {

LabelledAtoms part_of(const Pair& pair, std::ptrdiff_t first, std::ptrdiff_t end) {
  const auto& labels = pair.labels();
  const auto& positions = pair.positions();
  return {{labels.begin() + first, labels.begin() + end},
          {positions.begin() + first, positions.begin() + end}};
}

/// In the numbers of the pair.
std::vector<Matching> shifted(std::vector<Matching> matchings, std::size_t first) {
  for (Matching& matching : matchings)
    for (std::size_t& atom : matching) atom += first;
  return matchings;
}

/// Sum of p q^T over the atoms from `first` on and those that they go to.
Matrix3 correlation(const FoundMinimum& one, std::size_t first, const FoundMinimum& other,
                    const Matching& matching) {
  Matrix3 sum{};
  for (std::size_t i = 0; i < matching.size(); ++i) {
    const Vec3& p = one.positions[first + i];
    const Vec3& q = other.positions[matching[i]];
    sum = sum + Matrix3{{p.x * q, p.y * q, p.z * q}};
  }
  return sum;
}

std::vector<Matrix3> correlations(const FoundMinimum& one, std::size_t first,
                                  const FoundMinimum& other,
                                  const std::vector<Matching>& matchings) {
  std::vector<Matrix3> sums;
  sums.reserve(matchings.size());
  for (const Matching& matching : matchings)
    sums.push_back(correlation(one, first, other, matching));
  return sums;
}

/// Whether some rotation R has a sum of q R p of at least `least`: whether the largest eigenvalue
/// of Horn's matrix (J. Opt. Soc. Am. A 4, 629, 1987) is as large, which is whether `least` minus
/// that matrix has no Cholesky decomposition.
bool reaches(const Matrix3& s, double least) {
  const auto& [x, y, z] = s.row;
  const std::array<std::array<double, 4>, 4> horn{
      {{x.x + y.y + z.z, 0, 0, 0},
       {y.z - z.y, x.x - y.y - z.z, 0, 0},
       {z.x - x.z, x.y + y.x, -x.x + y.y - z.z, 0},
       {x.y - y.x, z.x + x.z, y.z + z.y, -x.x - y.y + z.z}}};
  std::array<std::array<double, 4>, 4> lower{};
  for (std::size_t i = 0; i < 4; ++i)
    for (std::size_t j = 0; j <= i; ++j) {
      double left = (i == j ? least : 0.0) - horn[i][j];
      for (std::size_t k = 0; k < j; ++k) left -= lower[i][k] * lower[j][k];
      if (i == j && !(left > 0.0)) return true;
      lower[i][j] = i == j ? std::sqrt(left) : left / lower[j][j];
    }
  return false;
}

}  // namespace

FoundMinimum found_minimum(double energy, std::vector<Vec3> positions) {
  Vec3 sum{};
  for (const Vec3& p : positions) sum = sum + p;
  const Vec3 centre = (1.0 / static_cast<double>(positions.size())) * sum;
  FoundMinimum minimum{energy, std::move(positions), 0.0};
  for (Vec3& p : minimum.positions) {
    p = p - centre;
    minimum.spread += dot(p, p);
  }
  return minimum;
}

SameMinimum::SameMinimum(const Pair& pair) : n1_(static_cast<std::size_t>(pair.n1())) {
  const LabelledAtoms one = part_of(pair, 0, pair.n1());
  const LabelledAtoms two = part_of(pair, pair.n1(), pair.size());
  // Nearly equal atoms and molecules are taken for equal: what that does to the atoms counts
  // anyway.
  choices_.push_back({{matchings(one, one, kNearlySymmetric),
                       shifted(matchings(two, two, kNearlySymmetric), n1_)}});
  std::vector<Matching> exchanged = matchings(one, two, kNearlySymmetric);
  if (exchanged.empty()) return;
  choices_.push_back({{shifted(std::move(exchanged), n1_), matchings(two, one, kNearlySymmetric)}});
}

bool SameMinimum::operator()(const FoundMinimum& one, const FoundMinimum& other) const {
  return std::abs(one.energy - other.energy) <= kEnergy && within(kDistance, one, other);
}

bool SameMinimum::within(double distance, const FoundMinimum& one,
                         const FoundMinimum& other) const {
  const double sum_of_squares = distance * distance * static_cast<double>(one.positions.size());
  const double least = 0.5 * (one.spread + other.spread - sum_of_squares);
  return std::any_of(choices_.begin(), choices_.end(), [&](const Choice& choice) {
    const auto first = correlations(one, 0, other, choice.of_molecule[0]);
    const auto second = correlations(one, n1_, other, choice.of_molecule[1]);
    for (const Matrix3& a : first)
      for (const Matrix3& b : second)
        if (reaches(a + b, least)) return true;
    return false;
  });
}

}  // namespace dravo
