/// Pages of the documentation taken apart.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "support/sample_input.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {

/// Name of a box (the word behind its opening fence) and its lines.
struct Box {
  std::string name;
  Lines lines;
};

inline Lines page(const std::string& name) {
  return lines_of(file_text(std::string(DRAVO_SOURCES) + "/" + name));
}

inline std::vector<Box> boxes_of(const Lines& page) {
  const std::string fence = "```";
  std::vector<Box> boxes;
  bool inside = false;
  for (const std::string& line : page) {
    if (line.starts_with(fence)) {
      inside = !inside;
      if (inside) boxes.push_back({line.substr(fence.size()), {}});
    } else if (inside) {
      boxes.back().lines.push_back(line);
    }
  }
  return boxes;
}

inline std::string stripped(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == std::string::npos) return "";
  return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

/// Cells of a row of a table, without blanks around them; none when the line is no row.
inline Lines cells_of(const std::string& line) {
  if (!line.starts_with("|")) return {};
  Lines cells = parts_of(line.substr(1), '|');
  for (std::string& cell : cells) cell = stripped(cell);
  return cells;
}

}  // namespace dravo::test
