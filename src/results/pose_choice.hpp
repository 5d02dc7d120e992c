/// Which poses of a table somebody wants.
#pragma once

#include <optional>
#include <string>

#include "results/scan_record.hpp"
#include "results/selected_rows.hpp"

namespace dravo {

struct PoseChoice {
  std::string poses = "all";                    ///< as --poses has it
  std::optional<BestRule> best = std::nullopt;  ///< of those
  std::string where = {};                       ///< as --where has it; empty for no condition
};

/// In the order of the table of the finished scan or docking of this name. Throws InvalidInput when
/// there is none, or when the table lacks a pose that was named alone; IoFailure.
SelectedRows chosen_rows(const std::string& scan, const ScanRecord& record,
                         const PoseChoice& choice);

/// "all", "17,40:60", "the best 100 by -clearance", "the best 3 by r of 1:50", "all where contacts
/// == 0".
std::string words_of(const PoseChoice& choice);

}  // namespace dravo
