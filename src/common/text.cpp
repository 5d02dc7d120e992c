#include "common/text.hpp"

#include <algorithm>
#include <cstddef>

namespace dravo {

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(" \t\r"), text.size());
  const std::size_t end = text.find_last_not_of(" \t\r") + 1;
  return text.substr(begin, std::max(end, begin) - begin);
}

std::vector<std::string_view> parts_between(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const std::size_t end = text.find(separator);
    parts.push_back(trimmed(text.substr(0, end)));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

std::string_view part_at(std::string_view text, char separator, std::size_t place) {
  for (; place > 0; --place) {
    const std::size_t end = text.find(separator);
    if (end == std::string_view::npos) return {};
    text.remove_prefix(end + 1);
  }
  return text.substr(0, text.find(separator));
}

}  // namespace dravo
