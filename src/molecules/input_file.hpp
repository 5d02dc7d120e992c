/// Files that a user names, standard input among them.
#pragma once

#include <string>

#include "common/free_format_reader.hpp"

namespace dravo {

/// "-", as for other programs. A file of that name is "./-".
inline bool is_standard_input(const std::string& name) { return name == "-"; }

/// As messages have it.
inline std::string shown_name(const std::string& name) {
  return is_standard_input(name) ? "standard input" : name;
}

/// The whole of it as bytes; standard input can be read once. Throws IoFailure.
inline std::string read_input(const std::string& name) {
  return is_standard_input(name) ? read_standard_input() : read_file(name);
}

}  // namespace dravo
