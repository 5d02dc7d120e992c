#include "scan/random_pose.hpp"

#include <cmath>

#include "common/constants.hpp"

namespace dravo {
namespace {

/// The generator SplitMix64 (Steele, Lea and Flood, 2014), whose n-th number can be had without the
/// others: its state advances by a constant.
std::uint64_t splitmix(std::uint64_t seed, std::uint64_t n) {
  std::uint64_t z = seed + (n + 1) * 0x9E3779B97F4A7C15U;
  z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
  z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
  return z ^ (z >> 31U);
}

/// In [0, 1), from the upper 53 bits.
double unit_interval(std::uint64_t bits) { return static_cast<double>(bits >> 11U) * 0x1p-53; }

/// Uniform in its cosine: what makes points uniform on a sphere.
double polar_degrees(double u) { return std::acos(1.0 - 2.0 * u) * kDegreesPerRadian; }

}  // namespace

PoseDegrees random_pose(std::uint64_t seed, std::int64_t k) {
  constexpr std::uint64_t kNumbersOfPose = 5;
  std::uint64_t n = kNumbersOfPose * static_cast<std::uint64_t>(k);
  const auto next = [&] { return unit_interval(splitmix(seed, n++)); };
  PoseDegrees pose;
  pose.theta = polar_degrees(next());
  pose.phi = 360.0 * next();
  pose.alpha = 360.0 * next();
  pose.beta = polar_degrees(next());
  pose.gamma = 360.0 * next();
  return pose;
}

}  // namespace dravo
