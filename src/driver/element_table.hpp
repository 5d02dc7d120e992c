/// Elements H to U: symbols, atomic numbers and masses.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/atom_table.hpp"

namespace dravo {

struct Element {
  std::string_view symbol;  ///< one or two characters
  float mass;               ///< unified atomic mass units, in single precision
};

/// In order of atomic number: entry Z - 1 is element Z.
std::span<const Element> element_table();

/// Z of an element symbol in its usual spelling, blank-padded; empty for any other label.
std::optional<int> atomic_number_of_symbol(const Label& label);

/// Resolves the labels of atoms 1..N: first as symbols (exact case), then as atomic numbers written
/// from the first column ("6"), which are replaced by the symbol. Fills mass and atomic number of
/// the rows; the mass is the widened single-precision value.
///
/// An unknown label leaves its row as it was, mass 0 and atomic number 0. Returns the rows with
/// such labels, ascending.
std::vector<std::int32_t> resolve_elements(std::int32_t N, std::span<Label> isymbol,
                                           AtomTable newcoo_and_m);

/// "3-5, 9" for atoms 3, 4, 5 and 9; ascending.
std::string ranges_of(std::span<const std::int32_t> atoms);

/// One line that names the unknown labels with their atom numbers, for example
/// `"D" (atoms 3-5, 9), "c" (atom 12)`. Empty for no rows.
std::string describe_unknown_labels(std::span<const std::int32_t> rows,
                                    std::span<const Label> isymbol);

}  // namespace dravo
