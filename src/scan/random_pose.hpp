#pragma once

#include <cstdint>

#include "dravo/pose.hpp"

namespace dravo {

/// Pose `k` of a random series: a direction uniform on the sphere, an orientation uniform over all
/// rotations, in degrees; r is 0. Depends on nothing but `seed` and `k`.
PoseDegrees random_pose(std::uint64_t seed, std::int64_t k);

}  // namespace dravo
