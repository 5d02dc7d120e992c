#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace dravo {

/// Nearest integer, halves away from zero.
///
/// Every rounding of the program happens here, so that no input leads to undefined behaviour: a
/// not-a-number gives 0, a value outside 32 bits gives the nearest 32-bit integer.
inline std::int32_t nearest_integer(double value) {
  using Limits = std::numeric_limits<std::int32_t>;
  if (std::isnan(value)) return 0;
  if (value >= static_cast<double>(Limits::max())) return Limits::max();
  if (value <= static_cast<double>(Limits::min())) return Limits::min();
  return static_cast<std::int32_t>(std::lround(value));
}

}  // namespace dravo
