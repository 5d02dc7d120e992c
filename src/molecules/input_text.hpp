/// The input file of `qn-dravo`, written instead of read.
#pragma once

#include <string>
#include <string_view>

#include "dravo/molecule.hpp"
#include "dravo/pose.hpp"

namespace dravo {

/// The text of the input file, in the layout that `read_input` reads. r in Angstrom, angles in
/// degrees. Every number is the shortest decimal that reads back as the same double, without
/// exponent; coordinates have at least eight decimals and stand with their points under each other.
std::string input_text(const Pair& pair, const PoseDegrees& degrees);

/// Reads the text of the file `name` as `qn-dravo` does. Throws IoFailure when it refuses the text,
/// with its words, or when it would get another pair or other values, be it by the last bit.
void require_same_when_read(const std::string& name, std::string_view text, const Pair& pair,
                            const PoseDegrees& degrees);

}  // namespace dravo
