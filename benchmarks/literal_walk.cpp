/// A walk that leaves nothing out: every point of every pass is visited.
#include <utility>

#include "orientation/grid_walk.hpp"

namespace dravo {

GridWalker::GridWalker(const ScanAxes& axes, Allowed allowed)
    : axes_(axes), allowed_(std::move(allowed)) {}

void GridWalker::begin(const ScanPass& pass) { pass_ = pass; }

std::optional<GridPoint> GridWalker::likely_best() const { return std::nullopt; }

void GridWalker::visit(double, const Visit& visit) {
  GridPoint point{};
  double outer = pass_.outer_start;
  for (std::int32_t i = 0; i < pass_.points; ++i, outer += pass_.step) {
    point.outer = Turn::of(outer);
    double inner = pass_.inner_start;
    for (std::int32_t j = 0; j < pass_.points; ++j, inner += pass_.step) {
      point.inner = Turn::of(inner);
      visit(point);
    }
  }
}

}  // namespace dravo
