/// The pair that a picture shows.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "cli/pair_options.hpp"
#include "cli/pose_options.hpp"
#include "dravo/scene.hpp"

namespace dravo {

/// Filled when the arguments are parsed.
struct PairShown {
  SharedRequest request;
  GivenPose given;
  std::string like;  ///< file of the reference; empty for none
  ContactCriterion criterion;
};

/// The second file, `--r` to `--gamma`, `--like` and `--contact-distance`.
void add_pose_shown(CLI::App& command, PairShown& shown);

/// The pair placed by what is given, and by its own parameters else. Remarks go to standard error.
struct ShownPlacer {
  Placer placer;
  PoseDegrees pose;
};
ShownPlacer placer_shown(const PairShown& shown);

/// "dimer.xyz", "water.xyz and benzene.xyz", without folders.
std::string title_of(const PairRequest& request);

/// What a picture says of itself.
std::string description_of(const PlacedPair& placed);

}  // namespace dravo
