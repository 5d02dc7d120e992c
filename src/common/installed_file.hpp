/// Files that are installed beside the programs.
#pragma once

#include <string>

namespace dravo {

/// The path of a file of this name: the one that a variable of the environment tells, or beside
/// this program, or where it is installed. `what` is the kind of thing, for the message: "program".
/// Throws IoFailure, which names all places, when it is at none of them.
std::string installed_file(const std::string& what, const std::string& name, const char* variable);

}  // namespace dravo
