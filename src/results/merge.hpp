/// Joins the parts of a scan.
#pragma once

#include <string>

#include "results/scan_record.hpp"

namespace dravo {

/// NAME-1-of-N to NAME-N-of-N become NAME, with the bytes of a scan in one part; the parts stay.
/// Throws IoFailure when parts are missing, unfinished, changed, or of different scans, and when
/// NAME exists and may not be overwritten.
ScanRecord merge_shards(const std::string& name, bool overwrite);

}  // namespace dravo
