/// The colours of a drawing.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "dravo/drawing.hpp"
#include "dravo/scene.hpp"

namespace dravo {

/// As 0xRRGGBB. Those of the axes can be told apart by people who do not see all colours (M. Okabe,
/// K. Ito, Color Universal Design, 2008).
struct Palette {
  std::uint32_t background;
  std::uint32_t outline;  ///< of balls and sticks

  [[nodiscard]] std::uint32_t of(Ink ink) const { return inks[static_cast<std::size_t>(ink)]; }

  std::array<std::uint32_t, 9> inks;  ///< in the order of `Ink`
};

const Palette& palette_of(Theme theme);

/// The part from 0 to 1 of the way to another colour.
std::uint32_t mixed(std::uint32_t colour, std::uint32_t other, double part);

/// "#3050f8".
std::string hex_of(std::uint32_t colour);

}  // namespace dravo
