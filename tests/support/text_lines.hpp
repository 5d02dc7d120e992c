/// Text as lines, and lines as text.
#pragma once

#include <cstddef>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace dravo::test {

using Lines = std::vector<std::string>;

/// What stands between the separators; nothing behind a last one.
inline Lines parts_of(const std::string& text, char separator) {
  Lines parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  return parts;
}

/// Without their ends.
inline Lines lines_of(const std::string& text) { return parts_of(text, '\n'); }

/// Every line with an end.
inline std::string joined(const Lines& lines, const std::string& line_end = "\n") {
  std::string text;
  for (const std::string& line : lines) text += line + line_end;
  return text;
}

inline std::string repeated(std::string_view text, std::size_t count) {
  std::string result;
  result.reserve(text.size() * count);
  for (std::size_t k = 0; k < count; ++k) result += text;
  return result;
}

}  // namespace dravo::test
