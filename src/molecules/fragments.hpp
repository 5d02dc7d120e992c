/// Molecules as what is bonded.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "common/atom_table.hpp"

namespace dravo {

/// Rows from 0, ascending.
using Rows = std::vector<std::int32_t>;

/// Atoms that bonds connect, in the order of their first atoms. Two atoms are bonded up to the sum
/// of their covalent radii and 0.4 Angstrom. `labels` are element symbols H to U, `positions` are
/// finite and in Angstrom.
std::vector<Rows> bonded_components(std::span<const Label> labels, std::span<const Vec3> positions);

/// "6 atoms", "1 atom".
std::string atoms_text(std::int32_t count);

/// "6 atoms CH3NO (1-6)": number, formula in Hill's order, numbers of the atoms.
std::string describe_atoms(std::span<const Label> labels, std::span<const std::int32_t> rows);

}  // namespace dravo
