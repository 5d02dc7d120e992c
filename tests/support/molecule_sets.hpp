/// The published molecules of tests/data.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dravo/molecule.hpp"

namespace dravo::test {

struct NamedMolecule {
  std::string name;
  Molecule molecule;
};

struct NamedPair {
  std::string name;
  std::int32_t n1;  ///< atoms of molecule 1, the first ones
  Molecule atoms;   ///< of both molecules

  [[nodiscard]] Molecule molecule1() const;
  [[nodiscard]] Molecule molecule2() const;
};

/// The 148 molecules of two atoms or more.
std::vector<NamedMolecule> g2_molecules();

/// The 14 atoms.
std::vector<NamedMolecule> g2_atoms();

/// A molecule or an atom by its name there. Throws std::out_of_range.
Molecule g2(std::string_view name);

std::vector<NamedPair> s22_dimers();

/// Throws std::out_of_range.
NamedPair s22(std::string_view name);

/// The published interaction energy of a dimer, kcal/mol. Throws std::out_of_range.
double s22_energy(std::string_view name);

}  // namespace dravo::test
