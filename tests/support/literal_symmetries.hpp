/// The symmetry of a molecule without any shortcut: every way to lay two of its atoms on two others
/// is tried. What a faster search finds is compared with this.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "common/vector.hpp"
#include "dravo/molecule.hpp"
#include "support/turns.hpp"

namespace dravo::test {

/// Relative to the mean of all positions, which every symmetry leaves where it is.
inline std::vector<Vec3> about_their_mean(std::vector<Vec3> positions) {
  Vec3 sum;
  for (const Vec3& p : positions) sum = sum + p;
  for (Vec3& p : positions) p = p - (1.0 / static_cast<double>(positions.size())) * sum;
  return positions;
}

/// Every atom comes to lie on one of its element, up to `tolerance` Angstrom.
inline bool maps_onto_itself(const std::vector<Label>& labels, const std::vector<Vec3>& positions,
                             const Matrix3& operation, double tolerance) {
  for (std::size_t i = 0; i < positions.size(); ++i) {
    const Vec3 image = operation * positions[i];
    bool hit = false;
    for (std::size_t j = 0; j < positions.size() && !hit; ++j)
      hit = labels[i] == labels[j] && modulus(image - positions[j]) <= tolerance;
    if (!hit) return false;
  }
  return true;
}

/// Rows: along a, in the plane of a and b, across it.
inline Matrix3 axes_by(const Vec3& a, const Vec3& b) {
  const Vec3 along = (1.0 / modulus(a)) * a;
  const Vec3 normal = cross(a, b);
  const Vec3 across = (1.0 / modulus(normal)) * normal;
  return {{along, cross(across, along), across}};
}

/// All rotations and reflections about the mean of the positions that map the molecule onto itself;
/// none at all for linear molecules and atoms.
inline std::vector<Matrix3> literal_symmetries(const Molecule& molecule, double tolerance) {
  const auto& labels = molecule.labels();
  const std::vector<Vec3> r = about_their_mean(molecule.positions());
  std::size_t a = 0, b = 0;
  for (std::size_t i = 0; i < r.size(); ++i)
    if (dot(r[i], r[i]) > dot(r[a], r[a])) a = i;
  const auto area = [&](std::size_t i) { return modulus(cross(r[a], r[i])); };
  for (std::size_t i = 0; i < r.size(); ++i)
    if (area(i) > area(b)) b = i;
  if (area(b) < 0.01) return {};

  const Matrix3 back = transposed(axes_by(r[a], r[b]));
  const auto alike = [&](std::size_t i, std::size_t j) {
    return labels[i] == labels[j] && std::abs(modulus(r[i]) - modulus(r[j])) <= tolerance;
  };
  std::vector<Matrix3> found;
  for (std::size_t i = 0; i < r.size(); ++i)
    for (std::size_t j = 0; j < r.size(); ++j) {
      const double change = modulus(r[i] - r[j]) - modulus(r[a] - r[b]);
      if (!alike(a, i) || !alike(b, j) || std::abs(change) > 2.0 * tolerance) continue;
      Matrix3 axes = axes_by(r[i], r[j]);
      for (const double side : {1.0, -1.0}) {
        axes.row[2] = side * axes.row[2];
        const Matrix3 operation = product(transposed(axes), transposed(back));
        if (maps_onto_itself(labels, r, operation, tolerance)) found.push_back(operation);
      }
    }
  return found;
}

inline int count_of_proper(const std::vector<Matrix3>& operations) {
  return static_cast<int>(std::count_if(operations.begin(), operations.end(),
                                        [](const Matrix3& m) { return signed_volume(m) > 0.0; }));
}

}  // namespace dravo::test
