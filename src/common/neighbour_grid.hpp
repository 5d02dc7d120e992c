/// Which points are near which.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "common/atom_table.hpp"
#include "common/vector.hpp"

namespace dravo {

/// Points sorted into cubic cells, a little longer than the distance at which points are near each
/// other. Only cells with points are kept, and known by numbers from 0 on. Points at no place in
/// space (infinite or not a number) are left out; all others may be as far out as they like.
class NeighbourGrid {
 public:
  /// A point and its row in what the grid was made from.
  struct Member {
    Vec3 position;
    std::int32_t row;
  };

  /// Where the members of a cell are: [begin, end) of `members()`.
  struct Stretch {
    std::size_t begin;
    std::size_t end;
  };

  /// Numbers of up to 27 cells.
  class CellNumbers {
   public:
    void add(std::int32_t cell) { numbers_[count_++] = cell; }
    [[nodiscard]] const std::int32_t* begin() const { return numbers_.data(); }
    [[nodiscard]] const std::int32_t* end() const { return begin() + count_; }

   private:
    std::array<std::int32_t, 27> numbers_;  // as far as they count
    std::size_t count_ = 0;
  };

  /// `reach`, above 0, in the unit of the coordinates.
  NeighbourGrid(std::span<const Vec3> points, double reach);
  NeighbourGrid(const ConstAtomTable& atoms, RowRange rows, double reach);

  /// Cell by cell, and by ascending rows within a cell.
  [[nodiscard]] std::span<const Member> members() const { return members_; }

  [[nodiscard]] Stretch stretch(std::int32_t cell) const {
    const auto c = static_cast<std::size_t>(cell);
    return {cells_[c].begin, cells_[c + 1].begin};
  }
  [[nodiscard]] std::span<const Member> members(std::int32_t cell) const {
    const auto [begin, end] = stretch(cell);
    return members().subspan(begin, end - begin);
  }

  [[nodiscard]] std::int32_t cells() const { return static_cast<std::int32_t>(cells_.size()) - 1; }

  /// Cells that hold all points up to `reach` from a place, and others: that of the place and those
  /// of the 26 around it that have points. None for a place that is not finite.
  [[nodiscard]] CellNumbers cells_around(const Vec3& place) const;

 private:
  /// Tells a cell from all others less than some million edges away. Those that have the same key
  /// are one cell.
  using Key = std::uint64_t;

  struct KeyedMember {
    Key key;
    Member member;

    bool operator<(const KeyedMember& other) const {
      return key < other.key || (key == other.key && member.row < other.member.row);
    }
  };

  struct Cell {
    Key key;
    std::uint32_t begin;  ///< of its stretch
  };

  template <class PositionOf>
  void fill(RowRange rows, const PositionOf& position_of);
  void extend_box(const Vec3& p);
  template <class PositionOf>
  std::vector<KeyedMember> sorted_by_cells(RowRange rows, const PositionOf& position_of);
  void make_buckets(std::size_t points);
  void find_buckets_of_cells();

  [[nodiscard]] Key key_of(const Vec3& p) const;
  [[nodiscard]] std::size_t bucket_of(Key key) const;
  [[nodiscard]] bool is_near_box(const Vec3& p) const;

  double edge_;
  std::vector<Member> members_;
  std::vector<Cell> cells_;             ///< by buckets, and one that begins where the last ends
  std::vector<std::uint32_t> buckets_;  ///< begins of 2^n buckets in `cells_`, and the last end
  unsigned shift_ = 0;                  ///< 64 - n
  Vec3 lowest_;                         ///< corner of the box around all points
  Vec3 highest_;                        ///< its other corner
};

}  // namespace dravo
