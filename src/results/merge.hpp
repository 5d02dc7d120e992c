/// Joins the parts of a scan or of a docking.
#pragma once

#include <string>

#include "results/scan_record.hpp"
#include "results/status_line.hpp"

namespace dravo {

struct MergeRequest {
  std::string name;        ///< of the results, without ending
  bool overwrite = false;  ///< earlier results of that name
  /// For the minima of a docking, which are found last.
  int threads = 0;  ///< as many as the machine has cores
  StatusLine::Kind progress = StatusLine::Kind::none;
};

/// NAME-1-of-N to NAME-N-of-N become NAME, with the bytes of a scan in one part; the parts stay.
/// Throws IoFailure when parts are missing, unfinished, changed, or of different scans, and when
/// NAME exists and may not be overwritten; for a docking what `merge_docking` throws, too.
ScanRecord merge_shards(const MergeRequest& request);

}  // namespace dravo
