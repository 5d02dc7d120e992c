/// The grid scans without any shortcut: every point of every pass is judged. What a faster scan
/// shows and finds is compared with these.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "common/constants.hpp"
#include "common/vector.hpp"
#include "orientation/grid_scan.hpp"

namespace dravo::test {

/// Conventions of the alignment fit.
struct FitConvention {
  static Matrix3 rotation(const Turn& outer, const Turn& middle, const Turn& inner) {
    return alignment_matrix(outer, middle, inner);
  }
  static double degrees(double radians) { return radians * kDegreesPerRadian; }
};

/// Conventions of the Euler search: outer angle gamma, inner angle alpha.
struct SearchConvention {
  static Matrix3 rotation(const Turn& outer, const Turn& middle, const Turn& inner) {
    return euler_matrix(inner, middle, outer);
  }
  static double degrees(double radians) { return degrees_by_pi(radians); }
};

struct AcceptedPoint {
  GridPoint point;
  AxesMatch match;
};
using AcceptedPoints = std::vector<AcceptedPoint>;

/// The values of an angle in a pass, by repeated addition.
inline std::vector<Turn> grid_turns(double start, const ScanPass& pass) {
  std::vector<Turn> turns;
  double radians = start;
  for (std::int32_t i = 0; i < pass.points; ++i, radians += pass.step)
    turns.push_back(Turn::of(radians));
  return turns;
}

/// What a pass accepts, in scan order.
template <class Convention>
AcceptedPoints literal_pass(const AxesMatchRule<Convention>& rule, const ScanPass& pass) {
  const std::vector<Turn> inner_turns = grid_turns(pass.inner_start, pass);
  AcceptedPoints accepted;
  for (const Turn& outer : grid_turns(pass.outer_start, pass))
    for (const Turn& inner : inner_turns) {
      const GridPoint point{outer, inner};
      if (const auto match = rule.judge(point, pass.tolerance)) accepted.push_back({point, *match});
    }
  return accepted;
}

/// A pass of a search.
struct LiteralPass {
  ScanPass pass{};
  AcceptedPoints accepted;
  std::vector<double> parametro_diferencas;  ///< before each accepted point
  int improvements = 0;
  BestPoint best;   ///< after the pass
  ScanPass next{};  ///< the pass that follows
};

/// Always ten passes. A search that gives up after its first pass is the first of them.
template <class Convention>
std::vector<LiteralPass> literal_search(const AxesMatchRule<Convention>& rule) {
  std::vector<LiteralPass> passes;
  BestPoint best;
  ScanPass pass = first_scan_pass();
  for (int number = 1; number <= kScanPasses; ++number) {
    LiteralPass done;
    done.pass = pass;
    done.accepted = literal_pass(rule, pass);
    Ranking ranking;
    for (const auto& [point, match] : done.accepted) {
      done.parametro_diferencas.push_back(ranking.parametro_diferencas());
      if (ranking.offer(point, rule.middle(), match, best)) ++done.improvements;
    }
    pass = refined_scan_pass(pass, number, best.outer, best.inner);
    done.best = best;
    done.next = pass;
    passes.push_back(done);
  }
  return passes;
}

}  // namespace dravo::test
