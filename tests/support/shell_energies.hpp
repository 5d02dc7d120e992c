/// Energies of two argon atoms by commands of the shell, which one can check by hand.
#pragma once

#include <string>
#include <vector>

#include "dravo/energy.hpp"
#include "dravo/scan.hpp"

namespace dravo::test {

/// Their van der Waals radius is 1.88 Angstrom (Bondi, J. Phys. Chem. 1964, 68, 441), so they clash
/// where they are closer than half of twice that.
inline Pair two_argons() {
  return {1, Molecule(std::vector<std::string>{"Ar", "Ar"}, {{0, 0, 0}, {4, 0, 0}})};
}

/// The energy of a pair at distance r in Hartree, for one atom 0. Of the pair it is 1/r, but from
/// 2.5 to 3 Angstrom nothing is printed, from 2.2 to 2.5 the process is killed, and closer it is
/// 100 Hartree. `first` is what the shell does before.
inline EnergyOptions one_over_r(const std::string& first = "") {
  const std::string awk =
      "awk 'NR > 2 { x[NR] = $2; y[NR] = $3; z[NR] = $4 }\n"
      "END { if (NR < 4) { print \"energy 0\"; exit }\n"
      "  r = sqrt((x[3] - x[4])^2 + (y[3] - y[4])^2 + (z[3] - z[4])^2)\n"
      "  if (r >= 3) printf \"energy %.12f\\n\", 1 / r\n"
      "  else if (r >= 2.5) exit\n"
      "  else if (r >= 2.2) exit 9\n"
      "  else print \"energy 100\" }' {xyz} || kill -9 $$";
  return {.method = EnergyMethod::command, .command = {first + awk, "energy (\\S+)"}};
}

/// Poses at these distances, whatever the angles.
inline Poses at_distances(const std::vector<double>& distances) {
  std::vector<PoseDegrees> poses;
  for (const double r : distances) poses.push_back({r, 90, 0, 0, 0, 0});
  return Poses::list(poses);
}

}  // namespace dravo::test
