#include "output/contact_surveyor.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "output/short_contacts.hpp"

namespace dravo {
namespace {

constexpr std::size_t kAtomsOfGroup = 32;

/// Far more than the rounding errors of a square or a power: below the one limit a distance is
/// short, above the other it is not, and between them the distance itself is taken.
constexpr double kMargin = 1e-12;
constexpr double kSurelyShort = kShortDistance * kShortDistance * (1.0 - kMargin);
constexpr double kSurelyNotShort = kShortDistance * kShortDistance * (1.0 + kMargin);

bool is_short(double squared_distance) {
  if (squared_distance < kSurelyShort) return true;
  return squared_distance <= kSurelyNotShort && is_short_contact(half_power(squared_distance));
}

double square(double x) { return x * x; }

/// Of the points at `offset` + r `direction`, the largest r at `reach` from the origin; the lowest
/// number when the line passes by.
double last_crossing(const Vec3& offset, const Vec3& direction, double reach) {
  const double along = dot(offset, direction);
  const double rest = square(reach) - (dot(offset, offset) - square(along));
  return rest < 0.0 ? std::numeric_limits<double>::lowest() : std::sqrt(rest) - along;
}

}  // namespace

ContactSurveyor::ContactSurveyor(std::span<const Vec3> molecule2)
    : atoms_(molecule2.begin(), molecule2.end()) {
  std::vector<std::pair<std::size_t, std::size_t>> stretches{{0, atoms_.size()}};
  while (!stretches.empty()) {
    const auto [begin, end] = stretches.back();
    stretches.pop_back();
    if (end - begin <= kAtomsOfGroup) {
      if (begin < end) add_group(begin, end);
      continue;
    }
    const std::size_t middle = halve(begin, end);
    stretches.emplace_back(begin, middle);
    stretches.emplace_back(middle, end);
  }
}

/// Sorts the atoms to both sides of the middle of the longest edge of their box.
std::size_t ContactSurveyor::halve(std::size_t begin, std::size_t end) {
  const auto first = atoms_.begin() + static_cast<std::ptrdiff_t>(begin);
  const auto last = atoms_.begin() + static_cast<std::ptrdiff_t>(end);
  double Vec3::*longest = &Vec3::x;
  double length = -1.0;
  for (double Vec3::*const axis : {&Vec3::x, &Vec3::y, &Vec3::z}) {
    const auto [low, high] = std::minmax_element(
        first, last, [&](const Vec3& a, const Vec3& b) { return a.*axis < b.*axis; });
    const double extent = (*high).*axis - (*low).*axis;
    if (extent > length) {
      length = extent;
      longest = axis;
    }
  }
  const auto middle = first + (last - first) / 2;
  std::nth_element(first, middle, last,
                   [&](const Vec3& a, const Vec3& b) { return a.*longest < b.*longest; });
  return static_cast<std::size_t>(middle - atoms_.begin());
}

void ContactSurveyor::add_group(std::size_t begin, std::size_t end) {
  Group group{begin, end, {}, 0.0};
  for (std::size_t k = begin; k < end; ++k) group.centre = group.centre + atoms_[k];
  group.centre = (1.0 / static_cast<double>(end - begin)) * group.centre;
  for (std::size_t k = begin; k < end; ++k)
    group.radius = std::max(group.radius, modulus(atoms_[k] - group.centre));
  group.radius *= 1.0 + kMargin;
  groups_.push_back(group);
}

ContactSurvey ContactSurveyor::survey(const ConstAtomTable& placed, RowRange molecule1) const {
  double nearest = std::numeric_limits<double>::infinity();  // squared
  std::int64_t contacts = 0;
  for (std::int32_t i = molecule1.begin; i < molecule1.end; ++i) {
    const Vec3 p = placed.position(i);
    for (const Group& group : groups_) {
      // Atoms of the group are farther than both the nearest so far and any contact.
      const Vec3 to_centre = p - group.centre;
      const double reach = std::max(std::sqrt(nearest), kShortDistance) + group.radius;
      if (groups_.size() > 1 && dot(to_centre, to_centre) > square(reach) * (1.0 + kMargin))
        continue;
      for (std::size_t k = group.begin; k < group.end; ++k) {
        const Vec3 d = p - atoms_[k];
        const double squared = dot(d, d);
        nearest = std::min(nearest, squared);
        if (is_short(squared)) ++contacts;
      }
    }
  }
  return {half_power(nearest), contacts};
}

double ContactSurveyor::touching_distance(std::span<const Vec3> offsets,
                                          const Vec3& direction) const {
  double farthest = 0.0;
  for (const Vec3& offset : offsets) {
    for (const Group& group : groups_) {
      const double reach = kShortDistance + group.radius;
      if (groups_.size() > 1 &&
          !(last_crossing(offset - group.centre, direction, reach) > farthest))
        continue;
      for (std::size_t k = group.begin; k < group.end; ++k)
        farthest = std::max(farthest, last_crossing(offset - atoms_[k], direction, kShortDistance));
    }
  }
  return farthest;
}

}  // namespace dravo
