/// Plans and pairs for tests of a scan.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "common/errors.hpp"
#include "molecules/pair.hpp"
#include "scan/plan.hpp"
#include "scan/plan_keys.hpp"
#include "support/sample_input.hpp"

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
  std::vector<PoseDegrees> poses(static_cast<std::size_t>(plan.poses().size()));
  plan.poses().fill(0, poses);
  return poses;
}

/// The message of what an action throws; empty when it throws nothing.
template <class Failure = Error, class Action>
std::string message_of(const Action& action) {
  try {
    action();
  } catch (const Failure& failure) {
    return failure.what();
  }
  return "";
}

inline Pair pair_of(const SampleInput& sample) {
  Pair pair;
  pair.split = {static_cast<std::int32_t>(sample.atoms.size()),
                static_cast<std::int32_t>(sample.n1)};
  for (const SampleInput::Atom& atom : sample.atoms) {
    pair.labels.push_back({atom.label[0], atom.label.size() > 1 ? atom.label[1] : ' '});
    pair.positions.push_back(atom.position);
  }
  return pair;
}

}  // namespace dravo::test
