#include <fmt/format.h>

#include "quantum/input_files.hpp"
#include "quantum/quantum_text.hpp"

namespace dravo {

std::string qchem_input(const QuantumJob& job, const QuantumSystem& system,
                        const NumberedPair& pose) {
  std::string text = fmt::format("$comment\npose {}, {}\n$end\n\n$molecule\n{} {}\n", pose.index,
                                 system.name, charge_of(job, system), multiplicity_of(job, system));
  append_atom_lines(text, atoms_of(pose.pair, system), {"@", ""});
  text += fmt::format("$end\n\n$rem\nJOBTYPE sp\nMETHOD {}\n", job.method);
  if (!job.basis.empty()) text += fmt::format("BASIS {}\n", job.basis);
  text += "SYM_IGNORE TRUE\n";
  constexpr int kMegabytes = 1000;
  if (job.memory > 0) text += fmt::format("MEM_TOTAL {}\n", kMegabytes * job.memory);
  for (const std::string& line : job.keywords) text.append(line).append("\n");
  return text + "$end\n";
}

}  // namespace dravo
