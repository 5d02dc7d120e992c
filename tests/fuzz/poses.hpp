/// Poses that were read.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "dravo/scan.hpp"
#include "fuzz/expectations.hpp"
#include "molecules/pose_range.hpp"

namespace dravo::test {

/// Of some pair as it stands.
inline PoseDegrees a_pose() { return {4.5, 60.0, 350.0, 10.0, 120.0, 30.0}; }

/// The first and the last poses can be had. Distances that count from contact may have any sign.
inline void require_poses(const Poses& poses, bool above_contact) {
  constexpr std::int64_t kLooked = 8;
  std::array<PoseDegrees, kLooked> made;
  const std::int64_t count = std::min(poses.size(), kLooked);
  require(count >= 1, "there are poses");
  for (const std::int64_t first : {std::int64_t{0}, poses.size() - count}) {
    const std::span<PoseDegrees> some = std::span(made).first(static_cast<std::size_t>(count));
    poses.fill(first, some);
    for (PoseDegrees& pose : some) {
      if (above_contact) pose.r = 0.0;
      require(is_usable(pose), "a pose is in range");
    }
  }
}

}  // namespace dravo::test
