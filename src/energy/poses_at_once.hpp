#pragma once

#include <cstdint>

#include "dravo/energy.hpp"

namespace dravo {

/// How many poses a thread computes before it looks up: few enough that whoever wants to end the
/// work waits no more than some tenths of a second, unless one pose takes longer.
constexpr std::int64_t poses_at_once(EnergyMethod method) {
  switch (method) {
    case EnergyMethod::gfnff:
      return 64;
    case EnergyMethod::command:
      return 1;
    default:
      return 4;
  }
}

}  // namespace dravo
