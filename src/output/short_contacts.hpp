/// Atoms of different molecules that stand too close.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "common/atom_table.hpp"
#include "common/constants.hpp"
#include "common/neighbour_grid.hpp"
#include "dravo/contacts.hpp"

namespace dravo {

static_assert(kShortDistance == widened(1.9F));

/// A number that the roots of squares are compared with. Far from it the square decides, with a
/// margin much wider than the rounding errors of a square or a power, and no root is taken.
class RootLimit {
 public:
  constexpr explicit RootLimit(double limit)
      : limit_(limit),
        surely_(limit * limit - kMargin * (limit * limit)),
        hardly_(limit * limit + kMargin * (limit * limit)) {}

  [[nodiscard]] double limit() const { return limit_; }

  /// False where no square as large or larger holds.
  [[nodiscard]] bool may_hold(double square) const { return square <= hardly_; }

  /// Whether the root of the square is at most the limit.
  [[nodiscard]] bool holds(double square) const {
    if (square < surely_) return true;
    return square <= hardly_ && half_power(square) <= limit_;
  }

 private:
  static constexpr double kMargin = 1e-12;

  double limit_;
  double surely_;
  double hardly_;
};

/// Every intermolecular pair for which is_contact(row 1, row 2, square of the distance) holds,
/// ordered by the atoms of molecule 1, then of molecule 2. None is farther apart than `reach`.
template <class IsContact>
std::vector<ShortContact> find_contacts(const ConstAtomTable& atoms, const MoleculeSplit& split,
                                        double reach, const IsContact& is_contact) {
  const NeighbourGrid molecule2(atoms, split.molecule2(), reach);
  std::vector<ShortContact> contacts;
  const auto [begin, end] = split.molecule1();
  for (std::int32_t i = begin; i < end; ++i) {
    const Vec3 p = atoms.position(i);
    const auto first = static_cast<std::ptrdiff_t>(contacts.size());
    for (const std::int32_t cell : molecule2.cells_around(p))
      for (const auto& [position, row] : molecule2.members(cell)) {
        const Vec3 d = p - position;
        const double square = dot(d, d);
        if (is_contact(i, row, square)) contacts.push_back({i, row, half_power(square)});
      }
    std::sort(contacts.begin() + first, contacts.end(),
              [](const ShortContact& a, const ShortContact& b) { return a.atom2 < b.atom2; });
  }
  return contacts;
}

/// The pairs at `kShortDistance` or less.
std::vector<ShortContact> find_short_contacts(const ConstAtomTable& final_coo_and_m,
                                              const MoleculeSplit& split);

}  // namespace dravo
