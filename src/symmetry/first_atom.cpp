#include <algorithm>
#include <cmath>
#include <compare>
#include <cstddef>
#include <numeric>

#include "symmetry/frame_choice.hpp"
#include "symmetry/matrices.hpp"

namespace dravo {
namespace {

/// Atoms of one frame that have no partner in another.
using LeftOver = std::vector<std::size_t>;

/// Coordinates along I_A, I_B, I_C.
std::vector<Vec3> coordinates_in(const AxisRows& rows, const CentredAtoms& atoms) {
  std::vector<Vec3> coordinates;
  coordinates.reserve(atoms.size());
  for (const Vec3& p : atoms.positions) coordinates.push_back(rows * p);
  return coordinates;
}

/// Atoms sorted by their first coordinate, so that partners are looked for among few.
class SortedAtoms {
 public:
  SortedAtoms(const CentredAtoms& atoms, const std::vector<Vec3>& places)
      : atoms_(atoms), places_(places), order_(places.size()), taken_(places.size(), false) {
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    std::sort(order_.begin(), order_.end(),
              [&](std::size_t i, std::size_t j) { return places_[i].x < places_[j].x; });
  }

  /// Takes the nearest free atom of the element within the tolerance of a place.
  bool take(std::int32_t element, const Vec3& place, double tolerance) {
    const auto begin = std::lower_bound(order_.begin(), order_.end(), place.x - tolerance,
                                        [&](std::size_t i, double x) { return places_[i].x < x; });
    double nearest = tolerance * tolerance;
    auto found = order_.end();
    for (auto i = begin; i != order_.end() && places_[*i].x <= place.x + tolerance; ++i) {
      const Vec3 d = places_[*i] - place;
      if (taken_[*i] || atoms_.numbers[*i] != element || dot(d, d) > nearest) continue;
      nearest = dot(d, d);
      found = i;
    }
    if (found == order_.end()) return false;
    taken_[*found] = true;
    return true;
  }

  [[nodiscard]] LeftOver free() const {
    LeftOver left;
    for (std::size_t i = 0; i < taken_.size(); ++i)
      if (!taken_[i]) left.push_back(i);
    return left;
  }

 private:
  const CentredAtoms& atoms_;
  const std::vector<Vec3>& places_;
  std::vector<std::size_t> order_;
  std::vector<bool> taken_;
};

/// The atom of the heaviest element that is farthest along the axes, one after the other.
std::size_t first_of(const LeftOver& left, const CentredAtoms& atoms,
                     const std::vector<Vec3>& places, double tolerance) {
  LeftOver best = left;
  std::int32_t heaviest = 0;
  for (const std::size_t i : best) heaviest = std::max(heaviest, atoms.numbers[i]);
  std::erase_if(best, [&](std::size_t i) { return atoms.numbers[i] != heaviest; });
  for (double Vec3::*const axis : {&Vec3::x, &Vec3::y, &Vec3::z}) {
    double farthest = places[best.front()].*axis;
    for (const std::size_t i : best) farthest = std::max(farthest, places[i].*axis);
    std::erase_if(best, [&](std::size_t i) { return places[i].*axis < farthest - tolerance; });
  }
  return best.front();
}

/// Above zero when the first frame is the better one, zero when both show the same.
int compare(const CentredAtoms& atoms, const std::vector<Vec3>& one, const std::vector<Vec3>& other,
            double tolerance, AxisReason& reason) {
  SortedAtoms others(atoms, other);
  LeftOver left;
  for (std::size_t i = 0; i < one.size(); ++i)
    if (!others.take(atoms.numbers[i], one[i], tolerance)) left.push_back(i);
  LeftOver left_of_other = others.free();
  while (!left.empty()) {
    const std::size_t i = first_of(left, atoms, one, tolerance);
    const std::size_t j = first_of(left_of_other, atoms, other, tolerance);
    for (double Vec3::*const axis : {&Vec3::x, &Vec3::y, &Vec3::z}) {
      const double ahead = one[i].*axis - other[j].*axis;
      if (!(std::abs(ahead) > tolerance)) continue;
      reason = {FixedBy::first_atom, atoms.numbers[i], std::abs(ahead)};
      return ahead > 0.0 ? 1 : -1;
    }
    std::erase(left, i);
    std::erase(left_of_other, j);
  }
  return 0;
}

std::vector<std::vector<Vec3>> seen_in(const std::vector<AxisRows>& frames,
                                       const CentredAtoms& atoms) {
  std::vector<std::vector<Vec3>> seen;
  seen.reserve(frames.size());
  for (const AxisRows& rows : frames) seen.push_back(coordinates_in(rows, atoms));
  return seen;
}

}  // namespace

void choose_by_first_atom(const CentredAtoms& atoms, double tolerance, FrameChoices& choices) {
  const auto seen = seen_in(choices.frames, atoms);
  AxisReason reason;
  std::vector<AxisRows> unbeaten;
  for (std::size_t f = 0; f < seen.size(); ++f) {
    const bool beaten = std::any_of(seen.begin(), seen.end(), [&](const auto& other) {
      return &other != &seen[f] && compare(atoms, other, seen[f], tolerance, reason) > 0;
    });
    if (!beaten) unbeaten.push_back(choices.frames[f]);
  }
  // "Not better" does not carry over from one pair of frames to the next, so all may be beaten.
  if (unbeaten.empty() || unbeaten.size() == choices.frames.size()) return;
  choices.frames = std::move(unbeaten);
  choices.first_atom = true;
  for (AxisReason& axis : choices.reasons)
    if (axis.by == FixedBy::right_handedness) axis = reason;
}

AxisRows first_in_order(const CentredAtoms& atoms, const std::vector<AxisRows>& frames) {
  if (frames.size() == 1) return frames.front();
  constexpr double kRounding = 1e-8;  // Angstrom, far above that of doubles
  const auto seen = seen_in(frames, atoms);
  AxisReason ignored;
  std::size_t best = 0;
  for (std::size_t f = 1; f < seen.size(); ++f)
    if (compare(atoms, seen[f], seen[best], kRounding, ignored) > 0) best = f;
  return frames[best];
}

}  // namespace dravo
