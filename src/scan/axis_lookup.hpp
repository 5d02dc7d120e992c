/// Where on an axis of a grid a value stands.
#pragma once

#include <cstdint>
#include <vector>

#include "scan/axis.hpp"

namespace dravo {

/// The values of an axis, sorted. Immutable.
class AxisLookup {
 public:
  /// Whether a full turn leads back to the same value.
  enum class Kind { straight, circular };

  AxisLookup(const Axis& axis, Kind kind);

  [[nodiscard]] std::int64_t size() const { return static_cast<std::int64_t>(sorted_.size()); }

  /// Value of place `i` on the axis.
  [[nodiscard]] double at(std::int64_t i) const { return values_[static_cast<std::size_t>(i)]; }

  /// Places on the axis, ascending, of the value nearest to this one and of its equals; none when
  /// it is farther away than `tolerance`.
  [[nodiscard]] std::vector<std::int64_t> places_of(double value, double tolerance) const;

 private:
  struct Entry {
    double value;
    std::int64_t place;
  };

  [[nodiscard]] double reduced(double value) const;
  [[nodiscard]] double apart(double one, double other) const;

  Kind kind_;
  std::vector<double> values_;
  std::vector<Entry> sorted_;
};

}  // namespace dravo
