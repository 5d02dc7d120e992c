#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "symmetry/frame_choice.hpp"
#include "symmetry/matrices.hpp"

namespace dravo {
namespace {

using Kind = FixedBy;

/// A centre farther than this from the centre of the rest gives directions, Angstrom.
constexpr double kUsableLever = 0.1;
/// Sine of 5 degrees: the two directions of an axis then differ by 10 in their angle to a line.
constexpr double kDetectableSine = 0.08715574274765817;

/// What a fact says of the three axes in one frame: the larger, the better the frame. Angstrom.
using AxisValues = std::array<double, 3>;

struct FactOfFrames {
  FixedBy kind;
  std::int32_t element;
  std::vector<AxisValues> values;  ///< one for each frame
  double least;                    ///< what counts as a fact
  bool small;                      ///< decides only where nothing else does, with a warning
};

/// Frames whose value is above the first gap; empty where there is no gap.
std::vector<bool> above_gap(const std::vector<AxisValues>& values, std::size_t axis, double gap) {
  const auto [least, most] = std::minmax_element(
      values.begin(), values.end(),
      [axis](const AxisValues& a, const AxisValues& b) { return a[axis] < b[axis]; });
  if (!((*most)[axis] - (*least)[axis] >= gap)) return {};
  std::vector<double> sorted;
  sorted.reserve(values.size());
  for (const AxisValues& v : values) sorted.push_back(v[axis]);
  std::sort(sorted.begin(), sorted.end(), std::greater<>());
  for (std::size_t i = 1; i < sorted.size(); ++i) {
    if (!(sorted[i - 1] - sorted[i] >= gap)) continue;
    std::vector<bool> kept;
    kept.reserve(values.size());
    for (const AxisValues& v : values) kept.push_back(v[axis] > sorted[i]);
    return kept;
  }
  return {};
}

/// The axis with the largest value first; of values that are the same the earlier axis.
std::array<std::size_t, 3> by_size(const std::vector<AxisValues>& values) {
  AxisValues largest{};
  for (const AxisValues& v : values)
    for (std::size_t k = 0; k < 3; ++k) largest[k] = std::max(largest[k], std::abs(v[k]));
  std::array<std::size_t, 3> order{0, 1, 2};
  for (std::size_t pass = 0; pass < 2; ++pass)
    for (std::size_t k = 0; k + 1 < order.size(); ++k)
      if (largest[order[k + 1]] > largest[order[k]] + kSymmetryForAxes)
        std::swap(order[k], order[k + 1]);
  return order;
}

template <class Element>
void keep(std::vector<Element>& elements, const std::vector<bool>& kept) {
  std::size_t n = 0;
  for (std::size_t i = 0; i < elements.size(); ++i)
    if (kept[i]) elements[n++] = elements[i];
  elements.resize(n);
}

/// Axis after axis, each among the frames that the one before has left.
void settle(FactOfFrames fact, FrameChoices& choices) {
  for (const std::size_t axis : by_size(fact.values)) {
    const double size = std::abs(fact.values.front()[axis]);
    const std::vector<bool> kept = above_gap(fact.values, axis, 2.0 * fact.least);
    if (kept.empty()) continue;
    keep(choices.frames, kept);
    keep(fact.values, kept);
    choices.reasons[axis] = {fact.kind, fact.element, size};
    choices.small_fact = choices.small_fact || fact.small;
  }
}

// --- levers -----------------------------------------------------------------------------------

/// From the centre of all other atoms to the centre of an element's; nothing where there are none.
Vec3 lever_of(const CentredAtoms& atoms, std::int32_t element) {
  Vec3 sum{}, others{};
  double mass = 0.0, mass_of_others = 0.0;
  for (std::size_t i = 0; i < atoms.size(); ++i) {
    const bool is_element = atoms.numbers[i] == element;
    (is_element ? mass : mass_of_others) += atoms.masses[i];
    Vec3& centre = is_element ? sum : others;
    centre = centre + atoms.masses[i] * atoms.positions[i];
  }
  if (!(mass_of_others > 0.0)) return {};
  return (1.0 / mass) * sum - (1.0 / mass_of_others) * others;
}

void settle_by_levers(const CentredAtoms& atoms, bool small, FrameChoices& choices) {
  for (const std::int32_t element : atoms.elements) {
    if (choices.frames.size() < 2) return;
    const Vec3 lever = lever_of(atoms, element);
    const double size = length(lever);
    if (!(size > (small ? kSymmetryForAxes : kUsableLever))) continue;
    FactOfFrames fact{
        Kind::lever, element, {}, small ? kSymmetryForAxes : size * kDetectableSine, small};
    for (const AxisRows& rows : choices.frames) {
      const Vec3 v = rows * lever;
      fact.values.push_back({v.x, v.y, v.z});
    }
    settle(std::move(fact), choices);
  }
}

// --- moments ----------------------------------------------------------------------------------

/// A mean of products of coordinates: `a` along the axis, `b` and `c` along the next two.
struct Moment {
  Kind kind;
  int degree;
  double (*product)(double a, double b, double c);
};

constexpr Moment kProduct{Kind::product, 2, [](double, double b, double c) { return b * c; }};

constexpr std::array<Moment, 3> kThirdMoments{{
    {Kind::third_moment, 3, [](double a, double, double) { return a * a * a; }},
    {Kind::third_moment, 3, [](double a, double b, double) { return a * b * b; }},
    {Kind::third_moment, 3, [](double a, double, double c) { return a * c * c; }},
}};

constexpr std::array<Moment, 3> kFourthMoments{{
    {Kind::fourth_moment, 4, [](double, double b, double c) { return b * b * b * c; }},
    {Kind::fourth_moment, 4, [](double, double b, double c) { return b * c * c * c; }},
    {Kind::fourth_moment, 4, [](double a, double b, double c) { return a * a * b * c; }},
}};

/// Of all atoms for element 0.
AxisValues values_in(const CentredAtoms& atoms, const AxisRows& rows, const Moment& moment,
                     std::int32_t element) {
  AxisValues sum{};
  double mass = 0.0;
  for (std::size_t i = 0; i < atoms.size(); ++i) {
    if (element != 0 && atoms.numbers[i] != element) continue;
    const Vec3 p = rows * atoms.positions[i];
    const double m = atoms.masses[i];
    mass += m;
    sum[0] += m * moment.product(p.x, p.y, p.z);
    sum[1] += m * moment.product(p.y, p.z, p.x);
    sum[2] += m * moment.product(p.z, p.x, p.y);
  }
  for (double& value : sum) value /= mass;
  return sum;
}

/// One moment of one element, as a length. `radius`: of gyration.
void settle_by(const CentredAtoms& atoms, double radius, const Moment& moment, std::int32_t element,
               double least, FrameChoices& choices) {
  if (choices.frames.size() < 2) return;
  double per_length = moment.degree;
  for (int power = 1; power < moment.degree; ++power) per_length *= radius;
  FactOfFrames fact{moment.kind, element, {}, least, least < kSafeFact};
  for (const AxisRows& rows : choices.frames) {
    AxisValues values = values_in(atoms, rows, moment, element);
    for (double& value : values) value /= per_length;
    fact.values.push_back(values);
  }
  settle(std::move(fact), choices);
}

void settle_by_moments(const CentredAtoms& atoms, double least, FrameChoices& choices) {
  if (choices.frames.size() < 2) return;
  const double radius = radius_of_gyration(atoms);
  // Those of all atoms vanish along principal axes.
  for (const std::int32_t element : atoms.elements)
    settle_by(atoms, radius, kProduct, element, least, choices);
  std::vector<std::int32_t> all_and_elements{0};
  all_and_elements.insert(all_and_elements.end(), atoms.elements.begin(), atoms.elements.end());
  for (const auto& moments : {kThirdMoments, kFourthMoments})
    for (const std::int32_t element : all_and_elements)
      for (const Moment& moment : moments)
        settle_by(atoms, radius, moment, element, least, choices);
}

}  // namespace

void choose_by_facts(const CentredAtoms& atoms, FrameChoices& choices) {
  settle_by_levers(atoms, false, choices);
  settle_by_moments(atoms, kSafeFact, choices);
  settle_by_levers(atoms, true, choices);
  settle_by_moments(atoms, kSymmetryForAxes, choices);
  if (choices.frames.size() > 1) choose_by_first_atom(atoms, 2.0 * kSymmetryForAxes, choices);
}

}  // namespace dravo
