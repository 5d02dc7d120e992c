/// Clouds of atoms for tests of the contact surveyor.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "common/atom_table.hpp"
#include "support/not_finite.hpp"

namespace dravo::test {

using Random = std::mt19937_64;
using Cloud = std::vector<Vec3>;

inline double uniform(Random& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

inline Vec3 point_in_box(Random& random, double half_edge) {
  return {uniform(random, -half_edge, half_edge), uniform(random, -half_edge, half_edge),
          uniform(random, -half_edge, half_edge)};
}

inline Cloud cloud(Random& random, std::size_t atoms, double half_edge) {
  Cloud points;
  for (std::size_t k = 0; k < atoms; ++k) points.push_back(point_in_box(random, half_edge));
  return points;
}

inline Vec3 unit_vector(Random& random) {
  const double z = uniform(random, -1.0, 1.0);
  const double phi = uniform(random, 0.0, 6.283185307179586);
  const double across = std::sqrt(1.0 - z * z);
  return {across * std::cos(phi), across * std::sin(phi), z};
}

inline Cloud moved(const Cloud& points, const Vec3& by) {
  Cloud result;
  for (const Vec3& p : points) result.push_back(p + by);
  return result;
}

/// Both molecules in a table, molecule 1 first.
struct PlacedPair {
  PlacedPair(const Cloud& molecule1, const Cloud& molecule2)
      : storage(kColumns * (molecule1.size() + molecule2.size())),
        table(storage),
        split{static_cast<std::int32_t>(molecule1.size() + molecule2.size()),
              static_cast<std::int32_t>(molecule1.size())} {
    std::int32_t row = 0;
    for (const Vec3& p : molecule1) table.set_position(row++, p);
    for (const Vec3& p : molecule2) table.set_position(row++, p);
  }

  std::vector<double> storage;
  AtomTable table;
  MoleculeSplit split;
};

}  // namespace dravo::test
