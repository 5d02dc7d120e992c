/// What a docking found, for people and as JSON.
#pragma once

#include <string>

namespace dravo {

/// How the user wants to be told.
struct DockTelling {
  bool quiet = false;
  bool json = false;
};

/// Of the finished results of this name, with the best five minima on standard output; of a part,
/// that it is done. Throws IoFailure.
void report_docking(const std::string& name, const DockTelling& telling);

}  // namespace dravo
