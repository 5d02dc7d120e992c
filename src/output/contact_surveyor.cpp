#include "output/contact_surveyor.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <tuple>
#include <utility>

#include "common/neighbour_grid.hpp"
#include "output/short_contacts.hpp"

namespace dravo {
namespace {

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

/// Of the points at `offset` + r `direction`, the largest r that is no farther than `reach` from
/// the origin.
double last_crossing(const Vec3& offset, const Vec3& direction, double reach) {
  const double along = dot(offset, direction);
  return end_of_chord(along, square(reach) - (dot(offset, offset) - square(along)));
}

/// No point around `offset` has its last crossing later, nor with any point around the origin, when
/// `spread` is how far the points are from there in sum. Not a number where squares overflow.
double latest_crossing(const Vec3& offset, const Vec3& direction, double reach, double spread) {
  const double along = dot(offset, direction);
  const double offset_square = dot(offset, offset);
  const double reach_square = square(reach + spread);
  const double margin = kCrossingMargin * (offset_square + reach_square);
  return end_of_chord(along, reach_square - (offset_square - square(along)) + margin);
}

/// Whether all that is up to `spread`, in sum, from the ends of `d` is farther apart than `reach`.
/// So it is when one of the two is not a number.
bool is_beyond(const Vec3& d, double reach, double spread) {
  return !(dot(d, d) <= square(reach + spread) * (1.0 + kMargin));
}

/// Of radii, some of which may be unknown; zero when all are.
double largest_of(std::span<const double> radii) {
  double largest = 0.0;
  for (const double radius : radii)
    if (radius > largest) largest = radius;
  return largest;
}

}  // namespace

/// The shortest distance, and how many are short.
struct ContactSurveyor::Nearness {
  const ContactSurveyor& surveyor;
  RootLimit contact;
  double shortest_square = std::numeric_limits<double>::infinity();
  std::int64_t contacts = 0;
  double reach = shortest_square;  ///< beyond it is neither a shorter distance nor a contact

  void add(std::int32_t /*row*/, const Vec3& p, const Group& group) {
    double shortest = shortest_square;  // in registers, as the next two
    const RootLimit limit = contact;
    std::int64_t count = 0;
    for (const Vec3& atom : surveyor.atoms_of(group)) {
      const Vec3 d = p - atom;
      const double square_of_distance = dot(d, d);
      shortest = std::min(shortest, square_of_distance);
      if (limit.holds(square_of_distance)) ++count;
    }
    contacts += count;
    if (!(shortest < shortest_square)) return;
    shortest_square = shortest;
    reach = std::max(std::sqrt(shortest_square), contact.limit());
  }

  [[nodiscard]] double reach_to(const Group& /*group*/) const { return reach; }
};

/// The smallest ratio of a distance to the sum of the radii, and how many are small. A ratio is
/// computed where the squares leave it possible; sums with an unknown radius compare as false.
struct ContactSurveyor::Clearance {
  const ContactSurveyor& surveyor;
  RowRange molecule1;
  double factor;  ///< of a contact; zero when the contacts do not go by radii
  double smallest = std::numeric_limits<double>::infinity();
  std::int32_t atom1 = -1;
  std::int32_t atom2 = -1;
  std::int64_t contacts = 0;
  double reach = smallest;  ///< beyond it is neither a smaller ratio nor a contact

  /// Whose smallest ratio may be the smallest of all, which is then nearly the root of `least`.
  struct Waiting {
    std::int32_t row = -1;
    Vec3 position{};
    double least = std::numeric_limits<double>::infinity();
  };
  Waiting waiting = {};

  [[nodiscard]] std::size_t place(std::int32_t row) const {
    return static_cast<std::size_t>(row - molecule1.begin);
  }

  /// Up to where squares may be those of contacts, or of a ratio as small as the root of `least`.
  [[nodiscard]] double most_square(double least) const {
    return std::max(least, square(factor)) * (1.0 + kMargin);
  }

