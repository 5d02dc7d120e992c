#include <fmt/format.h>

#include "quantum/input_files.hpp"
#include "quantum/quantum_text.hpp"

namespace dravo {

std::string xtb_input(const QuantumJob& /*job*/, const QuantumSystem& system,
                      const NumberedPair& pose) {
  const std::vector<SystemAtom> atoms = atoms_of(pose.pair, system);
  std::string text = fmt::format("{}\npose {}, {}\n", atoms.size(), pose.index, system.name);
  append_atom_lines(text, atoms);
  return text;
}

}  // namespace dravo
