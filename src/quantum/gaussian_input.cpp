#include <fmt/format.h>

#include "quantum/input_files.hpp"
#include "quantum/quantum_text.hpp"

namespace dravo {
namespace {

/// Of the pair and of both fragments.
std::string charges_with_fragments(const QuantumJob& job) {
  std::string text = fmt::format("{} {}", charge_of(job), multiplicity_of(job));
  for (std::size_t m = 0; m < job.charges.size(); ++m)
    text += fmt::format(" {} {}", job.charges[m], job.multiplicities[m]);
  return text + "\n";
}

void append_fragments(std::string& text, const std::vector<SystemAtom>& atoms) {
  for (const SystemAtom& atom : atoms) {
    text += fmt::format("{}(Fragment={})", atom.symbol, atom.molecule);
    append_coordinates(text, atom.position);
  }
}

}  // namespace

std::string gaussian_input(const QuantumJob& job, const QuantumSystem& system,
                           const NumberedPair& pose) {
  std::string text;
  if (job.cores > 1) text += fmt::format("%NProcShared={}\n", job.cores);
  if (job.memory > 0) text += fmt::format("%Mem={}GB\n", job.memory);
  text += fmt::format("# {}/{} {}NoSymm", job.method, job.basis,
                      in_one_file(job) ? "Counterpoise=2 " : "");
  for (const std::string& words : job.keywords) text.append(" ").append(words);
  text += fmt::format("\n\npose {}, {}\n\n", pose.index, system.name);
  const std::vector<SystemAtom> atoms = atoms_of(pose.pair, system);
  if (in_one_file(job)) {
    text += charges_with_fragments(job);
    append_fragments(text, atoms);
  } else {
    text += fmt::format("{} {}\n", charge_of(job, system), multiplicity_of(job, system));
    append_atom_lines(text, atoms, {"", "-Bq"});
  }
  return text + "\n";
}

}  // namespace dravo
