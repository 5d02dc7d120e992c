/// Plans for tests of a scan, and their poses.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "scan/plan.hpp"
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

inline std::vector<PoseDegrees> all_poses(const ScanPlan& plan) {
  std::vector<PoseDegrees> poses(static_cast<std::size_t>(plan.poses()));
  plan.fill(0, poses);
  return poses;
}

}  // namespace dravo::test
