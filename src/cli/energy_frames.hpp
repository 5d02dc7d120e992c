/// `dravo energy` for the frames of a file.
#pragma once

#include <string>

#include "cli/pair_options.hpp"
#include "dravo/energy.hpp"

namespace dravo {

/// As the options say.
struct FrameEnergyCommand {
  SharedRequest request;
  std::string frame;  ///< a number, or several; empty for the first
  EnergyOptions energy;
  ContactCriterion criterion;
  std::string output;  ///< of several frames; empty for standard output
  bool overwrite = false;
  bool quiet = false;
  bool json = false;  ///< of one frame
  int threads = 0;    ///< 0 for as many as the machine has cores
};

/// Text or JSON about one frame, a table of several. Throws CannotBeDone for one without an energy.
void compute_frames(const FrameEnergyCommand& command);

}  // namespace dravo
