/// Files that a command writes under a name that the user gives.
#pragma once

#include <string>

#include "dravo/molecule.hpp"

namespace dravo {

/// The folder of a file that is to be written must be there. Throws IoFailure.
void require_folder_of(const std::string& name);

/// The folder must be there, and an earlier file goes only when the user says so; a folder or a
/// device never goes. Throws IoFailure.
void require_replaceable(const std::string& name, bool overwrite);

/// "wrote pair.xyz: molecule 1 has 3 atoms, molecule 2 has 12"
std::string written_line(const std::string& name, const Pair& pair);

}  // namespace dravo
