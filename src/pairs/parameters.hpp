/// The six association parameters by their names, and whether they are in range.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "driver/user_parameters.hpp"

namespace dravo {

/// As options, plans and columns name them.
struct ParameterName {
  const char* name;
  double UserParameters::*value;
};

inline constexpr std::array<ParameterName, 6> kParameterNames{{
    {"r", &UserParameters::r},
    {"theta", &UserParameters::theta},
    {"phi", &UserParameters::phi},
    {"alpha", &UserParameters::alpha},
    {"beta", &UserParameters::beta},
    {"gamma", &UserParameters::gamma},
}};

/// The first value that `qn-dravo` would refuse.
struct ParameterComplaint {
  ParameterName parameter;
  std::string sentence;  ///< "polar angle out of range. Allowed: 0<theta<180 degrees"
};

/// Values in Angstrom and degrees; empty when all are in range.
std::optional<ParameterComplaint> complaint_about(const UserParameters& degrees);

}  // namespace dravo
