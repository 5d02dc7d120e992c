/// Lines that a page shows of a file or a screen.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <sstream>
#include <string>

#include "support/text_lines.hpp"

namespace dravo::test {

inline bool is_real(const std::string& word) {
  return word.find('.') != std::string::npos &&
         word.find_first_not_of("0123456789.+-E") == std::string::npos;
}

/// Reals may differ in their last digits, as with another LAPACK.
inline bool same_line(const std::string& logged, const std::string& shown) {
  std::istringstream left(logged), right(shown);
  std::string l, r;
  while (left >> l) {
    if (!(right >> r)) return false;
    if (l == r) continue;
    if (!is_real(l) || !is_real(r)) return false;
    if (std::abs(std::stod(l) - std::stod(r)) > 1e-6 * std::abs(std::stod(r))) return false;
  }
  return !(right >> r);
}

/// Where these lines stand in the log, from a line on; its number of lines when nowhere.
inline std::size_t place_of(const Lines& lines, const Lines& log, std::size_t from) {
  for (; from + lines.size() <= log.size(); ++from) {
    std::size_t k = 0;
    while (k < lines.size() && same_line(log[from + k], lines[k])) ++k;
    if (k == lines.size()) return from;
  }
  return log.size();
}

/// Finds the lines of a box, where "..." stands for lines left out, from a line on and in their
/// order; the line behind the last one.
inline std::size_t end_of_shown(const Lines& box, const Lines& printed, std::size_t at) {
  Lines together;
  const auto find = [&] {
    if (together.empty()) return;
    const std::size_t found = place_of(together, printed, at);
    if (found == printed.size())
      ADD_FAILURE() << "not there, or not in this order:\n" << joined(together);
    else
      at = found + together.size();
    together.clear();
  };
  for (const std::string& line : box) {
    if (line == "...")
      find();
    else
      together.push_back(line);
  }
  find();
  return at;
}

}  // namespace dravo::test
