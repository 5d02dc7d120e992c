/// Which poses of a grid are a given pose.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "identify/closed_form.hpp"
#include "scan/axis_lookup.hpp"

namespace dravo {

/// Axes of a grid in the order of `kPoseParameters`.
namespace grid_axis {
inline constexpr std::size_t r = 0, theta = 1, phi = 2, alpha = 3, beta = 4, gamma = 5;
}

/// Places on the six axes of a grid.
using GridPlaces = std::array<std::int64_t, 6>;

/// Places of alpha, beta and gamma on their axes.
using TurnPlaces = std::array<std::int64_t, 3>;

/// A pose that is looked for, and by how much an atom of molecule 1 may miss it.
struct WantedPose {
  double r;  ///< length of `pose.place`, Angstrom
  RelativePose pose;
  double slack;                                 ///< Angstrom
  std::optional<TurnPlaces> at = std::nullopt;  ///< where its turn stands, if that is known
};

/// The axes of a grid, for a pair of these shapes. Constant, and usable from several threads.
class GridLookup {
 public:
  /// `radius`: distance of the farthest atom of molecule 1 from its centre of mass, Angstrom.
  /// Throws InvalidInput for an axis with more values than can be looked up.
  GridLookup(const Shapes& shapes, double radius, const std::array<Axis, 6>& axes);

  [[nodiscard]] const AxisLookup& axis(std::size_t k) const { return axes_[k]; }
  [[nodiscard]] const Shapes& shapes() const { return shapes_; }
  [[nodiscard]] double radius() const { return radius_; }

  /// Whether the values of an axis change nothing.
  [[nodiscard]] bool idle(std::size_t k) const { return idle_[k]; }

  [[nodiscard]] GridPlaces places_of(std::int64_t index) const;
  [[nodiscard]] PoseDegrees pose_at(const GridPlaces& places) const;

  /// Hands the places of every pose of the grid that is the wanted one to `take`; those of idle
  /// axes and of r are 0. Poles of the grid hold a pose several times.
  template <class Take>
  void look_up(const WantedPose& wanted, Take&& take) const {
    for (const Direction& direction : directions_of(wanted))
      for (const TurnPlaces& turn : turns_of(wanted)) {
        const GridPlaces places{0, direction[0], direction[1], turn[0], turn[1], turn[2]};
        if (is_wanted(wanted, places)) take(places);
      }
  }

 private:
  using Direction = std::array<std::int64_t, 2>;  ///< places of theta and phi

  [[nodiscard]] std::vector<std::int64_t> all_places(std::size_t k) const;
  [[nodiscard]] std::vector<std::int64_t> nearest(std::size_t k, double degrees,
                                                  double tolerance) const;
  [[nodiscard]] std::vector<Direction> directions_of(const WantedPose& wanted) const;
  [[nodiscard]] std::vector<TurnPlaces> turns_of(const WantedPose& wanted) const;
  [[nodiscard]] bool is_wanted(const WantedPose& wanted, const GridPlaces& places) const;

  Shapes shapes_;
  double radius_;
  std::vector<AxisLookup> axes_;
  std::array<bool, 6> idle_;
};

}  // namespace dravo
