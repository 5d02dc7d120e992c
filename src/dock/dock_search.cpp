#include <algorithm>
#include <cmath>

#include "dock/clusters.hpp"
#include "dock/dock_inside.hpp"
#include "dravo/dock.hpp"

namespace dravo {

struct DockSearch::Inside {
  std::shared_ptr<const DockInside> docking;
  Clusters clusters;
  std::int64_t starts = 0;
  std::int64_t last_new = 0;  ///< how many starts were done when something new was found
};

DockSearch::DockSearch(const Docking& docking)
    : inside_(
          std::make_unique<Inside>(Inside{docking.inside(), Clusters(docking.inside()->same())})) {}

DockSearch::DockSearch(DockSearch&&) noexcept = default;
DockSearch& DockSearch::operator=(DockSearch&&) noexcept = default;
DockSearch::~DockSearch() = default;

void DockSearch::add(const DockStart& start) {
  ++inside_->starts;
  if (start.end != DockEnd::minimum) return;
  const auto& lowest = inside_->clusters.lowest();
  const std::size_t known = lowest.size();
  inside_->clusters.add(inside_->docking->found(start.energy, start.pose));
  if (lowest.size() == known) return;
  const auto below = std::count_if(lowest.begin(), lowest.end(), [&](const FoundMinimum& other) {
    return other.energy < start.energy;
  });
  if (below < static_cast<std::ptrdiff_t>(kLowest)) inside_->last_new = inside_->starts;
}

std::int64_t DockSearch::minima() const {
  return static_cast<std::int64_t>(inside_->clusters.lowest().size());
}

double DockSearch::lowest() const {
  double energy = std::numeric_limits<double>::quiet_NaN();
  for (const FoundMinimum& minimum : inside_->clusters.lowest())
    energy = std::fmin(energy, minimum.energy);
  return energy;
}

bool DockSearch::nothing_new() const {
  return inside_->starts >= kFewestStarts && inside_->starts - inside_->last_new >= kIdleStarts;
}

}  // namespace dravo
