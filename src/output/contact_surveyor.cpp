#include "output/contact_surveyor.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "molecules/neighbour_grid.hpp"
#include "output/short_contacts.hpp"

namespace dravo {
namespace {

/// To so few atoms all distances are taken sooner than any is ruled out.
constexpr std::size_t kFewAtoms = 32;

/// Edge of the cells whose atoms are a group, Angstrom. Some 50 atoms of organic matter fill one.
constexpr double kGroupEdge = 8.0;

/// Far more than the rounding errors of distances, relative to them.
constexpr double kMargin = 1e-12;

/// Far more than the rounding errors of a crossing, relative to the squares it is taken from.
constexpr double kCrossingMargin = 1e-9;

double square(double x) { return x * x; }

/// `rest` is the square of half the chord that a line cuts off; the line passes by when it is below
/// zero, and what comes out is the lowest number.
double end_of_chord(double along, double rest) {
  return rest < 0.0 ? std::numeric_limits<double>::lowest() : std::sqrt(rest) - along;
}

/// Of the points at `offset` + r `direction`, the largest r as near to the origin as a contact.
double last_crossing(const Vec3& offset, const Vec3& direction) {
  const double along = dot(offset, direction);
  return end_of_chord(along, square(kShortDistance) - (dot(offset, offset) - square(along)));
}

/// No point around `offset` has its last crossing later, nor with any point around the origin, when
/// `spread` is how far the points are from there in sum. Not a number where squares overflow.
double latest_crossing(const Vec3& offset, const Vec3& direction, double spread) {
  const double along = dot(offset, direction);
  const double offset_square = dot(offset, offset);
  const double reach_square = square(kShortDistance + spread);
  const double margin = kCrossingMargin * (offset_square + reach_square);
  return end_of_chord(along, reach_square - (offset_square - square(along)) + margin);
}

}  // namespace

/// What is known so far of how close a molecule 1 comes.
struct ContactSurveyor::Nearness {
  double shortest_square = std::numeric_limits<double>::infinity();
  std::int64_t contacts = 0;
  double reach = shortest_square;  ///< beyond it is neither a shorter distance nor a contact

  void add(const Vec3& p, std::span<const Vec3> atoms) {
    double shortest = shortest_square;  // in registers
    std::int64_t count = 0;
    for (const Vec3& atom : atoms) {
      const Vec3 d = p - atom;
      const double square_of_distance = dot(d, d);
      shortest = std::min(shortest, square_of_distance);
      if (is_short_contact_of_square(square_of_distance)) ++count;
    }
    contacts += count;
    if (!(shortest < shortest_square)) return;
    shortest_square = shortest;
    reach = std::max(std::sqrt(shortest_square), kShortDistance);
  }

