/// Plans for tests of a scan, and their poses.
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "scan/plan.hpp"
#include "scan/plan_file.hpp"
#include "scan/plan_keys.hpp"
#include "support/message_of.hpp"
#include "support/pairs.hpp"

namespace dravo::test {

/// Keys and values as options give them.
using Options = std::vector<std::pair<std::string, std::string>>;

inline PlanKeys keys_of(const Options& options) {
  PlanKeys keys;
  for (const auto& [key, value] : options) set_plan_key(keys, key, value);
  return keys;
}

inline ScanPlan plan_of(const Options& options) { return ScanPlan(keys_of(options)); }

/// One pose in range, with some keys replaced or added.
inline Options one_pose(const Options& changes = {}) {
  std::map<std::string, std::string> keys{{"r", "5"},      {"theta", "90"}, {"phi", "45"},
                                          {"alpha", "10"}, {"beta", "20"},  {"gamma", "30"}};
  for (const auto& [key, value] : changes) keys[key] = value;
  return {keys.begin(), keys.end()};
}

inline std::vector<PoseDegrees> all_poses(const ScanPlan& plan) {
  std::vector<PoseDegrees> poses(static_cast<std::size_t>(plan.poses().size()));
  plan.poses().fill(0, poses);
  return poses;
}

/// In the order of the columns.
using PoseRow = std::array<double, 6>;

inline PoseRow row_of(const PoseDegrees& pose) {
  PoseRow row{};
  for (std::size_t k = 0; k < row.size(); ++k) row[k] = pose.*kPoseParameters[k].value;
  return row;
}

}  // namespace dravo::test
