/// Pairs whose energies other programs have told, and a program that computes energies of its own.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "cli/command.hpp"
#include "dravo/energy.hpp"
#include "dravo/molecule.hpp"

namespace dravo::test {

inline const std::string kFormamide = DRAVO_EXAMPLES "/formamide-dimer/formamide-dimer.xyz";

/// Whether this build has libxtb. Whichever build of dravo is tested then, it takes the worker of
/// this one.
inline bool has_libxtb() {
#ifdef DRAVO_BUILT_XTB_WORKER
  ::setenv("DRAVO_XTB_WORKER", DRAVO_BUILT_XTB_WORKER, 0);
  return true;
#else
  return false;
#endif
}

/// The formamide dimer with molecule 2 moved along x, and the oxygen of molecule 1 along y.
inline Pair formamide(double apart = 0.0, double stretched = 0.0) {
  const Pair dimer = read_pair({.file = kFormamide, .split = 6}).pair;
  std::vector<Vec3> atoms = dimer.positions();
  for (std::size_t k = 6; k < atoms.size(); ++k) atoms[k].x += apart;
  atoms[1].y += stretched;
  return {6, Molecule(dimer.labels(), atoms)};
}

/// With eight decimals.
inline std::string frame_of(const Pair& pair, const std::string& comment = "") {
  const Molecule atoms(pair.labels(), pair.positions());
  std::string text = std::to_string(pair.size()) + "\n" + comment + "\n";
  for (std::int32_t i = 0; i < atoms.size(); ++i) {
    const Vec3& p = atoms.positions()[static_cast<std::size_t>(i)];
    std::array<char, 100> line{};
    std::snprintf(line.data(), line.size(), "%s %.8f %.8f %.8f\n",
                  std::string(atoms.symbol(i)).c_str(), p.x, p.y, p.z);
    text += line.data();
  }
  return text;
}

/// The sum of 1/d over all pairs of atoms, by a program of a few lines, which notes each of its
/// runs. What is left of it when the molecules alone are taken away is the sum over pairs of
/// different molecules.
class ReciprocalDistances {
 public:
  explicit ReciprocalDistances(const TemporaryFolder& folder)
      : runs_((folder.path() / "runs").string()) {}

  /// `unit` is that of the number that it prints.
  [[nodiscard]] Words options(const std::string& unit = "kcal/mol") const {
    return {"--energy",
            "command",
            "--run",
            "echo {charge} >> " + runs_ +
                "; awk 'NR > 2 {n++; x[n] = $2; y[n] = $3; z[n] = $4; for (k = 1; k < n; k++) e += "
                "1 / sqrt((x[n] - x[k])^2 + (y[n] - y[k])^2 + (z[n] - z[k])^2)} END {printf "
                "\"energy: %.12f\\n\", e}' {xyz} # {charge}",
            "--read",
            "energy: (.*)",
            "--read-unit",
            unit};
  }

  /// How often it ran, since it was asked the last time.
  [[nodiscard]] std::size_t runs() const {
    std::ifstream in(runs_);
    std::size_t lines = 0;
    for (std::string line; std::getline(in, line);) ++lines;
    std::filesystem::remove(runs_);
    return lines;
  }

  static double interaction(const Pair& pair) {
    const auto n1 = static_cast<std::size_t>(pair.n1());
    const std::vector<Vec3>& atoms = pair.positions();
    double sum = 0.0;
    for (std::size_t i = 0; i < n1; ++i)
      for (std::size_t j = n1; j < atoms.size(); ++j)
        sum += 1.0 / std::hypot(atoms[i].x - atoms[j].x, atoms[i].y - atoms[j].y,
                                atoms[i].z - atoms[j].z);
    return sum;
  }

 private:
  std::string runs_;
};

}  // namespace dravo::test
