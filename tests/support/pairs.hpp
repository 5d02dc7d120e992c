/// Pairs of molecules for tests; they are made from their parts here and nowhere else.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "dravo/molecule.hpp"
#include "support/atoms.hpp"
#include "support/sample_input.hpp"

namespace dravo::test {

/// Of a symbol of one or two characters.
inline Label label_of(std::string_view symbol) {
  return {symbol[0], symbol.size() > 1 ? symbol[1] : ' '};
}

inline Pair pair_of(std::size_t n1, std::vector<Label> labels, std::vector<Vec3> positions) {
  return {static_cast<std::int32_t>(n1), Molecule(std::move(labels), std::move(positions))};
}

/// Its molecules; labels must be symbols.
inline Pair pair_of(const SampleInput& sample) {
  std::vector<Label> labels;
  std::vector<Vec3> positions;
  for (const SampleInput::Atom& atom : sample.atoms) {
    labels.push_back(label_of(atom.label));
    positions.push_back(atom.position);
  }
  return pair_of(sample.n1, std::move(labels), std::move(positions));
}

inline Pair pair_of(const std::vector<Atom>& molecule1, const std::vector<Atom>& molecule2) {
  std::vector<Label> labels;
  std::vector<Vec3> positions;
  for (const std::vector<Atom>* molecule : {&molecule1, &molecule2})
    for (const Atom& atom : *molecule) {
      labels.push_back(label_of(atom.symbol));
      positions.push_back(atom.position);
    }
  return pair_of(molecule1.size(), std::move(labels), std::move(positions));
}

}  // namespace dravo::test
