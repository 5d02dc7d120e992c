/// Pairs from texts that are in memory.
#pragma once

#include <string_view>

#include "common/shown_text.hpp"
#include "dravo/molecule.hpp"
#include "molecules/xyz_file.hpp"

namespace dravo {

double angstrom_per(LengthUnit unit);

/// Whether a text is a `QN-input-GEOMETRY.xyz`. Its count and the four lines behind its atoms tell.
bool is_qn_input(std::string_view text);

/// As `read_pair` does with a file of this text.
PairFile pair_of_text(const NamedText& source, const PairRequest& request);

/// The pair of a frame of `request.file`.
PairFile pair_of_frame(XyzFrame frame, const PairRequest& request);

}  // namespace dravo
