/// Poses of a finished table, ranked by one column and by another.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dravo {

struct RankedPose {
  std::int64_t index;
  std::string value;                  ///< as in the table
  std::optional<std::int64_t> other;  ///< its place by the other column, from 1
};

/// The `count` poses with the smallest values of a column, smallest first. Without a place by the
/// `other` column where the table or the pose has none. Throws IoFailure, and InvalidInput for a
/// table without the first column.
std::vector<RankedPose> ranked_poses(const std::string& table, const std::string& column,
                                     const std::string& other, std::int64_t count);

}  // namespace dravo
