/// The plan of a scan from a TOML file.
#pragma once

#include <string>

#include "scan/plan_keys.hpp"

namespace dravo {

/// Reads a TOML file of values and arrays of values. Throws InvalidInput for what is no TOML or
/// more deeply nested, IoFailure for a file that cannot be read.
PlanKeys read_plan_keys(const std::string& file);

}  // namespace dravo
