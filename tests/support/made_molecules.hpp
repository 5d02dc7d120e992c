/// Molecules that are symmetric by their making: a few atoms, and what the operations of a point
/// group make of them.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "common/vector.hpp"
#include "dravo/molecule.hpp"

namespace dravo::test {

/// Proper rotations of a linear molecule or an atom.
inline constexpr int kInfinitelyMany = 0;

/// As textbooks have it. The main axis is z, further twofold axes begin with x, upright mirror
/// planes with y = 0. Cubic groups have a threefold axis (1, 1, 1), icosahedral ones also a
/// fivefold (0, 1, 1.618).
struct PointGroup {
  int proper_order;                 ///< number of rotations with the identity, or kInfinitelyMany
  std::vector<Matrix3> generators;  ///< about the origin, all operations are products of them
};

/// By Schoenflies symbols: "C2v", "Td", "D*h" of linear molecules, "K" of an atom.
const std::map<std::string_view, PointGroup>& point_groups();

struct MadeMolecule {
  std::string name;
  std::string group;  ///< Schoenflies symbol, a key of `point_groups()`
  Molecule molecule;  ///< its group exactly, about the origin
  int proper_order;   ///< of its group
};

/// All of them.
const std::vector<MadeMolecule>& made_molecules();

/// One by its name. Throws std::out_of_range.
const MadeMolecule& made(std::string_view name);

}  // namespace dravo::test
