/// A scan, or a part of it, from plan to files.
#pragma once

#include <string>

#include "pairs/pair.hpp"
#include "scan/plan.hpp"
#include "scan/progress.hpp"
#include "scan/scan_files.hpp"
#include "scan/scan_record.hpp"

namespace dravo {

struct ScanRequest {
  std::string name = "scan";  ///< of the results, without ending
  bool count_only = false;    ///< nothing is written
  Earlier earlier = Earlier::refuse;
  Shard shard;
  int threads = 1;
  Progress::Kind progress = Progress::Kind::none;
};

/// Throws Refusal for a pair that cannot be placed, IoFailure when the results cannot be written.
ScanTotals scan(const Pair& pair, const ScanPlan& plan, const ScanRequest& request);

}  // namespace dravo
