/// Pairs from texts that are in memory.
#pragma once

#include <string_view>

#include "dravo/molecule.hpp"
#include "molecules/pair_check.hpp"
#include "molecules/xyz_file.hpp"

namespace dravo {

/// Whether a text is a `QN-input-GEOMETRY.xyz`. Its count and the four lines behind its atoms tell.
bool is_qn_input(std::string_view text);

/// As `read_pair` does with `request.file`, which has this text.
PairFile pair_of_text(std::string_view text, const PairRequest& request);

/// The same of atoms that are in memory; messages call them by the name `request.file`. Its unit is
/// not looked at.
PairFile pair_of_atoms(const Molecule& atoms, const PairRequest& request);

/// A pair and what its distances show; nothing when it is not to be checked.
struct CheckedPair {
  Pair pair;
  PairCheck check;
};

/// The pair of a frame of `request.file`.
CheckedPair pair_of_frame(XyzFrame frame, const PairRequest& request);

}  // namespace dravo
