/// Texts that are known up to some of their numbers. These are the expressions of the C library:
/// the headers of the C++ ones take longer to compile than most tests.
#pragma once

#include <regex.h>

#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace dravo::test {

/// What the groups of an extended regular expression, nine at most, find in a text that it matches
/// as a whole; the whole text comes first. Empty when it does not match.
inline std::vector<std::string> groups_of(const std::string& text, const std::string& expression) {
  regex_t compiled{};
  const std::string whole = "^(" + expression + ")$";
  if (::regcomp(&compiled, whole.c_str(), REG_EXTENDED) != 0)
    throw std::runtime_error("no regular expression: " + expression);
  std::array<regmatch_t, 11> found{};
  const bool matches = ::regexec(&compiled, text.c_str(), found.size(), found.data(), 0) == 0;
  const std::size_t groups = compiled.re_nsub;
  ::regfree(&compiled);
  if (!matches) return {};
  std::vector<std::string> texts;
  for (std::size_t k = 1; k <= groups; ++k) {
    const regmatch_t& group = found.at(k);
    const auto begin = static_cast<std::size_t>(group.rm_so);
    texts.push_back(
        group.rm_so < 0 ? "" : text.substr(begin, static_cast<std::size_t>(group.rm_eo) - begin));
  }
  return texts;
}

inline bool matches(const std::string& text, const std::string& expression) {
  return !groups_of(text, expression).empty();
}

}  // namespace dravo::test
