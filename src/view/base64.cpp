#include "view/base64.hpp"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace dravo {

std::string base64(std::span<const std::byte> bytes) {
  constexpr std::string_view kLetters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  constexpr std::size_t kAtOnce = 3;  // bytes, which make four letters
  std::string text;
  text.reserve((bytes.size() + kAtOnce - 1) / kAtOnce * 4);
  for (std::size_t begin = 0; begin < bytes.size(); begin += kAtOnce) {
    const std::size_t count = std::min(kAtOnce, bytes.size() - begin);
    std::uint32_t bits = 0;
    for (std::size_t k = 0; k < kAtOnce; ++k)
      bits = bits << 8U | (k < count ? std::to_integer<std::uint32_t>(bytes[begin + k]) : 0U);
    for (std::size_t k = 0; k < 4; ++k)
      text += k <= count ? kLetters[bits >> (18U - 6U * k) & 63U] : '=';
  }
  return text;
}

}  // namespace dravo
