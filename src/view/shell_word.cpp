#include "view/shell_word.hpp"

#include <algorithm>
#include <array>
#include <limits>

#include "common/shown_text.hpp"

namespace dravo {
namespace {

bool is_plain(char c) {
  constexpr std::string_view kPlain = "%+,-./:=@_";
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         kPlain.find(c) != std::string_view::npos;
}

/// Every byte of it that is not plain as its number.
std::string by_numbers(std::string_view word) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text = "$'";
  for (const char c : word) {
    const auto byte = static_cast<unsigned char>(c);
    if (is_plain(c))
      text += c;
    else
      text.append("\\x").append(1, kDigits[byte >> 4U]).append(1, kDigits[byte & 15U]);
  }
  return text + "'";
}

}  // namespace

std::string shell_word(std::string_view word) {
  if (!word.empty() && std::all_of(word.begin(), word.end(), is_plain)) return std::string(word);
  if (printable(word, std::numeric_limits<std::size_t>::max()).text != word)
    return by_numbers(word);
  std::string text = "'";
  for (const char c : word)
    if (c == '\'')
      text += "'\\''";
    else
      text += c;
  return text + "'";
}

std::string shell_file(std::string_view name) {
  const bool looks_like_option = name.size() > 1 && name.front() == '-';
  return shell_word((looks_like_option ? "./" : "") + std::string(name));
}

}  // namespace dravo
