/// Commands that a page of the documentation shows, and what it says that they print.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "support/text_lines.hpp"

namespace dravo::test {

/// A command of the document and what stands below it.
struct Shown {
  std::string command;
  Lines output;
};

/// Commands are indented and begin with this word; a fenced block with nothing but blank lines
/// before it is what the command above it prints.
inline std::vector<Shown> shown_in(const Lines& document, const std::string& word = "dravo ") {
  const std::string indent = "    ", fence = "```";
  std::vector<Shown> shown;
  bool in_block = false, below_command = false;
  for (const std::string& line : document) {
    if (line.starts_with(fence)) {
      below_command = below_command && !in_block;
      in_block = !in_block;
    } else if (in_block) {
      if (below_command) shown.back().output.push_back(line);
    } else if (!line.empty()) {
      below_command = line.starts_with(indent + word);
      if (below_command) shown.push_back({line.substr(indent.size()), {}});
    }
  }
  return shown;
}

/// Whether the lines are those shown, where "..." stands for any lines.
template <typename Same = std::equal_to<std::string>>
bool are_as_shown(const Lines& lines, const Lines& shown, const Same& same = {},
                  std::size_t line = 0, std::size_t at = 0) {
  for (; at < shown.size() && shown[at] != "..."; ++at, ++line)
    if (line == lines.size() || !same(lines[line], shown[at])) return false;
  if (at == shown.size()) return line == lines.size();
  for (; line <= lines.size(); ++line)
    if (are_as_shown(lines, shown, same, line, at + 1)) return true;
  return false;
}

}  // namespace dravo::test
