#include "quantum/output_text.hpp"

namespace dravo {
namespace {

/// A counterpoise job computes each molecule alone, each with the functions of both, and the pair.
std::optional<double> difference_of(const std::vector<double>& energies) {
  constexpr std::size_t kComputed = 5;
  constexpr std::size_t kGhosted1 = 2, kGhosted2 = 3, kPair = 4;
  if (energies.size() != kComputed) return std::nullopt;
  return energies[kPair] - energies[kGhosted1] - energies[kGhosted2];
}

}  // namespace

/// It goes on, and ends as usual, when the electrons have not converged.
QuantumOutput read_cp2k(const QuantumJob& job, std::string_view text) {
  QuantumOutput output;
  if (has(text, "SCF run NOT converged") || has(text, "[ABORT]"))
    output.state = OutputState::failed;
  else if (has(text, "PROGRAM ENDED AT"))
    output.state = OutputState::finished;
  add_atoms(output.atoms, text, {"ATOMIC COORDINATES IN ANGSTROM", 3, 2, 4});
  const std::vector<double> energies = numbers_behind(text, "\n  Total energy: ");
  if (in_one_file(job))
    output.energy = difference_of(energies);
  else if (!energies.empty())
    output.energy = energies.back();
  return output;
}

}  // namespace dravo
