/// A docking, or a part of it, from a pair to files.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "dravo/dock.hpp"
#include "results/dock_results.hpp"
#include "results/scan_files.hpp"
#include "results/scan_record.hpp"
#include "results/status_line.hpp"

namespace dravo {

/// What `DockSummary::ended` may be besides `kEndedByTime`.
inline constexpr auto kEndedByNothingNew = "nothing new";
inline constexpr auto kEndedByStarts = "starts";  ///< as many as asked for
inline constexpr auto kEndedByMostStarts = "most starts";

/// Starts of a docking that finds something new until then.
inline constexpr std::int64_t kMostStarts = 500;

/// What the results of a docking follow from, besides the pair.
struct DockPlan {
  DockOptions options;
  std::optional<std::int64_t> starts;  ///< so many; without it, until new ones find nothing new
  std::optional<std::int64_t> keep;    ///< the best minima that are written; all without it
};

struct DockRequest {
  std::string name = "dock";  ///< of the results, without ending
  DockPlan plan;
  std::optional<std::chrono::duration<double>> time;  ///< no start begins after it
  std::optional<Shard> part;                          ///< the whole docking without it
  Earlier earlier = Earlier::refuse;
  std::vector<std::string> inputs;  ///< files that results must not replace
  int threads = 0;                  ///< as many as the machine has cores
  StatusLine::Kind progress = StatusLine::Kind::none;
};

/// Of the results, without ending.
std::string result_name(const DockRequest& request);

/// `docking` is of the pair and of the plan of the request. Throws IoFailure when the results
/// cannot be written, EngineFailure, and Interrupted after SIGINT or SIGTERM; InvalidInput, and
/// then leaves no unfinished results, where the method has no forces for the pair.
void run_dock(const Docking& docking, const Pair& pair, const DockRequest& request);

/// The record of a docking of this pair that has done nothing.
ScanRecord record_of(const Docking& docking, const Pair& pair, const DockPlan& plan);

/// Of a record of a docking. Throws IoFailure for one that this program cannot have written;
/// `name` is the file's.
DockPlan plan_of(const std::string& name, const ScanRecord& record);

/// Fills in the minima of all starts that were found.
void find_minima(const Docking& docking, const DockPlan& plan, int threads, StatusLine::Kind kind,
                 DockFindings& found);

}  // namespace dravo