  /// Whether all that is up to `spread`, in sum, from the ends of `d` is.
  [[nodiscard]] bool is_beyond(const Vec3& d, double spread) const {
    return dot(d, d) > square(reach + spread) * (1.0 + kMargin);
  }
};

/// Around the middle of the box around the points.
template <class PositionOf>
ContactSurveyor::Sphere ContactSurveyor::sphere_around(std::size_t points,
                                                       const PositionOf& position_of) {
  if (points == 0) return {};
  Vec3 low = position_of(0), high = low;
  for (std::size_t k = 1; k < points; ++k) {
    const Vec3 p = position_of(k);
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
  }
  const Vec3 centre = 0.5 * low + 0.5 * high;
  double farthest_square = 0.0;
  for (std::size_t k = 0; k < points; ++k) {
    const Vec3 d = position_of(k) - centre;
    farthest_square = std::max(farthest_square, dot(d, d));
  }
  return {centre, std::sqrt(farthest_square) * (1.0 + kMargin)};
}

ContactSurveyor::ContactSurveyor(std::span<const Vec3> molecule2) {
  if (molecule2.size() <= kFewAtoms) {
    atoms_.assign(molecule2.begin(), molecule2.end());
    if (!atoms_.empty()) add_group(0, atoms_.size());
    return;
  }
  const NeighbourGrid grid(molecule2, kGroupEdge);
  for (const auto& [position, row] : grid.members()) atoms_.push_back(position);
  for (std::int32_t cell = 0; cell < grid.cells(); ++cell) {
    const auto [begin, end] = grid.stretch(cell);
    add_group(begin, end);
  }
}

void ContactSurveyor::add_group(std::size_t begin, std::size_t end) {
  groups_.push_back(
      {begin, end, sphere_around(end - begin, [&](std::size_t k) { return atoms_[begin + k]; })});
}

std::span<const Vec3> ContactSurveyor::atoms_of(const Group& group) const {
  return std::span(atoms_).subspan(group.begin, group.end - group.begin);
}

void ContactSurveyor::survey_group(const Group& group, const ConstAtomTable& placed,
                                   RowRange molecule1, Nearness& nearness) const {
  for (std::int32_t i = molecule1.begin; i < molecule1.end; ++i) {
    const Vec3 p = placed.position(i);
    if (!nearness.is_beyond(p - group.sphere.centre, group.sphere.radius))
      nearness.add(p, atoms_of(group));
  }
}

/// Calls visit(group) for all groups, and first for the one of highest rank, whose atoms are to
/// rule out most of the others.
template <class Rank, class Visit>
void ContactSurveyor::visit_first_and_others(const Rank& rank, const Visit& visit) const {
  const Group* first = nullptr;
  double highest = std::numeric_limits<double>::lowest();
  for (const Group& group : groups_) {
    const double rank_of_group = rank(group);
    if (first != nullptr && !(rank_of_group > highest)) continue;
    first = &group;
    highest = rank_of_group;
  }
  if (first != nullptr) visit(*first);
  for (const Group& group : groups_)
    if (&group != first) visit(group);
}

ContactSurvey ContactSurveyor::survey(const ConstAtomTable& placed, RowRange molecule1) const {
  Nearness nearness;
  if (groups_.size() == 1) {
    for (std::int32_t i = molecule1.begin; i < molecule1.end; ++i)
      nearness.add(placed.position(i), atoms_);
  } else {
    const Sphere sphere = sphere_around(
        static_cast<std::size_t>(molecule1.end - molecule1.begin), [&](std::size_t k) {
          return placed.position(molecule1.begin + static_cast<std::int32_t>(k));
        });
    visit_first_and_others(
        [&](const Group& group) {
          const Vec3 d = group.sphere.centre - sphere.centre;
          return -dot(d, d);
        },
        [&](const Group& group) {
          if (!nearness.is_beyond(group.sphere.centre - sphere.centre,
                                  group.sphere.radius + sphere.radius))
            survey_group(group, placed, molecule1, nearness);
        });
  }
  return {half_power(nearness.shortest_square), nearness.contacts};
}

double ContactSurveyor::touching_distance(std::span<const Vec3> offsets,
                                          const Vec3& direction) const {
  double farthest = 0.0;
  const auto approach = [&](const Group& group) {
    for (const Vec3& offset : offsets) {
      if (groups_.size() > 1 &&
          latest_crossing(offset - group.sphere.centre, direction, group.sphere.radius) <= farthest)
        continue;
      for (const Vec3& atom : atoms_of(group))
        farthest = std::max(farthest, last_crossing(offset - atom, direction));
    }
  };
  if (groups_.size() == 1) {
    approach(groups_.front());
    return farthest;
  }
  const Sphere sphere = sphere_around(offsets.size(), [&](std::size_t k) { return offsets[k]; });
  const auto latest = [&](const Group& group) {
    return latest_crossing(sphere.centre - group.sphere.centre, direction,
                           sphere.radius + group.sphere.radius);
  };
  visit_first_and_others(latest, [&](const Group& group) {
    if (!(latest(group) <= farthest)) approach(group);
  });
  return farthest;
}

}  // namespace dravo
