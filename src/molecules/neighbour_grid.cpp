#include "molecules/neighbour_grid.hpp"

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
  std::vector<KeyedRow> keyed;
  keyed.reserve(static_cast<std::size_t>(rows.end - rows.begin));
  for (std::int32_t k = rows.begin; k < rows.end; ++k) {
    const Vec3 p = position_of(k);
    if (!is_finite(p)) continue;
    if (keyed.empty()) lowest_ = highest_ = p;
    extend_box(p);
    keyed.push_back({key_of(p), k});
  }

  members_.reserve(keyed.size());
  cells_.reserve(keyed.size() + 1);
  for (const auto& [key, row] : sorted_by_cells(keyed)) {
    if (cells_.empty() || cells_.back().key != key)
      cells_.push_back({key, static_cast<std::uint32_t>(members_.size())});
    members_.push_back({position_of(row), row});
  }
  find_buckets_of_cells();
  cells_.push_back({0, static_cast<std::uint32_t>(members_.size())});
}

void NeighbourGrid::extend_box(const Vec3& p) {
  lowest_ = {std::min(lowest_.x, p.x), std::min(lowest_.y, p.y), std::min(lowest_.z, p.z)};
  highest_ = {std::max(highest_.x, p.x), std::max(highest_.y, p.y), std::max(highest_.z, p.z)};
}

/// A stable counting sort by buckets, which leaves each one's begin where its end was counted. Few
/// buckets have several cells.
std::vector<NeighbourGrid::KeyedRow> NeighbourGrid::sorted_by_cells(
    std::span<const KeyedRow> rows) {
  const std::size_t buckets = std::bit_ceil(std::max<std::size_t>(rows.size(), 2));
  buckets_.assign(buckets + 1, 0);
  shift_ = 64U - static_cast<unsigned>(std::countr_zero(buckets));
  for (const KeyedRow& row : rows) ++buckets_[bucket_of(row.key)];
  std::partial_sum(buckets_.begin(), buckets_.end(), buckets_.begin());
  std::vector<KeyedRow> sorted(rows.size());
  for (std::size_t k = rows.size(); k-- > 0;) sorted[--buckets_[bucket_of(rows[k].key)]] = rows[k];
  for (std::size_t b = 0; b + 1 < buckets_.size(); ++b) {
    const auto begin = sorted.begin() + buckets_[b], end = sorted.begin() + buckets_[b + 1];
    if (!std::is_sorted(begin, end)) std::sort(begin, end);
  }
  return sorted;
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
