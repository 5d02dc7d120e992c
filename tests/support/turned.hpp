/// A molecule in other poses and other orders, and how far two sets of atoms differ.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include "common/vector.hpp"
#include "dravo/molecule.hpp"

namespace dravo::test {

/// Every rotation is as likely as every other: four normal numbers make a quaternion that points
/// nowhere in particular.
inline Matrix3 random_rotation(std::mt19937& random) {
  std::normal_distribution<double> normal;
  double a = normal(random), b = normal(random), c = normal(random), d = normal(random);
  const double length = std::sqrt(a * a + b * b + c * c + d * d);
  a /= length, b /= length, c /= length, d /= length;
  return {{{{1 - 2 * (c * c + d * d), 2 * (b * c - a * d), 2 * (b * d + a * c)},
            {2 * (b * c + a * d), 1 - 2 * (b * b + d * d), 2 * (c * d - a * b)},
            {2 * (b * d - a * c), 2 * (c * d + a * b), 1 - 2 * (b * b + c * c)}}}};
}

/// Each position p at `matrix` p + `shift`.
inline Molecule moved(const Molecule& molecule, const Matrix3& matrix, const Vec3& shift = {}) {
  std::vector<Vec3> positions = molecule.positions();
  for (Vec3& p : positions) p = matrix * p + shift;
  return {molecule.labels(), std::move(positions)};
}

/// Turned about the origin, then shifted by up to 10 Angstrom along each axis.
inline Molecule turned(const Molecule& molecule, std::mt19937& random) {
  std::uniform_real_distribution<double> component(-10.0, 10.0);
  const Matrix3 rotation = random_rotation(random);
  const double x = component(random), y = component(random), z = component(random);
  return moved(molecule, rotation, {x, y, z});
}

/// The mirror image in the plane x = 0.
inline Molecule mirrored(const Molecule& molecule) {
  return moved(molecule, {{{{-1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}});
}

/// The atoms in any order. Atom i of the result is atom `(*order)[i]` of the given molecule, both
/// from 0.
inline Molecule shuffled(const Molecule& molecule, std::mt19937& random,
                         std::vector<int>* order = nullptr) {
  std::vector<int> rows(molecule.labels().size());
  std::iota(rows.begin(), rows.end(), 0);
  std::shuffle(rows.begin(), rows.end(), random);
  std::vector<Label> labels;
  std::vector<Vec3> positions;
  for (const int row : rows) {
    labels.push_back(molecule.labels()[static_cast<std::size_t>(row)]);
    positions.push_back(molecule.positions()[static_cast<std::size_t>(row)]);
  }
  if (order != nullptr) *order = std::move(rows);
  return {std::move(labels), std::move(positions)};
}

/// A normal error of `sigma` Angstrom on each coordinate.
inline Molecule rattled(const Molecule& molecule, double sigma, std::mt19937& random) {
  std::normal_distribution<double> normal;
  std::vector<Vec3> positions = molecule.positions();
  for (Vec3& p : positions)
    for (double* coordinate : {&p.x, &p.y, &p.z}) *coordinate += sigma * normal(random);
  return {molecule.labels(), std::move(positions)};
}

/// The longest distance between atoms that are the same. The two sets already lie on each other:
/// each atom of `a` is the nearest of its element in `b`. Infinite where these are not one to one.
inline double largest_mismatch(const std::vector<Label>& labels_a,
                               const std::vector<Vec3>& positions_a,
                               const std::vector<Label>& labels_b,
                               const std::vector<Vec3>& positions_b) {
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  if (positions_a.size() != positions_b.size()) return kInfinite;
  std::vector<bool> taken(positions_b.size(), false);
  double largest = 0.0;
  for (std::size_t i = 0; i < positions_a.size(); ++i) {
    double distance = kInfinite;
    std::size_t nearest = 0;
    for (std::size_t j = 0; j < positions_b.size(); ++j) {
      const double d = modulus(positions_a[i] - positions_b[j]);
      if (labels_a[i] != labels_b[j] || !(d < distance)) continue;
      distance = d;
      nearest = j;
    }
    if (distance == kInfinite || taken[nearest]) return kInfinite;
    taken[nearest] = true;
    largest = std::max(largest, distance);
  }
  return largest;
}

inline double largest_mismatch(const Molecule& a, const Molecule& b) {
  return largest_mismatch(a.labels(), a.positions(), b.labels(), b.positions());
}

}  // namespace dravo::test
