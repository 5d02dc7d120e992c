/// A scan, or a part of it, from plan to files.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "dravo/energy.hpp"
#include "dravo/molecule.hpp"
#include "results/progress.hpp"
#include "results/scan_files.hpp"
#include "results/scan_record.hpp"
#include "scan/pair_placer.hpp"
#include "scan/plan.hpp"

namespace dravo {

struct ScanRequest {
  std::string name = "scan";  ///< of the results, without ending
  /// Writing::files is the plan's to say.
  Writing writing = Writing::frames;
  std::optional<BestRule> best;  ///< all poses without it
  Earlier earlier = Earlier::refuse;
  std::optional<EnergyModel> energy;  ///< of the pair; poses get energies by it
  std::optional<double> keep_below;   ///< then those with a lower one are written, kcal/mol
  bool force = false;                 ///< though the disk has less room than the results take
  std::function<void(const std::string&)> tell = {};  ///< news before the scan begins; may be null
  std::optional<Shard> part;                          ///< the whole scan without it
  std::vector<std::string> inputs;                    ///< files that results must not replace
  int threads = 0;                                    ///< as many as the machine has cores
  Progress::Kind progress = Progress::Kind::none;
};

/// What a plan and a request say together. Throws InvalidInput when they contradict each other.
Writing writing_of(const ScanPlan& plan, const ScanRequest& request);

/// Of the results, without ending.
std::string result_name(const ScanRequest& request);

/// `placer` places `molecules`. Throws IoFailure when the results cannot be written, NoRoom among
/// them, Interrupted after SIGINT or SIGTERM, when a scan that writes is not done yet, and
/// EngineFailure.
ScanTotals run_scan(const PairPlacer& placer, const ScannedPair& molecules, const ScanPlan& plan,
                    const ScanRequest& request);

}  // namespace dravo
