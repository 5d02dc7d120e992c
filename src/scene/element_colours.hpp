#pragma once

#include <cstdint>

namespace dravo {

/// Colour of an element 1 to 92 (H to U) as 0xRRGGBB: those of Jmol, which most viewers share
/// (jmol.sourceforge.net/jscolors).
std::uint32_t element_colour(int atomic_number);

}  // namespace dravo
