/// Mistakes in a pair that the distances between its atoms show: a division that cuts bonds, a
/// wrong unit, atoms in a wrong order.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dravo/molecule.hpp"

namespace dravo {

/// Who says where molecule 2 begins, and what bonds between the molecules mean therefore.
enum class Division {
  asked,  ///< the user, who may be wrong: they are a mistake
  told,   ///< the file, as scans and placed pairs do: its molecules are meant to stand so
  apart,  ///< each molecule has a place of its own, where they may overlap: nothing
};

/// Where a pair comes from, as messages tell it.
struct PairOrigin {
  std::string_view name;              ///< of the file
  std::string_view second_name = {};  ///< of that of molecule 2, where each has its own
  Division division = Division::asked;
  LengthUnit unit = LengthUnit::angstrom;
  bool any_unit = true;  ///< false for the formats that are always in Angstrom
};

/// What was found, and what to try: whole messages that begin with the name of a file.
struct PairCheck {
  std::vector<std::string> refusals;  ///< what nobody wants
  std::vector<std::string> warnings;  ///< what may be meant
};

/// Refused are: coordinates in another unit, as far as bonds tell; atoms of a molecule closer than
/// 0.5 Angstrom; and, by division, bonds and such distances between the molecules. Warned about are
/// a molecule that is not one connected whole, and bonds of a metal between two that are. Bonds are
/// those of `bonded_components`.
///
/// Takes a microsecond or two for a dozen atoms when nothing is found, so that every frame of a
/// trajectory can be checked.
PairCheck check_pair(const Pair& pair, const PairOrigin& origin);

/// The unit in which coordinates, read in `unit`, make molecules; empty when they do so as they
/// are, or in none.
std::optional<LengthUnit> better_unit(std::span<const Label> labels,
                                      std::span<const Vec3> positions, LengthUnit unit);

}  // namespace dravo
