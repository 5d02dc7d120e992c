/// Molecules as what is bonded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "common/atom_table.hpp"

namespace dravo {

/// Rows from 0, ascending.
using Rows = std::vector<std::int32_t>;

/// Atoms that bonds connect, in the order of their first atoms. Two atoms are bonded up to the sum
/// of their covalent radii and 0.4 Angstrom. `labels` are element symbols H to U, `positions` are
/// finite and in Angstrom.
std::vector<Rows> bonded_components(std::span<const Label> labels, std::span<const Vec3> positions);

/// Rows of two bonded atoms, the lower first, in ascending order; bonded as above.
std::vector<std::pair<std::int32_t, std::int32_t>> bonded_pairs(std::span<const Label> labels,
                                                                std::span<const Vec3> positions);

/// "6 atoms", "1 atom".
std::string atoms_text(std::int32_t count);

/// Of symbols, in Hill's order: "CH3NO".
std::string formula_of(std::span<const Label> labels);

/// "6 atoms CH3NO (1-6)": number, formula in Hill's order, numbers of the atoms, which count on
/// from `atoms_before`.
std::string describe_atoms(std::span<const Label> labels, std::span<const std::int32_t> rows,
                           std::int32_t atoms_before = 0);

/// An enumeration that ends early, with "...", where it is long.
std::string shortened(std::string enumeration);

/// "molecule 2: 6 atoms CH3NO (7-12)".
std::string molecule_text(std::size_t number, std::span<const Label> labels, const Rows& rows);

/// The first of the molecules, each on a line of its own, with an end of line before it.
std::string listed_molecules(std::span<const Label> labels, const std::vector<Rows>& molecules);

}  // namespace dravo
