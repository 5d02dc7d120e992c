/// Comparison of the grid walk and the searches with the literal scans, bit for bit, and the frames
/// that they are compared on.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <ios>
#include <ostream>
#include <random>
#include <vector>

#include "common/constants.hpp"
#include "common/frame.hpp"
#include "orientation/alignment_fit.hpp"
#include "orientation/euler_search.hpp"
#include "orientation/grid_walk.hpp"
#include "orientation/rotations.hpp"
#include "support/literal_scan.hpp"
#include "support/not_finite.hpp"

namespace dravo::test {

using Random = std::mt19937_64;
using FitRule = AxesMatchRule<FitConvention>;
using SearchRule = AxesMatchRule<SearchConvention>;

inline constexpr AxisTriple kLaboratory{{{0.0, 0.0, 1.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}}};

inline double uniform(Random& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

/// Numbers in the order in which they were met, compared by their bits.
class Trace {
 public:
  void add(double value) { words_.push_back(std::bit_cast<std::uint64_t>(value)); }
  void add(std::int32_t value) { words_.push_back(static_cast<std::uint64_t>(value)); }
  void add(const Turn& turn) {
    add(turn.radians);
    add(turn.sine);
    add(turn.cosine);
  }
  void add(const AxesMatch& match) {
    add(match.verificador);
    for (const AxisDeviation& d : match.deviations) {
      add(d.cosine);
      add(d.degrees);
    }
    add(match.soma_diferencas);
  }
  void add(const AcceptedPoint& accepted) {
    add(accepted.point.outer);
    add(accepted.point.inner);
    add(accepted.match);
  }
  void add(const BestPoint& best) {
    for (const double value : {best.outer, best.middle, best.inner}) add(value);
    for (const double value : best.deviations) add(value);
    add(best.soma_diferencas);
  }
  void add(const ScanPass& pass) {
    for (const double value : {pass.outer_start, pass.inner_start, pass.step, pass.tolerance})
      add(value);
    add(pass.points);
  }
  bool operator==(const Trace&) const = default;

 private:
  std::vector<std::uint64_t> words_;
};

/// Accepted points of sums up to a limit.
inline Trace trace_of(const AcceptedPoints& points, double sum_limit) {
  Trace trace;
  for (const AcceptedPoint& p : points)
    if (p.match.soma_diferencas <= sum_limit) trace.add(p);
  return trace;
}

struct Hexadecimal {
  const AxisTriple& axes;
};
inline std::ostream& operator<<(std::ostream& out, const Hexadecimal& value) {
  out << std::hexfloat;
  for (const Vec3& v : value.axes) out << "  {" << v.x << ", " << v.y << ", " << v.z << "}\n";
  return out << std::defaultfloat;
}

/// What a failure tells of the axes and the pass, in the order z, x, y.
template <class Convention>
::testing::Message story(const AxesMatchRule<Convention>& rule, const ScanPass& pass) {
  ::testing::Message text;
  text << "moving:\n"
       << Hexadecimal{rule.axes().moving} << "target:\n"
       << Hexadecimal{rule.axes().target} << std::hexfloat << "middle " << rule.middle()
       << ", outer from " << pass.outer_start << ", inner from " << pass.inner_start << ", step "
       << pass.step << ", tolerance " << pass.tolerance << std::defaultfloat << ", points "
       << pass.points;
  return text;
}

/// The points that a walker leads to.
struct Walk {
  std::size_t visits = 0;
  bool in_order = true;  ///< outer ascending, inner ascending within it, none twice
  AcceptedPoints accepted;
};

template <class Convention>
Walk walk(GridWalker& walker, const AxesMatchRule<Convention>& rule, const ScanPass& pass,
          double sum_limit) {
  Walk seen;
  double outer = -kInfinity;
  double inner = -kInfinity;
  walker.visit(sum_limit, [&](const GridPoint& point) {
    const double o = point.outer.radians, i = point.inner.radians;
    if (!(o > outer || (o == outer && i > inner))) seen.in_order = false;
    outer = o;
    inner = i;
    ++seen.visits;
    if (const auto match = rule.judge(point, pass.tolerance, sum_limit))
      seen.accepted.push_back({point, *match});
  });
  return seen;
}

/// Sum limits at, next to and between the accepted sums, and the one degree that a point must beat.
inline std::vector<double> sum_limits(const AcceptedPoints& accepted) {
  std::vector<double> limits{1.0, 0.0};
  if (accepted.empty()) return limits;
  std::vector<double> sums;
  for (const AcceptedPoint& p : accepted) sums.push_back(p.match.soma_diferencas);
  std::sort(sums.begin(), sums.end());
  const double least = sums.front();
  limits.insert(limits.end(), {least, std::nextafter(least, 0.0), 2.0 * least + 1e-13,
                               sums[sums.size() / 4], sums[sums.size() / 2], sums.back()});
  return limits;
}

/// The walker against the points that the literal scan of the pass accepts, without and with sum
/// limits. Returns the number of visits without.
template <class Convention>
std::size_t expect_walk_misses_nothing(GridWalker& walker, const AxesMatchRule<Convention>& rule,
                                       const ScanPass& pass, const AcceptedPoints& literal) {
  walker.begin(pass);
  const Walk unlimited = walk(walker, rule, pass, kInfinity);
  EXPECT_TRUE(unlimited.in_order) << story(rule, pass);
  EXPECT_EQ(unlimited.accepted.size(), literal.size()) << story(rule, pass);
  EXPECT_TRUE(trace_of(unlimited.accepted, kInfinity) == trace_of(literal, kInfinity))
      << story(rule, pass);
  for (const double limit : sum_limits(literal)) {
    const Walk limited = walk(walker, rule, pass, limit);
    EXPECT_TRUE(limited.in_order) << story(rule, pass) << "\nlimit " << limit;
    EXPECT_TRUE(trace_of(limited.accepted, limit) == trace_of(literal, limit))
        << story(rule, pass) << "\nlimit " << limit;
  }
  return unlimited.visits;
}

/// One pass, walked and literal; returns the number of accepted points.
template <class Convention>
std::size_t expect_same_pass(const AxesMatchRule<Convention>& rule, const ScanPass& pass) {
  GridWalker walker(rule.axes(), rule.allowed());
  const AcceptedPoints literal = literal_pass(rule, pass);
  expect_walk_misses_nothing(walker, rule, pass, literal);
  return literal.size();
}

/// Each pass of a literal search; returns how many points all passes accept.
template <class Convention>
std::size_t expect_same_passes(const AxesMatchRule<Convention>& rule,
                               const std::vector<LiteralPass>& literal) {
  GridWalker walker(rule.axes(), rule.allowed());
  std::size_t accepted = 0;
  for (const LiteralPass& done : literal) {
    expect_walk_misses_nothing(walker, rule, done.pass, done.accepted);
    accepted += done.accepted.size();
  }
  return accepted;
}

// --- frames -----------------------------------------------------------------------------------

struct Angles {
  double outer;
  double middle;
  double inner;
};

/// Molecule 2's frame, Y, X, Z, from its axes.
inline MoleculeFrame frame2_of(const Vec3& X, const Vec3& Y, const Vec3& Z, const Vec3& cm = {}) {
  return {cm, {cm + Y, cm + X, cm + Z}};
}

/// Molecule 1's frame, z, y, x, from its axes.
inline MoleculeFrame frame1_of(const Vec3& x, const Vec3& y, const Vec3& z, const Vec3& cm = {}) {
  return {cm, {cm + z, cm + y, cm + x}};
}

/// The frame that is laid on the laboratory axes by these angles.
inline MoleculeFrame frame_to_fit(const Angles& angles, const Vec3& cm = {}) {
  const auto& [outer, middle, inner] = angles;
  const Matrix3 r = alignment_matrix(Turn::of(outer), Turn::of(middle), Turn::of(inner));
  return frame2_of(r.row[0], r.row[1], r.row[2], cm);
}

/// Molecule 1 as the laboratory axes turned by these angles.
inline MoleculeFrame turned_frame(const Angles& angles, const Vec3& cm = {}) {
  const Matrix3 r = transposed(euler_matrix(angles.inner, angles.middle, angles.outer));
  return frame1_of(r.row[0], r.row[1], r.row[2], cm);
}

inline MoleculeFrame laboratory_frame() {
  return frame2_of(kLaboratory[1], kLaboratory[2], kLaboratory[0]);
}

/// Every rotation is as likely as every other.
inline Angles random_angles(Random& random) {
  return {uniform(random, 0.0, kTwoPi), std::acos(uniform(random, -1.0, 1.0)),
          uniform(random, 0.0, kTwoPi)};
}

/// Half of the centres of mass are the origin; the others leave rounding errors in the axes.
inline Vec3 random_centre(Random& random) {
  if (random() % 2 == 0) return {};
  const auto coordinate = [&] { return uniform(random, -10.0, 10.0); };
  const double x = coordinate(), y = coordinate();
  return {x, y, coordinate()};
}

/// The laboratory axes with errors of nothing or of 1e-16 to 1e-9 in each component.
inline MoleculeFrame nearly_laboratory_frame(Random& random) {
  MoleculeFrame frame = laboratory_frame();
  const int digits = 8 + static_cast<int>(random() % 9);
  const double error = digits == 8 ? 0.0 : std::pow(10.0, -digits);
  for (Vec3& tip : frame.tips) {
    tip.x += uniform(random, -error, error);
    tip.y += uniform(random, -error, error);
    tip.z += uniform(random, -error, error);
  }
  return frame;
}

inline FitRule fit_rule(const MoleculeFrame& molecule2) {
  using namespace axis_of_molecule2;
  return {
      {molecule2.axis(Z), molecule2.axis(X), molecule2.axis(Y)}, kLaboratory, tilt_of(molecule2)};
}

inline SearchRule search_rule(const PairOfFrames& frames) {
  namespace one = axis_of_molecule1;
  namespace two = axis_of_molecule2;
  const auto& tips = frames[1].tips;
  const AxisTriple target{frames[0].axis(one::z), frames[0].axis(one::x), frames[0].axis(one::y)};
  const AxisTriple moving{tips[two::Z], tips[two::X], tips[two::Y]};
  const double beta = tangent_angle(modulus(cross(target[0], moving[0])), dot(target[0], moving[0]),
                                    modulus(target[0]) * modulus(moving[0]));
  return {moving, target, beta};
}

// --- whole searches ---------------------------------------------------------------------------

inline Trace trace_of_fit(const AlignmentFit& fit, int calls) {
  Trace trace;
  for (const double v : {fit.best_z1, fit.best_x1, fit.best_y1, fit.soma_diferencas}) trace.add(v);
  trace.add(fit.found ? 1 : 0);
  trace.add(calls);
  return trace;
}

inline Trace literal_fit_trace(const std::vector<LiteralPass>& passes) {
  int improvements = 0;
  int calls = 0;
  for (const LiteralPass& done : passes) {
    improvements += done.improvements;
    if (improvements == 0) ++calls;
  }
  const BestPoint& best = passes.back().best;
  return trace_of_fit({best.outer, best.middle, best.inner, best.soma_diferencas, improvements > 0},
                      calls);
}

/// Everything about a fit; returns how many points all passes accept.
inline std::size_t expect_same_fit(const MoleculeFrame& molecule2) {
  const FitRule rule = fit_rule(molecule2);
  const std::vector<LiteralPass> literal = literal_search(rule);
  int calls = 0;
  const AlignmentFit fit = fit_alignment(molecule2, [&] { ++calls; });
  EXPECT_TRUE(trace_of_fit(fit, calls) == literal_fit_trace(literal))
      << story(rule, first_scan_pass());
  return expect_same_passes(rule, literal);
}

inline void trace_match(Trace& trace, const EulerAngles& point, const AxesMatch& match,
                        double to_beat) {
  for (const double value : {point.alpha, point.beta, point.gamma}) trace.add(value);
  trace.add(match);
  trace.add(to_beat);
}

inline void trace_pass(Trace& trace, int number, const BestPoint& best, const ScanPass& next,
                       double beta) {
  trace.add(number);
  trace.add(best);
  trace.add(next);
  trace.add(beta);
}

inline Trace watched_trace(const PairOfFrames& frames) {
  Trace trace;
  EulerSearchWatcher watcher;
  watcher.accepted = [&](const EulerAngles& point, const AxesMatch& match, double to_beat) {
    trace_match(trace, point, match, to_beat);
  };
  watcher.pass_done = [&](int number, const BestPoint& best, const ScanPass& next, double beta) {
    trace_pass(trace, number, best, next, beta);
  };
  const auto found = search_euler_angles(frames, watcher);
  trace.add(found ? 1 : 0);
  if (found)
    for (const double value : {found->alpha, found->beta, found->gamma}) trace.add(value);
  return trace;
}

inline Trace literal_trace(const std::vector<LiteralPass>& passes, double beta) {
  Trace trace;
  if (passes.front().accepted.empty()) {
    trace.add(0);
    return trace;
  }
  int number = 0;
  for (const LiteralPass& done : passes) {
    for (std::size_t k = 0; k < done.accepted.size(); ++k) {
      const auto& [point, match] = done.accepted[k];
      trace_match(trace, {point.inner.radians, beta, point.outer.radians}, match,
                  done.parametro_diferencas[k]);
    }
    trace_pass(trace, ++number, done.best, done.next, beta);
  }
  trace.add(1);
  const BestPoint& best = passes.back().best;
  for (const double value : {best.inner, best.middle, best.outer}) trace.add(value);
  return trace;
}

/// Everything about an Euler search; returns how many points all passes accept.
inline std::size_t expect_same_search(const PairOfFrames& frames) {
  const SearchRule rule = search_rule(frames);
  const std::vector<LiteralPass> literal = literal_search(rule);
  EXPECT_TRUE(watched_trace(frames) == literal_trace(literal, rule.middle()))
      << story(rule, first_scan_pass());
  return expect_same_passes(rule, literal);
}

}  // namespace dravo::test
