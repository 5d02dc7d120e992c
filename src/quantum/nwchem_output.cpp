#include <cmath>

#include "quantum/nwchem_theory.hpp"
#include "quantum/output_text.hpp"

namespace dravo {
namespace {

/// A counterpoise job computes the pair and each molecule, without ghosts and then with them.
constexpr std::size_t kComputed = 5;
constexpr std::size_t kPair = 0, kGhosted1 = 2, kGhosted2 = 4;

/// Its own sum has to be ours.
std::optional<double> difference_in(std::string_view text, const std::vector<double>& energies) {
  constexpr double kSame = 1e-9;
  if (energies.size() != kComputed) return std::nullopt;
  const double ghosts = energies[kGhosted1] + energies[kGhosted2];
  const double without = energies[kGhosted1 - 1] + energies[kGhosted2 - 1];
  const auto corrected = number_in_front(behind(text, "Corrected energy ="));
  if (!corrected || !(std::abs(energies[kPair] + without - ghosts - *corrected) < kSame))
    return std::nullopt;
  return energies[kPair] - ghosts;
}

}  // namespace

QuantumOutput read_nwchem(const QuantumJob& job, std::string_view text) {
  QuantumOutput output;
  if (has(text, "For more information see the NWChem manual"))
    output.state = OutputState::failed;
  else if (has(text, " Total times  cpu:"))
    output.state = OutputState::finished;
  add_atoms(output.atoms, text, {"Output coordinates in angstroms", 4, 1, 3});
  const std::vector<double> energies = numbers_behind(text, nwchem_theory(job.method).energy);
  if (in_one_file(job))
    output.energy = difference_in(text, energies);
  else if (!energies.empty())
    output.energy = energies.back();
  return output;
}

}  // namespace dravo
