#include "scene/colours.hpp"

#include <fmt/format.h>

#include <cmath>

namespace dravo {
namespace {

constexpr Palette kLight{
    0xFFFFFF,
    0x3A3A3A,
    {0x1A1A1A, 0x8C8C8C, 0x0072B2, 0x009E73, 0xD55E00, 0x8A6100, 0x9B3C7A, 0xC8102E, 0x007C91}};
constexpr Palette kDark{
    0x14161A,
    0x000000,
    {0xECECEC, 0x8C9099, 0x56B4E9, 0x2CCB9B, 0xFF8A47, 0xE6B93C, 0xE58BC3, 0xFF6B7D, 0x4FD3E0}};

}  // namespace

const Palette& palette_of(Theme theme) { return theme == Theme::dark ? kDark : kLight; }

std::uint32_t mixed(std::uint32_t colour, std::uint32_t other, double part) {
  std::uint32_t mixture = 0;
  for (const unsigned shift : {16U, 8U, 0U}) {
    const double from = (colour >> shift) & 0xFFU, to = (other >> shift) & 0xFFU;
    mixture |= static_cast<std::uint32_t>(std::floor(from + part * (to - from) + 0.5)) << shift;
  }
  return mixture;
}

std::string hex_of(std::uint32_t colour) { return fmt::format("#{:06x}", colour); }

}  // namespace dravo
