/// What GFN-FF is worth: interaction energies of the 22 dimers of S22 against the published ones.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "dravo/energy.hpp"
#include "support/molecule_sets.hpp"

namespace dravo::test {
namespace {

/// Mean absolute error, kcal/mol.
double error_of(EnergyMethod method) {
  double sum = 0.0;
  const std::vector<NamedPair> dimers = s22_dimers();
  for (const NamedPair& dimer : dimers) {
    const EnergyModel model(Pair(dimer.n1, dimer.atoms), {.method = method});
    const PoseEnergy found = model.start().energy(dimer.atoms.positions());
    EXPECT_EQ(found.status, EnergyStatus::ok) << dimer.name;
    sum += std::abs(found.interaction - s22_energy(dimer.name));
  }
  return sum / static_cast<double>(dimers.size());
}

TEST(S22, HasPublishedEnergies) {
  EXPECT_EQ(s22_energy("Ammonia_dimer"), -3.17);
  EXPECT_EQ(s22_energy("Phenol_dimer"), -7.09);
}

// `benchmarks/measure_energies` does this for all methods.
TEST(S22, IsMetByTheForceField) { EXPECT_LE(error_of(EnergyMethod::gfnff), 1.05); }

}  // namespace
}  // namespace dravo::test
