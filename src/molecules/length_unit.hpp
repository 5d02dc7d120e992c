/// Units of length that files may have.
#pragma once

#include <array>

#include "dravo/molecule.hpp"

namespace dravo {

struct NamedUnit {
  LengthUnit unit;
  const char* name;  ///< as options and messages have it
  double angstrom;
};

inline constexpr std::array<NamedUnit, 3> kLengthUnits{{
    {LengthUnit::angstrom, "angstrom", 1.0},
    {LengthUnit::bohr, "bohr", 0.529177210903},  // CODATA 2018
    {LengthUnit::nm, "nm", 10.0},
}};

constexpr const NamedUnit& named_unit(LengthUnit unit) {
  for (const NamedUnit& known : kLengthUnits)
    if (known.unit == unit) return known;
  return kLengthUnits[0];
}

}  // namespace dravo
