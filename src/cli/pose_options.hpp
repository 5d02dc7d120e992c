/// Options that give the six parameters of one pose, and what stands in for those not given.
#pragma once

#include <CLI/CLI.hpp>
#include <array>
#include <optional>
#include <string>

#include "dravo/molecule.hpp"
#include "dravo/pose.hpp"
#include "scan/own_value.hpp"

namespace dravo {

/// An option's value and its text, for messages.
struct GivenValue {
  PoseNumber number;
  std::string text;
};

/// In the order of `kPoseParameters`.
using GivenPose = std::array<std::optional<GivenValue>, kPoseParameters.size()>;

/// `--r` to `--gamma`, each a number, "here" or "here + NUMBER". `given` is filled when the
/// arguments are parsed.
void add_pose_options(CLI::App& command, GivenPose& given);

/// The parameters that a file states; else those of the pair as it stands; for two files no r and
/// angles of zero, but theta beside a linear molecule 2, which is 90. `file` and `like`, the pair
/// whose axes are carried along (null for none), must live as long as the defaults.
PoseDefaults pose_defaults(const PairRequest& request, const PairFile& file,
                           const Pair* like = nullptr);

/// What is given, and the defaults for the rest. Throws InvalidInput for values that no pose may
/// have, and where neither tells a value.
PoseDegrees chosen_pose(const GivenPose& given, const PoseDefaults& defaults,
                        const PairRequest& request);

}  // namespace dravo
