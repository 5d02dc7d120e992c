/// Element labels, read without guessing.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "dravo/atoms.hpp"

namespace dravo {

/// The symbol, in its usual spelling, of a label that can only be that element: a symbol H to U in
/// any case, or an atomic number 1 to 92. Empty for any other text, also for one like CA, which
/// files of proteins use for an alpha carbon.
std::optional<Label> element_of(std::string_view text);

/// What is wrong with a text that `element_of` does not take, and what to write instead: one line.
std::string label_fault(std::string_view text);

}  // namespace dravo
