/// Where the poses of a scan come from.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "dravo/error.hpp"
#include "dravo/pose.hpp"
#include "scan/axis.hpp"

namespace dravo {

/// Poses by their number, Angstrom and degrees. May be used by several threads.
class PoseSource {
 public:
  enum class Kind { grid, random, list };

  PoseSource() = default;
  PoseSource(const PoseSource&) = delete;
  PoseSource& operator=(const PoseSource&) = delete;
  virtual ~PoseSource() = default;

  [[nodiscard]] virtual std::int64_t size() const = 0;

  /// Poses `first` and following, from 0; as many as `poses` has, all of which exist.
  virtual void fill(std::int64_t first, std::span<PoseDegrees> poses) const = 0;

  [[nodiscard]] virtual Kind kind() const { return Kind::list; }

  /// r to gamma of a grid; null for other poses.
  [[nodiscard]] virtual const std::array<Axis, 6>* axes() const { return nullptr; }
};

/// Indices stay whole as doubles.
inline constexpr std::int64_t kMostPoses = 1'000'000'000'000'000;

/// A stretch of an axis with a value that the parameter may not have, which the complaint tells.
struct AxisFault {
  const Axis::Segment* segment;
  OutOfRange complaint;
};
std::optional<AxisFault> find_axis_fault(const Axis& axis, const PoseParameter& parameter);

/// Every combination of the axes r to gamma, whose values are in range. Throws InvalidInput for
/// more than `kMostPoses`; so does the next.
std::shared_ptr<const PoseSource> grid_source(std::array<Axis, 6> axes);

/// `directions` random poses for each r.
std::shared_ptr<const PoseSource> random_source(std::int64_t directions, Axis r,
                                                std::uint64_t seed);

std::shared_ptr<const PoseSource> list_source(std::vector<PoseDegrees> poses);

}  // namespace dravo
