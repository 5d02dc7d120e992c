#include "dravo/molecule.hpp"

#include <fmt/format.h>

#include <cstddef>
#include <string>
#include <utility>

#include "common/atom_table.hpp"
#include "dravo/error.hpp"
#include "driver/element_table.hpp"
#include "molecules/coordinate.hpp"
#include "molecules/element_label.hpp"
#include "molecules/fragments.hpp"

namespace dravo {
namespace {

std::string name_of_atom(std::size_t i) { return "atom " + std::to_string(i + 1); }

std::vector<Label> labels_of(const std::vector<std::string>& symbols) {
  std::vector<Label> labels;
  for (const std::string& symbol : symbols) {
    const auto label = element_of(symbol);
    if (!label)
      throw InvalidInput(fmt::format("{}: {}", name_of_atom(labels.size()), label_fault(symbol)));
    labels.push_back(*label);
  }
  return labels;
}

std::vector<Label> joined(std::vector<Label> one, const std::vector<Label>& two) {
  one.insert(one.end(), two.begin(), two.end());
  return one;
}

std::vector<Vec3> joined(std::vector<Vec3> one, const std::vector<Vec3>& two) {
  one.insert(one.end(), two.begin(), two.end());
  return one;
}

}  // namespace

Molecule::Molecule(const std::vector<std::string>& symbols, std::vector<Vec3> positions)
    : Molecule(labels_of(symbols), std::move(positions)) {}

Molecule::Molecule(std::vector<Label> labels, std::vector<Vec3> positions)
    : labels_(std::move(labels)), positions_(std::move(positions)) {
  if (labels_.size() != positions_.size())
    throw InvalidInput(
        fmt::format("expected a position for each symbol, found {} symbols and {} positions",
                    labels_.size(), positions_.size()));
  if (labels_.empty()) throw InvalidInput("a molecule needs at least one atom");
  if (labels_.size() > static_cast<std::size_t>(kMaxAtoms))
    throw InvalidInput(
        fmt::format("a molecule has at most {}, found {}", atoms_text(kMaxAtoms), labels_.size()));
  for (std::size_t i = 0; i < labels_.size(); ++i) {
    if (!atomic_number_of_symbol(labels_[i]))
      throw InvalidInput(fmt::format("{}: {}", name_of_atom(i), label_fault(text_of(labels_[i]))));
    const Vec3& p = positions_[i];
    if (!is_coordinate(p.x) || !is_coordinate(p.y) || !is_coordinate(p.z))
      throw InvalidInput(
          fmt::format("{}: expected coordinates {}", name_of_atom(i), kCoordinateRange));
  }
}

std::string_view Molecule::symbol(std::int32_t i) const {
  return symbol_of(labels_[static_cast<std::size_t>(i)]);
}

Pair::Pair(const Molecule& molecule1, const Molecule& molecule2)
    : Pair(molecule1.size(), Molecule(joined(molecule1.labels(), molecule2.labels()),
                                      joined(molecule1.positions(), molecule2.positions()))) {}

Pair::Pair(std::int32_t n1, Molecule atoms) : atoms_(std::move(atoms)), n1_(n1) {
  if (n1 < 1) throw InvalidInput(fmt::format("molecule 1 needs at least 1 atom, found {}", n1));
  if (n1 >= size())
    throw InvalidInput(fmt::format("no atoms are left for molecule 2: {} in all, {} of molecule 1",
                                   atoms_text(size()), n1));
}

}  // namespace dravo
