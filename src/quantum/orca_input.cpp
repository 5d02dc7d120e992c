#include <fmt/format.h>

#include "quantum/input_files.hpp"
#include "quantum/quantum_text.hpp"

namespace dravo {

std::string orca_input(const QuantumJob& job, const QuantumSystem& system,
                       const NumberedPair& pose) {
  std::string text = fmt::format("# pose {}, {}\n! {}", pose.index, system.name, job.method);
  if (!job.basis.empty()) text.append(" ").append(job.basis);
  for (const std::string& words : job.keywords) text.append(" ").append(words);
  text += "\n%sym UseSymmetry false end\n";  // with symmetry it would move the atoms
  if (job.cores > 1) text += fmt::format("%pal nprocs {} end\n", job.cores);
  constexpr int kMegabytes = 1000;  // of each core
  if (job.memory > 0) text += fmt::format("%maxcore {}\n", kMegabytes * job.memory / job.cores);
  text += fmt::format("*xyz {} {}\n", charge_of(job, system), multiplicity_of(job, system));
  append_atom_lines(text, atoms_of(pose.pair, system), {"", ":"});
  return text + "*\n";
}

}  // namespace dravo
