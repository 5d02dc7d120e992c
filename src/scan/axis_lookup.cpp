#include "scan/axis_lookup.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "common/turn.hpp"

namespace dravo {
namespace {

/// Values that differ by less are equal, Angstrom or degrees.
constexpr double kEqual = 1e-9;

}  // namespace

AxisLookup::AxisLookup(const Axis& axis, Kind kind) : kind_(kind) {
  values_.reserve(static_cast<std::size_t>(axis.size()));
  sorted_.reserve(static_cast<std::size_t>(axis.size()));
  for (std::int64_t i = 0; i < axis.size(); ++i) {
    values_.push_back(axis.at(i));
    sorted_.push_back({reduced(axis.at(i)), i});
  }
  std::sort(sorted_.begin(), sorted_.end(), [](const Entry& one, const Entry& other) {
    return one.value < other.value || (one.value == other.value && one.place < other.place);
  });
}

std::vector<std::int64_t> AxisLookup::places_of(double value, double tolerance) const {
  const double wanted = reduced(value);
  const auto after = std::lower_bound(sorted_.begin(), sorted_.end(), wanted,
                                      [](const Entry& entry, double v) { return entry.value < v; });
  // The nearest is a neighbour of that place; on a circle the last is a neighbour of the first.
  const auto size = static_cast<std::ptrdiff_t>(sorted_.size());
  const auto entry = [&](std::ptrdiff_t k) -> const Entry& {
    return sorted_[static_cast<std::size_t>((k + size) % size)];
  };
  const std::ptrdiff_t next = after - sorted_.begin();
  const std::ptrdiff_t nearest =
      apart(entry(next).value, wanted) < apart(entry(next - 1).value, wanted) ? next : next - 1;
  const double found = entry(nearest).value;
  if (apart(found, wanted) > tolerance) return {};
  std::vector<std::int64_t> places;
  std::ptrdiff_t first = nearest;
  while (nearest - first < size - 1 && apart(entry(first - 1).value, found) <= kEqual) --first;
  for (std::ptrdiff_t k = first; k - first < size && apart(entry(k).value, found) <= kEqual; ++k)
    places.push_back(entry(k).place);
  std::sort(places.begin(), places.end());
  return places;
}

double AxisLookup::reduced(double value) const {
  return kind_ == Kind::straight ? value : folded_turn(value);
}

double AxisLookup::apart(double one, double other) const {
  const double distance = std::abs(one - other);
  return kind_ == Kind::straight ? distance : std::min(distance, 360.0 - distance);
}

}  // namespace dravo
