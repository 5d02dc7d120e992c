/// An input file by its lines, and changes of it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "support/text_lines.hpp"

namespace dravo::test {

/// A formamide dimer, whose molecules are far enough apart. Its 24 lines have the numbers that the
/// messages below name.
inline const Lines kDimer{"12",
                          "C -0.6 -1.07 0",
                          "O 0 0 0",
                          "N -0.04 -2.29 0",
                          "H -0.62 -3.1 0",
                          "H 0.98 -2.39 0",
                          "H -1.7 -1.1 0",
                          "C 3.43 -1.32 0",
                          "O 2.82 -2.39 0",
                          "N 2.86 -0.1 0",
                          "H 3.44 0.71 0",
                          "H 1.84 0.02 0",
                          "H 4.53 -1.29 0",
                          "n1",
                          "6",
                          "position",
                          "6.5",
                          "84",
                          "11",
                          "rotation",
                          "214",
                          "152",
                          "306",
                          "end"};

struct Change {
  std::size_t line;
  std::string contents;  ///< several lines in place of one, where it holds line ends
};

inline std::string with(const std::vector<Change>& changes) {
  Lines lines = kDimer;
  for (const Change& change : changes) lines[change.line - 1] = change.contents;
  return joined(lines);
}

inline std::string with(std::size_t line, const std::string& contents) {
  return with({{line, contents}});
}

inline std::string with_comment(const std::string& comment) { return with(1, "12\n" + comment); }

inline std::string without(std::size_t line) {
  Lines lines = kDimer;
  lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(line - 1));
  return joined(lines);
}

inline std::string first_lines(std::ptrdiff_t count) {
  return joined(Lines(kDimer.begin(), kDimer.begin() + count));
}

}  // namespace dravo::test
