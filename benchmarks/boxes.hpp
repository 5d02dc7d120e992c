/// Random molecules for measurements: boxes filled at the density of organic matter.
#pragma once

#include <cmath>
#include <cstdint>
#include <random>

#include "common/vector.hpp"

namespace dravo::benchmarks {

inline constexpr double kAtomsPerCubicAngstrom = 0.1;

/// Edges of a box, Angstrom. They differ enough for a small box of random atoms to keep its
/// principal axes near the edges.
struct BoxEdges {
  double longest;   ///< axis of the smallest moment
  double middle;    ///< axis of the middle moment
  double shortest;  ///< axis of the largest moment
};

inline BoxEdges edges_of_box(std::int32_t atoms) {
  constexpr double kLongest = 1.7;
  constexpr double kMiddle = 1.3;
  const double shortest = std::cbrt(atoms / kAtomsPerCubicAngstrom / (kLongest * kMiddle));
  return {kLongest * shortest, kMiddle * shortest, shortest};
}

/// Molecule 1 with its frame xyz on the edges: z is the axis of the smallest moment.
inline Vec3 box_of_molecule1(const BoxEdges& e) { return {e.shortest, e.middle, e.longest}; }

/// Molecule 2 with its frame XYZ on the edges: Z is the axis of the largest moment.
inline Vec3 box_of_molecule2(const BoxEdges& e) { return {e.middle, e.longest, e.shortest}; }

/// Distance of the centres at which both boxes, placed along X, share a face.
inline double touching_distance(const BoxEdges& e) { return 0.5 * (e.shortest + e.middle); }

/// The same numbers with every C++ library; its distributions are not.
class RandomNumbers {
 public:
  explicit RandomNumbers(std::uint64_t seed) : bits_(seed) {}

  /// From 0 to below 1.
  double fraction() { return std::ldexp(static_cast<double>(bits_() >> 11U), -53); }

  double between(double low, double high) { return low + (high - low) * fraction(); }

  /// In a box around the origin.
  Vec3 point_in(const Vec3& edges) {
    const double x = edges.x * (fraction() - 0.5);
    const double y = edges.y * (fraction() - 0.5);
    const double z = edges.z * (fraction() - 0.5);
    return {x, y, z};
  }

 private:
  std::mt19937_64 bits_;
};

}  // namespace dravo::benchmarks
