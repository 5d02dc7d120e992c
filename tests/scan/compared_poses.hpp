/// Which poses are equal, by comparing every pose with every other: what a look-up on the axes of a
/// grid finds is compared with this.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <numeric>
#include <utility>
#include <vector>

#include "dravo/place.hpp"
#include "dravo/scan.hpp"
#include "support/literal_symmetries.hpp"

namespace dravo::test {

/// Atoms that a turn may lay on each other: of the same element and the same molecule.
using Kinds = std::vector<std::int32_t>;

inline Kinds kinds_of(const Placer& placer) {
  Kinds kinds;
  for (const Label& label : placer.labels()) {
    const auto atom = static_cast<std::int32_t>(kinds.size());
    kinds.push_back(label[0] * 1024 + label[1] * 2 + (atom < placer.n1() ? 0 : 1));
  }
  return kinds;
}

using Points = std::vector<Vec3>;

inline bool lie_on(const Kinds& kinds, const Points& a, const Points& b, const Matrix3& turn,
                   double tolerance) {
  for (std::size_t i = 0; i < a.size(); ++i) {
    const Vec3 image = turn * a[i];
    bool hit = false;
    for (std::size_t j = 0; j < b.size() && !hit; ++j)
      hit = kinds[i] == kinds[j] && modulus(image - b[j]) <= tolerance;
    if (!hit) return false;
  }
  return true;
}

/// Some direction across this one.
inline Vec3 across(const Vec3& v) {
  const Vec3 other = std::abs(v.x) < std::abs(v.y) ? Vec3{1, 0, 0} : Vec3{0, 1, 0};
  return cross(v, other);
}

/// Whether a rotation about the origin, where molecule 2 has its centre of mass, lays every atom of
/// `a` on one of `b`. Two atoms that are not in line with the origin are laid on all others in
/// turn; where all are in line, one is.
inline bool are_equal(const Kinds& kinds, const Points& a, const Points& b, double tolerance) {
  constexpr double kInLine = 1e-6;
  std::size_t first = 0, second = 0;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (modulus(a[i]) > modulus(a[first])) first = i;
  if (modulus(a[first]) <= kInLine)
    return std::all_of(b.begin(), b.end(), [&](const Vec3& p) { return modulus(p) <= tolerance; });
  const auto area = [&](std::size_t i) { return modulus(cross(a[first], a[i])); };
  for (std::size_t i = 0; i < a.size(); ++i)
    if (area(i) > area(second)) second = i;
  const bool in_line = area(second) <= kInLine;
  const auto alike = [&](std::size_t i, std::size_t j) {
    return kinds[i] == kinds[j] && std::abs(modulus(a[i]) - modulus(b[j])) <= tolerance;
  };
  const Matrix3 own = axes_by(a[first], in_line ? across(a[first]) : a[second]);
  for (std::size_t i = 0; i < b.size(); ++i) {
    if (!alike(first, i)) continue;
    if (in_line) {
      const Matrix3 turn = product(transposed(axes_by(b[i], across(b[i]))), own);
      if (lie_on(kinds, a, b, turn, tolerance)) return true;
      continue;
    }
    for (std::size_t j = 0; j < b.size(); ++j) {
      const double change = modulus(b[i] - b[j]) - modulus(a[first] - a[second]);
      if (!alike(second, j) || std::abs(change) > 2.0 * tolerance) continue;
      if (lie_on(kinds, a, b, product(transposed(axes_by(b[i], b[j])), own), tolerance))
        return true;
    }
  }
  return false;
}

/// Numbers that are the same for equal poses: mean and extremes of all distances between the
/// molecules, and the mean for every two kinds of atoms.
inline std::vector<double> invariants_of(const Kinds& kinds, std::size_t n1, const Points& atoms) {
  std::vector<double> distances;
  std::map<std::pair<std::int32_t, std::int32_t>, std::pair<double, int>> sums;
  for (std::size_t i = 0; i < n1; ++i)
    for (std::size_t j = n1; j < atoms.size(); ++j) {
      distances.push_back(modulus(atoms[i] - atoms[j]));
      auto& [sum, count] = sums[{kinds[i], kinds[j]}];
      sum += distances.back();
      ++count;
    }
  const double sum = std::accumulate(distances.begin(), distances.end(), 0.0);
  std::vector<double> numbers{sum / static_cast<double>(distances.size()),
                              *std::min_element(distances.begin(), distances.end()),
                              *std::max_element(distances.begin(), distances.end())};
  for (const auto& [two, mean] : sums) numbers.push_back(mean.first / mean.second);
  return numbers;
}

/// The first of equal poses, from 1, and how many they are.
struct EqualOnes {
  std::int64_t first = 0;
  std::int64_t count = 0;

  bool operator==(const EqualOnes&) const = default;
};

inline std::vector<EqualOnes> equal_ones_by_comparison(const Placer& placer, const Poses& poses,
                                                       double tolerance) {
  const Kinds kinds = kinds_of(placer);
  const auto n1 = static_cast<std::size_t>(placer.n1());
  std::vector<PoseDegrees> asked(static_cast<std::size_t>(poses.size()));
  poses.fill(0, asked);
  struct Kept {
    std::size_t place;  ///< among the results
    Points atoms;
    std::vector<double> invariants;
  };
  std::multimap<double, Kept> kept;  // by the mean distance
  std::vector<EqualOnes> found;
  // No distance between two atoms differs by more in equal poses.
  const double reach = 2.0 * tolerance;
  std::int64_t index = 0;
  for (const PoseDegrees& pose : asked) {
    ++index;
    Points atoms = placer.positions(pose);
    std::vector<double> invariants = invariants_of(kinds, n1, atoms);
    const auto equal = [&](const Kept& other) {
      for (std::size_t k = 0; k < invariants.size(); ++k)
        if (std::abs(invariants[k] - other.invariants[k]) > reach) return false;
      return are_equal(kinds, atoms, other.atoms, tolerance);
    };
    auto at = kept.lower_bound(invariants[0] - reach);
    const auto end = kept.upper_bound(invariants[0] + reach);
    while (at != end && !equal(at->second)) ++at;
    if (at != end) {
      ++found[at->second.place].count;
      continue;
    }
    const double mean = invariants[0];
    kept.emplace(mean, Kept{found.size(), std::move(atoms), std::move(invariants)});
    found.push_back({index, 1});
  }
  return found;
}

/// The same as a scan finds it.
inline std::vector<EqualOnes> equal_ones_by_scan(const Placer& placer, const Poses& poses) {
  std::vector<EqualOnes> found;
  scan(placer, poses, {.unique = true}, [&](const ScanBatch& batch) {
    for (const ScannedPose& pose : batch.poses) found.push_back({pose.index, pose.equivalents});
  });
  return found;
}

}  // namespace dravo::test
