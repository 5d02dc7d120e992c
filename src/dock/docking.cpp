#include <fmt/format.h>

#include <algorithm>

#include "dock/dock_inside.hpp"
#include "dock/final_minima.hpp"
#include "dock/minimiser.hpp"
#include "dravo/dock.hpp"
#include "dravo/error.hpp"
#include "molecules/van_der_waals_radii.hpp"
#include "scan/random_pose.hpp"

namespace dravo {
namespace {

/// Molecules begin closer than they will be, which few poses outlive with another bond.
ContactCriterion contact_for(const Pair& pair) {
  constexpr double kOfRadii = 0.8;
  constexpr double kWithoutRadii = 2.7;  // as between two atoms of carbon
  const std::vector<double> radii = van_der_waals_radii(pair.labels());
  const bool all_known =
      std::none_of(radii.begin(), radii.end(), [](double radius) { return std::isnan(radius); });
  return all_known ? ContactCriterion::van_der_waals(kOfRadii)
                   : ContactCriterion::distance(kWithoutRadii);
}

EnergyModel model_of(const Pair& pair, EnergyMethod method, const DockOptions& options) {
  if (method == EnergyMethod::command)
    throw InvalidInput("docking needs forces, which the method \"command\" does not have");
  return EnergyModel(pair, {method, options.charges, options.unpaired, {}});
}

}  // namespace

DockInside::DockInside(const Pair& pair, const DockOptions& options)
    : options_(options),
      search_(model_of(pair, options.search, options)),
      score_(options.score == options.search ? search_ : model_of(pair, options.score, options)),
      placer_(pair, {.placing = Placing::exact, .criterion = contact_for(pair)}),
      rigid_(placer_),
      same_(pair) {}

PoseDegrees DockInside::beginning_of(std::int64_t number) const {
  PoseDegrees pose = random_pose(options_.seed, number - 1);
  pose.r = placer_.touching_distance(pose);
  return pose;
}

Docking::Docking(const Pair& pair, const DockOptions& options)
    : inside_(std::make_shared<const DockInside>(pair, options)) {}

const DockOptions& Docking::options() const { return inside_->options(); }
const Placer& Docking::placer() const { return inside_->placer(); }
const EnergyModel& Docking::search_model() const { return inside_->search(); }
const EnergyModel& Docking::score_model() const { return inside_->score(); }

Docking::Starter Docking::starter() const { return Starter(inside_); }

Docking::Starter::Starter(std::shared_ptr<const DockInside> docking)
    : docking_(std::move(docking)), engine_(docking_->search().start()) {}

DockStart Docking::Starter::run(std::int64_t number) {
  const Minimisation found =
      Minimiser(docking_->rigid(), engine_).minimise(docking_->beginning_of(number));
  return {number, found.end, found.energy, found.pose, found.evaluations};
}

std::vector<DockMinimum> Docking::minima(
    std::span<const DockStart> starts, int threads,
    const std::function<void(std::int64_t, std::int64_t)>& progress) const {
  return final_minima(*inside_, starts, threads, progress);
}

}  // namespace dravo
