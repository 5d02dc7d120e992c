#include "molecules/bond_survey.hpp"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <vector>

#include "common/neighbour_grid.hpp"
#include "common/vector.hpp"
#include "driver/element_table.hpp"
#include "molecules/covalent_radii.hpp"

namespace dravo {
namespace {

/// Atomic numbers of groups 2, 12 and 18. Pairs of such atoms are held by dispersion alone.
constexpr std::array<int, 15> kClosedShells{2,  4,  10, 12, 18, 20, 30, 36,
                                            38, 48, 54, 56, 80, 86, 88};

bool has_closed_shell(int atomic_number) {
  return std::binary_search(kClosedShells.begin(), kClosedShells.end(), atomic_number);
}

/// Stretches of atomic numbers: all others are metals. B, Si, Ge, As, Sb and Te bind as nonmetals.
struct Stretch {
  int first, last;
};
constexpr std::array<Stretch, 6> kNonmetals{
    {{1, 2}, {5, 10}, {14, 18}, {32, 36}, {51, 54}, {85, 86}}};

bool is_metal(const Label& label) {
  const int atomic_number = atomic_number_of_symbol(label).value();
  return std::none_of(kNonmetals.begin(), kNonmetals.end(), [&](const Stretch& nonmetals) {
    return nonmetals.first <= atomic_number && atomic_number <= nonmetals.last;
  });
}

/// Hands on all pairs of atoms up to the reach of the grid, and others, until it is told to stop.
template <class Visit>
void visit_near_pairs(const NeighbourGrid& grid, const Visit& visit) {
  for (std::int32_t cell = 0; cell < grid.cells(); ++cell)
    for (const std::int32_t near : grid.cells_around(grid.members(cell)[0].position))
      for (const auto& first : grid.members(cell))
        for (const auto& second : grid.members(near))
          if (first.row < second.row && !visit(first.row, second.row)) return;
}

/// Whether an atom shares its cell with more others than molecules have, on average.
bool is_crowded(const NeighbourGrid& grid) {
  constexpr std::size_t kMany = 60;
  std::size_t pairs = 0;
  for (std::int32_t cell = 0; cell < grid.cells(); ++cell)
    pairs += grid.members(cell).size() * grid.members(cell).size();
  return pairs > kMany * grid.members().size();
}

class Surveyor {
 public:
  explicit Surveyor(const SurveyedAtoms& atoms);

  BondSurvey run();

 private:
  [[nodiscard]] std::int32_t size() const { return static_cast<std::int32_t>(radii_.size()); }
  bool is_piled_up();
  void look_at(std::int32_t i, std::int32_t j);
  std::int32_t root_of(std::int32_t atom);
  void count_pieces();

