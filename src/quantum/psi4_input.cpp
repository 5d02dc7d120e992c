#include <fmt/format.h>

#include "quantum/input_files.hpp"
#include "quantum/quantum_text.hpp"

namespace dravo {
namespace {

std::string call_of_energy(const QuantumJob& job) {
  const bool difference = in_one_file(job) && job.treatment != Treatment::sapt;
  if (!difference) return fmt::format("energy('{}')\n", job.method);
  return fmt::format("energy('{}', bsse_type='{}')\n", job.method,
                     job.treatment == Treatment::counterpoise ? "cp" : "nocp");
}

/// Each molecule with its own charge, "--" between them.
std::string both_molecules(const QuantumJob& job, const Pair& pair) {
  std::string text;
  for (std::size_t m = 0; m < 2; ++m) {
    QuantumSystem one{"", {Presence::absent, Presence::absent}};
    one.molecules.at(m) = Presence::real;
    text += fmt::format("{}{} {}\n", m == 0 ? "" : "--\n", charge_of(job, one),
                        multiplicity_of(job, one));
    append_atom_lines(text, atoms_of(pair, one));
  }
  return text;
}

std::string beside_ghosts(const QuantumJob& job, const QuantumSystem& system, const Pair& pair) {
  std::string text = fmt::format("{} {}\n", charge_of(job, system), multiplicity_of(job, system));
  append_atom_lines(text, atoms_of(pair, system), {"Gh(", ")"});
  return text;
}

}  // namespace

std::string psi4_input(const QuantumJob& job, const QuantumSystem& system,
                       const NumberedPair& pose) {
  std::string text = fmt::format("# pose {}\n", pose.index);
  if (job.memory > 0) text += fmt::format("memory {} gb\n", job.memory);
  text += "molecule pair {\n";
  text += job.ghost == 0 ? both_molecules(job, pose.pair) : beside_ghosts(job, system, pose.pair);
  text += "units angstrom\nno_com\nno_reorient\nsymmetry c1\n}\n";
  if (!job.basis.empty()) text += fmt::format("set basis {}\n", job.basis);
  if (job.multiplicities != std::array{1, 1}) text += "set reference uhf\n";
  for (const std::string& line : job.keywords) text += fmt::format("set {}\n", line);
  text += call_of_energy(job);
  if (job.ghost != 0) text += "print_variables()\n";
  return text;
}

}  // namespace dravo
