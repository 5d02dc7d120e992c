#include "common/neighbour_grid.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>

namespace dravo {
namespace {

/// Edge of a cell in reaches. What it is longer covers all rounding errors of a number of edges: at
/// the farthest cell, 1e12 edges from the origin, they are a tenth of it.
constexpr double kEdge = 1.001;
constexpr double kFarthestCell = 1e12;

/// The key of a cell is the sum of these and of how many edges it lies from the origin along x.
constexpr std::uint64_t kKeyStepAlongY = std::uint64_t{1} << 21U;
constexpr std::uint64_t kKeyStepAlongZ = std::uint64_t{1} << 42U;

bool is_finite(const Vec3& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

/// The floor, without a branch, since nothing foretells its outcome. All that lies farther out than
/// the farthest cells is in them.
std::uint64_t cell_along_axis(double edges) {
  const double clamped = std::clamp(edges, -kFarthestCell, kFarthestCell);
  const auto truncated = static_cast<std::int64_t>(clamped);
  return static_cast<std::uint64_t>(
      truncated - static_cast<std::int64_t>(static_cast<double>(truncated) > clamped));
}

}  // namespace

NeighbourGrid::NeighbourGrid(std::span<const Vec3> points, double reach) : edge_(kEdge * reach) {
  fill({0, static_cast<std::int32_t>(points.size())},
       [&](std::int32_t k) { return points[static_cast<std::size_t>(k)]; });
}

NeighbourGrid::NeighbourGrid(const ConstAtomTable& atoms, RowRange rows, double reach)
    : edge_(kEdge * reach) {
  fill(rows, [&](std::int32_t k) { return atoms.position(k); });
}

template <class PositionOf>
void NeighbourGrid::fill(RowRange rows, const PositionOf& position_of) {
  const std::vector<KeyedMember> sorted = sorted_by_cells(rows, position_of);
  members_.reserve(sorted.size());
  cells_.reserve(sorted.size() + 1);
  for (const auto& [key, member] : sorted) {
    if (cells_.empty() || cells_.back().key != key)
      cells_.push_back({key, static_cast<std::uint32_t>(members_.size())});
    members_.push_back(member);
  }
  find_buckets_of_cells();
  cells_.push_back({0, static_cast<std::uint32_t>(members_.size())});
}

/// A stable counting sort by buckets, which leaves each one's begin where its end was counted. Few
/// buckets have several cells.
template <class PositionOf>
std::vector<NeighbourGrid::KeyedMember> NeighbourGrid::sorted_by_cells(
    RowRange rows, const PositionOf& position_of) {
  const auto count = static_cast<std::size_t>(rows.end - rows.begin);
  make_buckets(count);
  std::vector<Key> keys;  // of the finite points
  keys.reserve(count);
  for (std::int32_t row = rows.begin; row < rows.end; ++row) {
    const Vec3 p = position_of(row);
    if (!is_finite(p)) continue;
    if (keys.empty()) lowest_ = highest_ = p;
    extend_box(p);
    keys.push_back(key_of(p));
    ++buckets_[bucket_of(keys.back())];
  }
  std::partial_sum(buckets_.begin(), buckets_.end(), buckets_.begin());

  std::vector<KeyedMember> sorted(keys.size());
  for (std::int32_t row = rows.end; row-- > rows.begin;) {
    const Vec3 p = position_of(row);
    if (!is_finite(p)) continue;
    sorted[--buckets_[bucket_of(keys.back())]] = {keys.back(), {p, row}};
    keys.pop_back();
  }
  for (std::size_t b = 0; b + 1 < buckets_.size(); ++b) {
    const auto begin = sorted.begin() + buckets_[b], end = sorted.begin() + buckets_[b + 1];
    if (!std::is_sorted(begin, end)) std::sort(begin, end);
  }
  return sorted;
}

/// As many as points, or up to twice as many.
void NeighbourGrid::make_buckets(std::size_t points) {
  const std::size_t buckets = std::bit_ceil(std::max<std::size_t>(points, 2));
  buckets_.assign(buckets + 1, 0);
  shift_ = 64U - static_cast<unsigned>(std::countr_zero(buckets));
}

void NeighbourGrid::extend_box(const Vec3& p) {
  lowest_ = {std::min(lowest_.x, p.x), std::min(lowest_.y, p.y), std::min(lowest_.z, p.z)};
  highest_ = {std::max(highest_.x, p.x), std::max(highest_.y, p.y), std::max(highest_.z, p.z)};
}

void NeighbourGrid::find_buckets_of_cells() {
  std::fill(buckets_.begin(), buckets_.end(), 0);
  for (const Cell& cell : cells_) ++buckets_[bucket_of(cell.key) + 1];
  std::partial_sum(buckets_.begin(), buckets_.end(), buckets_.begin());
}

NeighbourGrid::CellNumbers NeighbourGrid::cells_around(const Vec3& place) const {
  CellNumbers around;
  if (!is_near_box(place)) return around;
  constexpr std::array<Key, 3> kSteps{~Key{0}, 0, 1};
  const Key centre = key_of(place);
  for (const Key x : kSteps)
    for (const Key y : kSteps)
      for (const Key z : kSteps) {
        const Key key = centre + x + y * kKeyStepAlongY + z * kKeyStepAlongZ;
        const std::size_t bucket = bucket_of(key);
        for (std::uint32_t cell = buckets_[bucket]; cell < buckets_[bucket + 1]; ++cell)
          if (cells_[cell].key == key) around.add(static_cast<std::int32_t>(cell));
      }
  return around;
}

NeighbourGrid::Key NeighbourGrid::key_of(const Vec3& p) const {
  return cell_along_axis(p.x / edge_) + kKeyStepAlongY * cell_along_axis(p.y / edge_) +
         kKeyStepAlongZ * cell_along_axis(p.z / edge_);
}

/// The upper bits of a multiple, in which every bit of the key counts. The factor, 2^64 over the
/// golden ratio, spreads neighbouring cells over the buckets.
std::size_t NeighbourGrid::bucket_of(Key key) const {
  return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15U) >> shift_);
}

/// Not for a not-a-number, nor for an infinite place while all points are finite.
bool NeighbourGrid::is_near_box(const Vec3& p) const {
  return !members_.empty() && p.x >= lowest_.x - edge_ && p.x <= highest_.x + edge_ &&
         p.y >= lowest_.y - edge_ && p.y <= highest_.y + edge_ && p.z >= lowest_.z - edge_ &&
         p.z <= highest_.z + edge_;
}

}  // namespace dravo