  void add(std::int32_t row, const Vec3& p, const Group& group) {
    const double radius = surveyor.radii1_[place(row)];
    double reach_square = square(reach) * (1.0 + kMargin);
    for (std::size_t k = group.begin; k < group.end; ++k) {
      const Vec3 d = p - surveyor.atoms_[k];
      const double sum = radius + surveyor.radii_[k];
      if (!(dot(d, d) <= reach_square * square(sum))) continue;
      const double ratio = modulus(d) / sum;
      if (ratio <= factor) ++contacts;
      take(ratio, row, molecule1.end + surveyor.rows_[k]);
      reach_square = square(reach) * (1.0 + kMargin);
    }
  }

  /// The same with the squares of the distances, which are lost. The row waits for its ratios to be
  /// computed until no other can have a smaller one, or until it may share the smallest.
  void add_few(std::int32_t row, const Vec3& p, FewAtoms::Numbers& squares) {
    const double least = surveyor.few_->divide_by_sums(place(row), squares);
    if (!(least <= most_square(waiting.least))) return;
    const bool outdone = least * (1.0 + kMargin) < waiting.least;
    if (!outdone || waiting.least <= most_square(0.0)) settle();
    waiting = {row, p, std::min(least, waiting.least)};
  }

  /// Computes the ratios of the row that waits which may be the smallest, or contacts.
  void settle() {
    if (waiting.row < 0) return;
    const auto& [row, p, least] = waiting;
    FewAtoms::Numbers squares;
    surveyor.few_->take_squares(p, squares);
    surveyor.few_->divide_by_sums(place(row), squares);
    const double most = most_square(least);
    for (std::size_t k = 0; k < surveyor.atoms_.size(); ++k) {
      if (!(squares[k] <= most)) continue;
      const double ratio =
          modulus(p - surveyor.atoms_[k]) / (surveyor.radii1_[place(row)] + surveyor.radii_[k]);
      if (ratio <= factor) ++contacts;
      take(ratio, row, molecule1.end + surveyor.rows_[k]);
    }
  }

  void take(double ratio, std::int32_t row1, std::int32_t row2) {
    if (std::tie(smallest, atom1, atom2) < std::tie(ratio, row1, row2)) return;
    std::tie(smallest, atom1, atom2) = std::tie(ratio, row1, row2);
    reach = std::max(smallest, factor);
  }

  [[nodiscard]] double reach_to(const Group& group) const {
    return reach * (surveyor.largest1_ + group.largest);
  }
};

/// The closest pairs, in order.
struct ContactSurveyor::Closest {
  const ContactSurveyor& surveyor;
  RowRange molecule1;
  std::size_t count;
  std::vector<ClosePair> pairs = {};
  double reach = std::numeric_limits<double>::infinity();  ///< beyond it none is among the closest

  void add(std::int32_t row, const Vec3& p, const Group& group) {
    for (std::size_t k = group.begin; k < group.end; ++k) {
      const Vec3 d = p - surveyor.atoms_[k];
      if (is_beyond(d, reach, 0.0)) continue;
      const auto i = static_cast<std::size_t>(row - molecule1.begin);
      const double distance = modulus(d);
      take({row, molecule1.end + surveyor.rows_[k], distance,
            distance / (surveyor.radii1_[i] + surveyor.radii_[k])});
    }
  }

  void take(const ClosePair& pair) {
    const auto is_before = [](const ClosePair& a, const ClosePair& b) {
      return std::tie(a.distance, a.atom1, a.atom2) < std::tie(b.distance, b.atom1, b.atom2);
    };
    pairs.insert(std::upper_bound(pairs.begin(), pairs.end(), pair, is_before), pair);
    if (pairs.size() > count) pairs.pop_back();
    if (pairs.size() == count) reach = pairs.back().distance;
  }

  [[nodiscard]] double reach_to(const Group& /*group*/) const { return reach; }
};

/// What is no farther than `longest`.
struct ContactSurveyor::SameReach {
  double longest;

  [[nodiscard]] double between(std::size_t /*atom1*/, std::size_t /*atom2*/) const {
    return longest;
  }
  [[nodiscard]] double of(const Group& /*group*/) const { return longest; }
};

/// What is no farther than a multiple of the sum of the radii.
struct ContactSurveyor::ReachByRadii {
  const ContactSurveyor& surveyor;
  double factor;

