/// Items in free format, and what is said of those that cannot be read.
#pragma once

#include <cstdint>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "common/free_format_reader.hpp"

namespace dravo::test {

inline FreeFormatReader reader_of(std::string_view text) {
  FreeFormatReader reader("QN.xyz", text);
  reader.next_statement();
  return reader;
}

inline std::int32_t integer_in(std::string_view text) {
  return reader_of(text).integer({"a count"});
}
inline double real_in(std::string_view text) { return reader_of(text).real({"a number"}); }
inline std::string label_in(std::string_view text) {
  return std::string(text_of(reader_of(text).label({"a label"})));
}

/// Message about an item of at most 40 characters that stands alone on the first line.
inline std::string refusal(const std::string& what, const std::string& item) {
  return "QN.xyz:1: expected " + what + ", found \"" + item + "\"\n" + item + "\n" +
         std::string(item.size(), '^');
}

/// The items of a list that blanks separate.
inline std::vector<std::string> items(const std::string& list) {
  std::istringstream stream(list);
  return {std::istream_iterator<std::string>(stream), {}};
}

}  // namespace dravo::test
