#include "molecules/fragments.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>

#include "common/neighbour_grid.hpp"
#include "driver/element_table.hpp"
#include "molecules/covalent_radii.hpp"

namespace dravo {
namespace {

/// One for every atom; each symbol is looked up once.
std::vector<double> covalent_radii(std::span<const Label> labels) {
  std::map<Label, double> known;
  std::vector<double> radii;
  radii.reserve(labels.size());
  for (const Label& label : labels) {
    const auto entry = known.find(label);
    radii.push_back(
        entry != known.end()
            ? entry->second
            : known.emplace(label, covalent_radius(atomic_number_of_symbol(label).value()))
                  .first->second);
  }
  return radii;
}

/// The atoms that belong to no component yet.
class FreeAtoms {
 public:
  FreeAtoms(std::span<const Vec3> positions, const std::vector<double>& radii)
      : positions_(positions),
        radii_(radii),
        grid_(positions, longest_bond_of(radii)),
        atoms_(grid_.members().begin(), grid_.members().end()) {
    for (std::int32_t cell = 0; cell < grid_.cells(); ++cell)
      ends_.push_back(grid_.stretch(cell).end);
  }

  /// Moves the atoms that are bonded to `row` to the end of `component`.
  void take_bonded(std::int32_t row, Rows& component) {
    for (const std::int32_t cell : grid_.cells_around(positions_[static_cast<std::size_t>(row)]))
      take_from_cell(cell, row, component);
  }

 private:
  static double longest_bond_of(const std::vector<double>& radii) {
    const double largest = *std::max_element(radii.begin(), radii.end());
    return longest_bond(largest, largest);
  }

  void take_from_cell(std::int32_t cell, std::int32_t row, Rows& component) {
    const auto at = [&](std::size_t k) { return atoms_.begin() + static_cast<std::ptrdiff_t>(k); };
    std::size_t& end = ends_[static_cast<std::size_t>(cell)];
    const auto taken =
        std::partition(at(grid_.stretch(cell).begin), at(end),
                       [&](const auto& atom) { return atom.row != row && !are_bonded(row, atom); });
    for (auto atom = taken; atom != at(end); ++atom)
      if (atom->row != row) component.push_back(atom->row);
    end = static_cast<std::size_t>(taken - atoms_.begin());
  }

  [[nodiscard]] bool are_bonded(std::int32_t row, const NeighbourGrid::Member& other) const {
    const auto i = static_cast<std::size_t>(row);
    return modulus(positions_[i] - other.position) <=
           longest_bond(radii_[i], radii_[static_cast<std::size_t>(other.row)]);
  }

  std::span<const Vec3> positions_;
  const std::vector<double>& radii_;
  NeighbourGrid grid_;
  std::vector<NeighbourGrid::Member> atoms_;  ///< cell by cell as in the grid, free ones first
  std::vector<std::size_t> ends_;             ///< of the free atoms of each cell
};

}  // namespace

std::vector<Rows> bonded_components(std::span<const Label> labels,
                                    std::span<const Vec3> positions) {
  std::vector<Rows> components;
  if (labels.empty()) return components;
  const std::vector<double> radii = covalent_radii(labels);
  FreeAtoms free(positions, radii);
  std::vector<bool> placed(labels.size(), false);
  for (std::size_t first = 0; first < labels.size(); ++first) {
    if (placed[first]) continue;
    Rows component{static_cast<std::int32_t>(first)};
    for (std::size_t next = 0; next < component.size(); ++next) {
      placed[static_cast<std::size_t>(component[next])] = true;
      free.take_bonded(component[next], component);
    }
    std::sort(component.begin(), component.end());
    components.push_back(std::move(component));
  }
  return components;
}

std::vector<std::pair<std::int32_t, std::int32_t>> bonded_pairs(std::span<const Label> labels,
                                                                std::span<const Vec3> positions) {
  std::vector<std::pair<std::int32_t, std::int32_t>> bonds;
  if (labels.empty()) return bonds;
  const std::vector<double> radii = covalent_radii(labels);
  const double largest = *std::max_element(radii.begin(), radii.end());
  const NeighbourGrid grid(positions, longest_bond(largest, largest));
  for (std::size_t i = 0; i < labels.size(); ++i)
    for (const std::int32_t cell : grid.cells_around(positions[i]))
      for (const auto& [position, row] : grid.members(cell)) {
        const auto j = static_cast<std::size_t>(row);
        if (i < j && modulus(positions[i] - position) <= longest_bond(radii[i], radii[j]))
          bonds.emplace_back(static_cast<std::int32_t>(i), row);
      }
  std::sort(bonds.begin(), bonds.end());
  return bonds;
}

std::string atoms_text(std::int32_t count) {
  return fmt::format("{} {}", count, count == 1 ? "atom" : "atoms");
}

std::string formula_of(std::span<const Label> labels) {
  std::map<std::string_view, std::size_t> counts;  // in alphabetical order
  for (const Label& label : labels) ++counts[symbol_of(label)];
  std::string formula;
  const auto append = [&](std::string_view symbol) {
    const auto entry = counts.extract(symbol);
    if (entry.empty()) return;
    formula += symbol;
    if (entry.mapped() > 1) formula += std::to_string(entry.mapped());
  };
  if (counts.contains("C")) {
    append("C");
    append("H");
  }
  while (!counts.empty()) append(counts.begin()->first);
  return formula;
}

std::string describe_atoms(std::span<const Label> labels, std::span<const std::int32_t> rows,
                           std::int32_t atoms_before) {
  std::vector<Label> described;
  Rows atoms;
  for (const std::int32_t row : rows) {
    described.push_back(labels[static_cast<std::size_t>(row)]);
    atoms.push_back(atoms_before + row + 1);
  }
  return fmt::format("{} {} ({})", atoms_text(static_cast<std::int32_t>(rows.size())),
                     formula_of(described), ranges_of(atoms));
}

std::string shortened(std::string enumeration) {
  constexpr std::size_t kMost = 300;
  if (enumeration.size() > kMost)
    enumeration.replace(enumeration.rfind(", ", kMost), std::string::npos, ", ...");
  return enumeration;
}

std::string molecule_text(std::size_t number, std::span<const Label> labels, const Rows& rows) {
  return fmt::format("molecule {}: {}", number, shortened(describe_atoms(labels, rows)));
}

std::string listed_molecules(std::span<const Label> labels, const std::vector<Rows>& molecules) {
  constexpr std::size_t kMostListed = 10;
  std::string text;
  for (std::size_t k = 0; k < std::min(molecules.size(), kMostListed); ++k)
    text += "\n  " + molecule_text(k + 1, labels, molecules[k]);
  if (molecules.size() > kMostListed) text += "\n  ...";
  return text;
}

}  // namespace dravo
