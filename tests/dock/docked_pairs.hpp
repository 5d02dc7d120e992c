/// Pairs that are docked, and what is looked at in their minima.
#pragma once

#include <cmath>
#include <cstdint>
#include <random>
#include <string_view>
#include <vector>

#include "dravo/dock.hpp"
#include "support/molecule_sets.hpp"
#include "support/turned.hpp"
#include "symmetry/superposition.hpp"

namespace dravo::test {

/// The molecules of a published dimer, each turned at random.
inline Pair pulled_apart(std::string_view dimer, unsigned seed = 1) {
  std::mt19937 random(seed);
  const NamedPair published = s22(dimer);
  return {turned(published.molecule1(), random), turned(published.molecule2(), random)};
}

inline std::vector<DockStart> starts_of(const Docking& docking, std::int64_t count) {
  Docking::Starter starter = docking.starter();
  std::vector<DockStart> starts;
  for (std::int64_t number = 1; number <= count; ++number) starts.push_back(starter.run(number));
  return starts;
}

/// Root mean square distance of all atoms, Angstrom, after the best superposition. `order[i]` is
/// the atom of `b` that stands for atom i of `a`.
inline double rmsd(const std::vector<Vec3>& a, const std::vector<Vec3>& b,
                   const std::vector<std::size_t>& order) {
  const auto centred = [](std::vector<Vec3> points) {
    Vec3 sum{};
    for (const Vec3& p : points) sum = sum + p;
    for (Vec3& p : points) p = p - (1.0 / static_cast<double>(points.size())) * sum;
    return CentredAtoms{points, std::vector(points.size(), 1.0), {}, {}};
  };
  std::vector<Vec3> matched;
  for (const std::size_t atom : order) matched.push_back(b[atom]);
  const CentredAtoms from = centred(a), to = centred(matched);
  const Matrix3 turn = best_rotation(from, to);
  double sum = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const Vec3 d = turn * from.positions[i] - to.positions[i];
    sum += dot(d, d);
  }
  return std::sqrt(sum / static_cast<double>(a.size()));
}

inline bool same_pose(const PoseDegrees& one, const PoseDegrees& other) {
  for (const PoseParameter& parameter : kPoseParameters)
    if (one.*parameter.value != other.*parameter.value) return false;
  return true;
}

}  // namespace dravo::test
