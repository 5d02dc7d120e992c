#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "output/short_contacts.hpp"

namespace dravo {
namespace {

/// Edge of a cell, Angstrom. Atoms of cells that do not touch are farther apart than any contact.
constexpr double kCellEdge = 2.0;

struct Cell {
  std::int64_t x;
  std::int64_t y;
  std::int64_t z;

  bool operator==(const Cell&) const = default;
};

/// Whatever lies past 2e12 Angstrom shares the outermost cells.
std::int64_t cell_index(double coordinate) {
  constexpr double kFarthest = 1e12;
  return static_cast<std::int64_t>(
      std::clamp(std::floor(coordinate / kCellEdge), -kFarthest, kFarthest));
}

Cell cell_of(const Vec3& p) { return {cell_index(p.x), cell_index(p.y), cell_index(p.z)}; }

/// Atoms at no point in space are near none.
bool is_finite(const Vec3& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

/// The atoms of molecule 2 by their cells, in buckets that several cells may share.
class CellTable {
 public:
  CellTable(const ConstAtomTable& atoms, RowRange rows) {
    for (std::int32_t k = rows.begin; k < rows.end; ++k) {
      const Vec3 p = atoms.position(k);
      if (!is_finite(p)) continue;
      const Cell cell = cell_of(p);
      extend_box(cell);
      members_.push_back({cell, k});
    }
    while (mask_ + 1 < members_.size()) mask_ = 2 * mask_ + 1;
    sort_into_buckets();
  }

  /// Calls visit(row) for the atoms of the cell and of the 26 around it.
  template <class Visit>
  void visit_around(const Cell& centre, Visit&& visit) const {
    if (!near_box(centre)) return;
    for (std::int64_t x = centre.x - 1; x <= centre.x + 1; ++x)
      for (std::int64_t y = centre.y - 1; y <= centre.y + 1; ++y)
        for (std::int64_t z = centre.z - 1; z <= centre.z + 1; ++z) visit_cell({x, y, z}, visit);
  }

 private:
  struct Member {
    Cell cell;
    std::int32_t row;
  };

  template <class Visit>
  void visit_cell(const Cell& cell, Visit&& visit) const {
    const std::size_t bucket = bucket_of(cell);
    for (std::size_t m = starts_[bucket]; m < starts_[bucket + 1]; ++m)
      if (members_[m].cell == cell) visit(members_[m].row);
  }

  [[nodiscard]] std::size_t bucket_of(const Cell& cell) const {
    // Odd factors spread neighbouring cells over the buckets.
    const auto mixed = static_cast<std::uint64_t>(cell.x) * 0x9E3779B97F4A7C15U +
                       static_cast<std::uint64_t>(cell.y) * 0xC2B2AE3D27D4EB4FU +
                       static_cast<std::uint64_t>(cell.z) * 0x165667B19E3779F9U;
    return static_cast<std::size_t>(mixed >> 32U) & mask_;
  }

  /// Stable counting sort.
  void sort_into_buckets() {
    starts_.assign(mask_ + 2, 0);
    for (const Member& member : members_) ++starts_[bucket_of(member.cell) + 1];
    for (std::size_t b = 1; b < starts_.size(); ++b) starts_[b] += starts_[b - 1];
    std::vector<std::size_t> next(starts_.begin(), starts_.end() - 1);
    std::vector<Member> sorted(members_.size());
    for (const Member& member : members_) sorted[next[bucket_of(member.cell)]++] = member;
    members_.swap(sorted);
  }

  void extend_box(const Cell& cell) {
    if (members_.empty()) lowest_ = highest_ = cell;
    lowest_ = {std::min(lowest_.x, cell.x), std::min(lowest_.y, cell.y),
               std::min(lowest_.z, cell.z)};
    highest_ = {std::max(highest_.x, cell.x), std::max(highest_.y, cell.y),
                std::max(highest_.z, cell.z)};
  }

  [[nodiscard]] bool near_box(const Cell& c) const {
    return !members_.empty() && c.x >= lowest_.x - 1 && c.x <= highest_.x + 1 &&
           c.y >= lowest_.y - 1 && c.y <= highest_.y + 1 && c.z >= lowest_.z - 1 &&
           c.z <= highest_.z + 1;
  }

  std::vector<Member> members_;
  std::vector<std::size_t> starts_;  ///< of the buckets, and the end of the last
  std::size_t mask_ = 0;             ///< number of buckets, a power of two, less one
  Cell lowest_{};
  Cell highest_{};
};

}  // namespace

std::vector<ShortContact> find_short_contacts(const ConstAtomTable& final_coo_and_m,
                                              const MoleculeSplit& split) {
  const CellTable molecule2(final_coo_and_m, split.molecule2());
  std::vector<ShortContact> contacts;
  const auto [begin, end] = split.molecule1();
  for (std::int32_t i = begin; i < end; ++i) {
    const Vec3 p = final_coo_and_m.position(i);
    if (!is_finite(p)) continue;
    const auto first = static_cast<std::ptrdiff_t>(contacts.size());
    molecule2.visit_around(cell_of(p), [&](std::int32_t k) {
      const double distance = modulus(p - final_coo_and_m.position(k));
      if (is_short_contact(distance)) contacts.push_back({i, k, distance});
    });
    std::sort(contacts.begin() + first, contacts.end(),
              [](const ShortContact& a, const ShortContact& b) { return a.atom2 < b.atom2; });
  }
  return contacts;
}

}  // namespace dravo
