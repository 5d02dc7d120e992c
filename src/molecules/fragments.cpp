#include "molecules/fragments.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <string_view>
#include <unordered_map>

#include "common/constants.hpp"
#include "driver/element_table.hpp"

namespace dravo {
namespace {

// Covalent radii in Angstrom, H to U (Cordero et al., Dalton Trans. 2008, 2832): C sp3; Mn, Fe and
// Co of low spin.
constexpr std::array<double, kHighestAtomicNumber> kCovalentRadii{
    0.31, 0.28,                                            // H, He
    1.28, 0.96, 0.84, 0.76, 0.71, 0.66, 0.57, 0.58,        // Li to Ne
    1.66, 1.41, 1.21, 1.11, 1.07, 1.05, 1.02, 1.06,        // Na to Ar
    2.03, 1.76, 1.70, 1.60, 1.53, 1.39, 1.39, 1.32, 1.26,  // K to Co
    1.24, 1.32, 1.22, 1.22, 1.20, 1.19, 1.20, 1.20, 1.16,  // Ni to Kr
    2.20, 1.95, 1.90, 1.75, 1.64, 1.54, 1.47, 1.46, 1.42,  // Rb to Rh
    1.39, 1.45, 1.44, 1.42, 1.39, 1.39, 1.38, 1.39, 1.40,  // Pd to Xe
    2.44, 2.15,                                            // Cs, Ba
    2.07, 2.04, 2.03, 2.01, 1.99, 1.98, 1.98, 1.96, 1.94,  // La to Tb
    1.92, 1.92, 1.89, 1.90, 1.87, 1.87,                    // Dy to Lu
    1.75, 1.70, 1.62, 1.51, 1.44, 1.41, 1.36, 1.36, 1.32,  // Hf to Hg
    1.45, 1.46, 1.48, 1.40, 1.50, 1.50,                    // Tl to Rn
    2.60, 2.21, 2.15, 2.06, 2.00, 1.96};                   // Fr to U

/// A bond may be longer than the radii by this much, whatever the elements: their spread does not
/// grow with the atoms, and a factor would bond heavy atoms that only touch. The loosest ordinary
/// bonds (N-N of N2O4, 1.78) are in, hydrogen bonds (H...O from 1.4 on) are out.
constexpr double kTolerance = 0.4;

double covalent_radius(const Label& label) {
  const int z = atomic_number_of_symbol(label).value();
  return kCovalentRadii[static_cast<std::size_t>(z - 1)];
}

/// One for every atom; each symbol is looked up once.
std::vector<double> covalent_radii(std::span<const Label> labels) {
  std::map<Label, double> known;
  std::vector<double> radii;
  radii.reserve(labels.size());
  for (const Label& label : labels) {
    const auto entry = known.find(label);
    radii.push_back(entry != known.end()
                        ? entry->second
                        : known.emplace(label, covalent_radius(label)).first->second);
  }
  return radii;
}

using Cell = std::array<std::int64_t, 3>;

struct CellHash {
  std::size_t operator()(const Cell& cell) const {
    std::uint64_t mixed = 0;
    for (const std::int64_t index : cell)
      mixed = (mixed ^ static_cast<std::uint64_t>(index)) * 0x9E3779B97F4A7C15U;
    return static_cast<std::size_t>(mixed ^ (mixed >> 32U));
  }
};

/// The atoms that belong to no component yet. Bonded ones are never farther apart than one cell.
class FreeAtoms {
 public:
  FreeAtoms(std::span<const Vec3> positions, const std::vector<double>& radii)
      : positions_(positions),
        radii_(radii),
        edge_(2.0 * *std::max_element(radii.begin(), radii.end()) + kTolerance) {
    for (std::size_t i = 0; i < positions.size(); ++i)
      cells_[cell_of(positions[i])].push_back(static_cast<std::int32_t>(i));
  }

  /// Moves the atoms that are bonded to `row` to the end of `component`.
  void take_bonded(std::int32_t row, Rows& component) {
    const auto [x, y, z] = cell_of(positions_[static_cast<std::size_t>(row)]);
    for (std::int64_t i = x - 1; i <= x + 1; ++i)
      for (std::int64_t j = y - 1; j <= y + 1; ++j)
        for (std::int64_t k = z - 1; k <= z + 1; ++k) take_from_cell({i, j, k}, row, component);
  }

 private:
  /// Whatever lies past 1e12 cells shares the outermost ones.
  [[nodiscard]] Cell cell_of(const Vec3& p) const {
    constexpr double kFarthest = 1e12;
    const auto index = [&](double coordinate) {
      return static_cast<std::int64_t>(
          std::clamp(std::floor(coordinate / edge_), -kFarthest, kFarthest));
    };
    return {index(p.x), index(p.y), index(p.z)};
  }

  [[nodiscard]] bool bonded(std::int32_t a, std::int32_t b) const {
    const auto i = static_cast<std::size_t>(a);
    const auto k = static_cast<std::size_t>(b);
    return modulus(positions_[i] - positions_[k]) <= radii_[i] + radii_[k] + kTolerance;
  }

  void take_from_cell(const Cell& cell, std::int32_t row, Rows& component) {
    const auto entry = cells_.find(cell);
    if (entry == cells_.end()) return;
    std::erase_if(entry->second, [&](std::int32_t other) {
      if (other != row && !bonded(row, other)) return false;
      if (other != row) component.push_back(other);
      return true;
    });
  }

  std::span<const Vec3> positions_;
  const std::vector<double>& radii_;
  double edge_;  ///< of a cell, Angstrom
  std::unordered_map<Cell, Rows, CellHash> cells_;
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

std::string describe_atoms(std::span<const Label> labels, std::span<const std::int32_t> rows) {
  std::map<std::string_view, std::size_t> counts;  // in alphabetical order
  Rows atoms;
  for (const std::int32_t row : rows) {
    const std::string_view label = text_of(labels[static_cast<std::size_t>(row)]);
    ++counts[label.substr(0, label.find(' '))];
    atoms.push_back(row + 1);
  }
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
  return std::to_string(rows.size()) + (rows.size() == 1 ? " atom " : " atoms ") + formula + " (" +
         ranges_of(atoms) + ")";
}

}  // namespace dravo