  SurveyedAtoms atoms_;
  std::vector<double> radii_;
  std::vector<std::int32_t> parents_;  ///< within molecules: towards one atom of each piece
  std::vector<char> bonded_;
  BondSurvey found_;
};

Surveyor::Surveyor(const SurveyedAtoms& atoms) : atoms_(atoms) {
  const std::size_t N = atoms.labels.size();
  radii_.reserve(N);
  parents_.reserve(N);
  bonded_.assign(N, 0);
  const auto n2 = static_cast<std::int32_t>(N) - atoms.n1;
  for (const Label& label : atoms.labels) {
    const int atomic_number = atomic_number_of_symbol(label).value();
    const std::int32_t i = size();
    const std::int32_t companions = (i < atoms.n1 ? atoms.n1 : n2) - 1;
    if (companions > 0 && !has_closed_shell(atomic_number)) ++found_.expecting_atoms;
    radii_.push_back(covalent_radius(atomic_number));
    parents_.push_back(i);
  }
}

/// As in a file whose coordinates are all zero: then the pairs of neighbours would be too many.
bool Surveyor::is_piled_up() {
  AtomPairs too_close;
  const auto enough = static_cast<std::size_t>(size());
  visit_near_pairs(NeighbourGrid(atoms_.positions, kClosestAtoms),
                   [&](std::int32_t i, std::int32_t j) {
                     const double distance = modulus(atoms_.positions[static_cast<std::size_t>(i)] -
                                                     atoms_.positions[static_cast<std::size_t>(j)]);
                     if (distance < kClosestAtoms) too_close.add({i, j, distance});
                     return too_close.count() <= enough;
                   });
  if (too_close.count() <= enough) return false;
  found_.too_close = too_close;
  return true;
}

void Surveyor::look_at(std::int32_t i, std::int32_t j) {
  const auto a = static_cast<std::size_t>(i), b = static_cast<std::size_t>(j);
  const Vec3 difference = atoms_.positions[a] - atoms_.positions[b];
  const double longest = longest_bond(radii_[a], radii_[b]);
  // Leaves out those that are certainly farther, before a root is taken.
  if (dot(difference, difference) > 1.000001 * longest * longest) return;
  const double distance = modulus(difference);
  if (distance > longest) return;
  const AtomDistance pair{i, j, distance};
  if (distance < kClosestAtoms) found_.too_close.add(pair);
  if (distance < kShortestBond * (radii_[a] + radii_[b])) found_.too_short.add(pair);
  bonded_[a] = bonded_[b] = 1;
  if ((i < atoms_.n1) == (j < atoms_.n1)) {
    parents_[static_cast<std::size_t>(root_of(i))] = root_of(j);
  } else {
    found_.bonds_across.add(pair);
    found_.only_metals_across =
        found_.only_metals_across && (is_metal(atoms_.labels[a]) || is_metal(atoms_.labels[b]));
  }
}

/// Shortens the way by half.
std::int32_t Surveyor::root_of(std::int32_t atom) {
  const auto parent = [&](std::int32_t row) -> std::int32_t& {
    return parents_[static_cast<std::size_t>(row)];
  };
  while (parent(atom) != atom) atom = parent(atom) = parent(parent(atom));
  return atom;
}

void Surveyor::count_pieces() {
  found_.bonded_atoms = static_cast<std::int32_t>(std::count(bonded_.begin(), bonded_.end(), 1));
  for (std::int32_t i = 0; i < size(); ++i)
    if (parents_[static_cast<std::size_t>(i)] == i) ++found_.pieces[i < atoms_.n1 ? 0 : 1];
}

BondSurvey Surveyor::run() {
  constexpr std::int32_t kFewAtoms = 200;  // for which cells are not worth their while
  if (size() <= kFewAtoms) {
    for (std::int32_t j = 1; j < size(); ++j)
      for (std::int32_t i = 0; i < j; ++i) look_at(i, j);
  } else {
    const double largest = *std::max_element(radii_.begin(), radii_.end());
    const NeighbourGrid grid(atoms_.positions, longest_bond(largest, largest));
    if (is_crowded(grid) && is_piled_up()) return found_;
    visit_near_pairs(grid, [&](std::int32_t i, std::int32_t j) {
      look_at(i, j);
      return true;
    });
  }
  count_pieces();
  return found_;
}

}  // namespace

void AtomPairs::add(const AtomDistance& pair) {
  const auto rank = [](const AtomDistance& p) {
    return std::tuple(std::round(1e4 * p.distance), p.atom1, p.atom2);
  };
  const auto is_before = [&](const AtomDistance& a, const AtomDistance& b) {
    return rank(a) < rank(b);
  };
  const std::size_t kept = closest().size();
  ++count_;
  if (kept == closest_.size() && !is_before(pair, closest_.back())) return;
  std::size_t place = std::min(kept, closest_.size() - 1);
  for (; place > 0 && is_before(pair, closest_[place - 1]); --place)
    closest_[place] = closest_[place - 1];
  closest_[place] = pair;
}

std::span<const AtomDistance> AtomPairs::closest() const {
  return std::span(closest_).first(std::min(count_, closest_.size()));
}

BondSurvey survey_bonds(const SurveyedAtoms& atoms) { return Surveyor(atoms).run(); }

}  // namespace dravo
