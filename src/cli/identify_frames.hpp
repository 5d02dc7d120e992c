/// `dravo identify` for many frames: a table with a row for each.
#pragma once

#include <string>

#include "cli/pair_options.hpp"
#include "common/index_selection.hpp"
#include "dravo/frame.hpp"

namespace dravo {

/// As the options say.
struct FramesCommand {
  SharedRequest request;
  IndexSelection selection = IndexSelection::parse("--frame", "all");
  FrameRule rule = FrameRule::extended;
  std::string like;
  ContactCriterion criterion;
  std::string output;  ///< empty for standard output
  bool overwrite = false;
  bool unwrap = false;
  bool skip_bad = false;
  bool quiet = false;
  int threads = 0;  ///< 0 for as many as the machine has cores
};

/// Throws InvalidInput or CannotBeDone for the first frame that has no parameters, unless such
/// frames are to be skipped.
void identify_frames(const FramesCommand& command);

}  // namespace dravo
