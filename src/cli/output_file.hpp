/// Files that a command writes under a name that the user gives.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "dravo/molecule.hpp"

namespace dravo {

/// The folder of a file that is to be written must be there. Throws IoFailure.
void require_folder_of(const std::string& name);

/// The folder must be there, and an earlier file goes only when the user says so; a folder or a
/// device never goes. Throws IoFailure.
void require_replaceable(const std::string& name, bool overwrite);

/// Throws IoFailure when the file that is to be written is one of those that are read.
void refuse_inputs_as_output(const std::string& name, const std::vector<std::string>& inputs);

/// One line for each atom: symbol, x, y, z in Angstrom with eight decimals (A2,3(1X,F15.8)), and
/// the number of its molecule where it is known that the first `n1` atoms are molecule 1.
std::string atom_lines(const std::vector<Label>& labels, const std::vector<Vec3>& positions,
                       std::optional<std::int32_t> n1);

/// "wrote pair.xyz: molecule 1 has 3 atoms, molecule 2 has 12"
std::string written_line(const std::string& name, const Pair& pair);

}  // namespace dravo
