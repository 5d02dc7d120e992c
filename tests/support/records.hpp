/// Records as they stand in the log and on the screen.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace dravo::test {

/// Every record with an end of line.
inline std::string records(std::initializer_list<std::string_view> lines) {
  std::string text;
  for (const std::string_view line : lines) text.append(line).append("\n");
  return text;
}

}  // namespace dravo::test
