/// Energies of the poses of a finished scan, by another method.
#pragma once

#include <optional>
#include <string>

#include "dravo/energy.hpp"
#include "results/progress.hpp"
#include "results/scan_files.hpp"
#include "results/scan_record.hpp"

namespace dravo {

struct EnergyRequest {
  std::string scan;              ///< name of its results, without ending
  std::string name;              ///< of those to be written
  std::string poses = "all";     ///< as an `IndexSelection` has it
  std::optional<BestRule> best;  ///< those of all; `poses` is not looked at then
  bool frames = false;           ///< are written too
  Earlier earlier = Earlier::refuse;
  int threads = 0;  ///< and engines; 0 for as many as the machine has cores
  Progress::Kind progress = Progress::Kind::none;
};

/// Places poses of a scan, whose record is `scan`, again and computes them. NAME.csv has their rows
/// as in the table of the scan and in its order, and behind each the energy and its status. With
/// frames, NAME.xyz has those of the scan, whose comment lines tell the same. NAME.json is the
/// record, as of a scan of these poses. The number of threads changes nothing.
///
/// `placer` places what the scan placed, and `model` is of its pair. Throws InvalidInput for poses
/// and columns that the table lacks, and for a method that it has already; IoFailure as a scan
/// does, NoRoom among them; Interrupted after SIGINT or SIGTERM; EngineFailure.
ScanTotals compute_energies(const ScanRecord& scan, const PairPlacer& placer,
                            const EnergyModel& model, const EnergyRequest& request);

}  // namespace dravo
