#include "common/markup.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace dravo {

std::string escaped_for_markup(std::string_view text) {
  constexpr std::array<std::pair<char, std::string_view>, 5> kEscapes{
      {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}}};
  std::string markup;
  for (const char c : text) {
    const auto* const escape =
        std::find_if(kEscapes.begin(), kEscapes.end(), [c](const auto& e) { return e.first == c; });
    if (escape == kEscapes.end())
      markup += c;
    else
      markup += escape->second;
  }
  return markup;
}

}  // namespace dravo