  [[nodiscard]] double between(std::size_t atom1, std::size_t atom2) const {
    return factor * (surveyor.radii1_[atom1] + surveyor.radii_[atom2]);
  }
  [[nodiscard]] double of(const Group& group) const {
    return factor * (surveyor.largest1_ + group.largest);
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

ContactSurveyor::ContactSurveyor(std::span<const Vec3> molecule2)
    : ContactSurveyor(molecule2, {}, {}) {}

ContactSurveyor::ContactSurveyor(std::span<const Vec3> molecule2, std::span<const double> radii,
                                 const ContactCriterion& criterion)
    : criterion_(criterion), atoms_(molecule2.begin(), molecule2.end()), rows_(molecule2.size()) {
  std::iota(rows_.begin(), rows_.end(), 0);
  if (!radii.empty()) {
    const auto of_molecule1 = static_cast<std::ptrdiff_t>(radii.size() - molecule2.size());
    radii1_.assign(radii.begin(), radii.begin() + of_molecule1);
    radii_.assign(radii.begin() + of_molecule1, radii.end());
    largest1_ = largest_of(radii1_);
  }
  if (atoms_.size() > FewAtoms::kMost) {
    sort_into_groups();
  } else if (!atoms_.empty()) {
    add_group(0, atoms_.size());
    few_.emplace(atoms_, radii_, radii1_);
  }
}

/// The cells of a grid.
void ContactSurveyor::sort_into_groups() {
  const NeighbourGrid grid(atoms_, kGroupEdge);
  const std::vector<double> radii = std::move(radii_);
  radii_.clear();
  std::size_t k = 0;
  for (const auto& [position, row] : grid.members()) {
    atoms_[k] = position;
    rows_[k++] = row;
    if (!radii.empty()) radii_.push_back(radii[static_cast<std::size_t>(row)]);
  }
  for (std::int32_t cell = 0; cell < grid.cells(); ++cell) {
    const auto [begin, end] = grid.stretch(cell);
    add_group(begin, end);
  }
}

void ContactSurveyor::add_group(std::size_t begin, std::size_t end) {
  const Sphere sphere =
      sphere_around(end - begin, [&](std::size_t k) { return atoms_[begin + k]; });
  const auto radii =
      std::span(radii_).subspan(radii_.empty() ? 0 : begin, radii_.empty() ? 0 : end - begin);
  groups_.push_back({begin, end, sphere, largest_of(radii)});
}

std::span<const Vec3> ContactSurveyor::atoms_of(const Group& group) const {
  return std::span(atoms_).subspan(group.begin, group.end - group.begin);
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

/// The same of few atoms.
ContactSurvey ContactSurveyor::survey_few(const ConstAtomTable& placed, RowRange molecule1,
                                          Clearance* clearance) const {
  const bool by_radii = criterion_.by_radii();
  const RootLimit contact(by_radii ? 0.0 : criterion_.value());
  double shortest_square = std::numeric_limits<double>::infinity();
  std::int64_t contacts = 0;
  FewAtoms::Numbers squares;
  for (std::int32_t i = molecule1.begin; i < molecule1.end; ++i) {
    const Vec3 p = placed.position(i);
    const double least = few_->take_squares(p, squares);
    shortest_square = std::min(shortest_square, least);
    if (!by_radii && contact.may_hold(least))
      for (std::size_t k = 0; k < atoms_.size(); ++k)
        if (contact.holds(squares[k])) ++contacts;
    if (clearance != nullptr) clearance->add_few(i, p, squares);
  }
  if (clearance != nullptr) clearance->settle();
  return {half_power(shortest_square), contacts};
}

/// Adds to what is known all pairs of atoms that could change it.
template <class Known>
void ContactSurveyor::add_pairs(const ConstAtomTable& placed, RowRange molecule1,
                                Known& known) const {
  if (groups_.size() == 1) {
    for (std::int32_t i = molecule1.begin; i < molecule1.end; ++i)
      known.add(i, placed.position(i), groups_.front());
    return;
  }
  const Sphere sphere =
      sphere_around(static_cast<std::size_t>(molecule1.end - molecule1.begin), [&](std::size_t k) {
        return placed.position(molecule1.begin + static_cast<std::int32_t>(k));
      });
  const auto add_group = [&](const Group& group) {
    if (is_beyond(group.sphere.centre - sphere.centre, known.reach_to(group),
                  group.sphere.radius + sphere.radius))
      return;
    for (std::int32_t i = molecule1.begin; i < molecule1.end; ++i) {
      const Vec3 p = placed.position(i);
      if (!is_beyond(p - group.sphere.centre, known.reach_to(group), group.sphere.radius))
        known.add(i, p, group);
    }
  };
  visit_first_and_others(
      [&](const Group& group) {
        const Vec3 d = group.sphere.centre - sphere.centre;
        return -dot(d, d);
      },
      add_group);
}

ContactSurvey ContactSurveyor::survey(const ConstAtomTable& placed, RowRange molecule1) const {
  if (criterion_.by_radii()) {
    const ContactSurvey both = survey_with_clearance(placed, molecule1);
    return {both.shortest, both.contacts};
  }
  if (few_) return survey_few(placed, molecule1, nullptr);
  Nearness nearness{*this, RootLimit(criterion_.value())};
  add_pairs(placed, molecule1, nearness);
  return {half_power(nearness.shortest_square), nearness.contacts};
}

ContactSurvey ContactSurveyor::survey_with_clearance(const ConstAtomTable& placed,
                                                     RowRange molecule1) const {
  const bool by_radii = criterion_.by_radii();
  Clearance clearance{*this, molecule1, by_radii ? criterion_.value() : 0.0};
  ContactSurvey survey{};
  if (few_) {
    survey = survey_few(placed, molecule1, &clearance);
  } else {
    Nearness nearness{*this, RootLimit(by_radii ? 0.0 : criterion_.value())};
    add_pairs(placed, molecule1, nearness);
    add_pairs(placed, molecule1, clearance);
    survey = {half_power(nearness.shortest_square), nearness.contacts};
  }
  if (by_radii) survey.contacts = clearance.contacts;
  survey.clearance = clearance.smallest;
  survey.clearance_atom1 = clearance.atom1;
  survey.clearance_atom2 = clearance.atom2;
  return survey;
}

std::vector<ClosePair> ContactSurveyor::closest(const ConstAtomTable& placed, RowRange molecule1,
                                                std::size_t count) const {
  Closest closest{*this, molecule1, count};
  if (count > 0) add_pairs(placed, molecule1, closest);
  return closest.pairs;
}

double ContactSurveyor::touching_distance(std::span<const Vec3> offsets,
                                          const Vec3& direction) const {
  return criterion_.by_radii()
             ? touching_distance(offsets, direction, ReachByRadii{*this, criterion_.value()})
             : touching_distance(offsets, direction, SameReach{criterion_.value()});
}

template <class Reach>
double ContactSurveyor::touching_distance(std::span<const Vec3> offsets, const Vec3& direction,
                                          const Reach& reach) const {
  double farthest = 0.0;
  const auto approach = [&](const Group& group) {
    for (std::size_t i = 0; i < offsets.size(); ++i) {
      if (groups_.size() > 1 && latest_crossing(offsets[i] - group.sphere.centre, direction,
                                                reach.of(group), group.sphere.radius) <= farthest)
        continue;
      for (std::size_t k = group.begin; k < group.end; ++k)
        farthest = std::max(farthest,
                            last_crossing(offsets[i] - atoms_[k], direction, reach.between(i, k)));
    }
  };
  if (groups_.size() == 1) {
    approach(groups_.front());
    return farthest;
  }
  const Sphere sphere = sphere_around(offsets.size(), [&](std::size_t k) { return offsets[k]; });
  const auto latest = [&](const Group& group) {
    return latest_crossing(sphere.centre - group.sphere.centre, direction, reach.of(group),
                           sphere.radius + group.sphere.radius);
  };
  visit_first_and_others(latest, [&](const Group& group) {
    if (!(latest(group) <= farthest)) approach(group);
  });
  return farthest;
}

double ContactSurveyor::longest_contact() const {
  if (!criterion_.by_radii()) return criterion_.value();
  return criterion_.value() * (largest1_ + largest_of(radii_));
}

}  // namespace dravo
