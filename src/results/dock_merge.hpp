/// Joins the parts of a docking.
#pragma once

#include <string>
#include <vector>

#include "results/merge.hpp"
#include "results/scan_record.hpp"

namespace dravo {

/// `parts` are the names of all of them in order, with their records, whose results are seen to be
/// unchanged. Finds the minima of their starts, and replaces what has the name of the request.
/// Throws IoFailure when another version of program or engine made them; and what a `Docking`
/// throws.
ScanRecord merge_docking(const MergeRequest& request, const std::vector<std::string>& parts,
                         const std::vector<ScanRecord>& records);

}  // namespace dravo
