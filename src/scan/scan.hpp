/// Scans whose results are numbers.
#pragma once

#include <functional>

#include "dravo/scan.hpp"
#include "scan/pair_placer.hpp"

namespace dravo {

/// As the `scan` of `dravo/scan.hpp`.
void scan(const PairPlacer& placer, const Poses& poses, const ScanOptions& options,
          const std::function<void(const ScanBatch&)>& take);

}  // namespace dravo
