/// What docking knows of its pair.
#pragma once

#include <cstdint>

#include "dock/rigid_pair.hpp"
#include "dock/same_minimum.hpp"
#include "dravo/dock.hpp"

namespace dravo {

/// Constant, and usable from several threads.
class DockInside {
 public:
  /// Throws what a `Docking` throws.
  DockInside(const Pair& pair, const DockOptions& options);

  [[nodiscard]] const DockOptions& options() const { return options_; }
  [[nodiscard]] const EnergyModel& search() const { return search_; }
  [[nodiscard]] const EnergyModel& score() const { return score_; }
  [[nodiscard]] const Placer& placer() const { return placer_; }
  [[nodiscard]] const RigidPair& rigid() const { return rigid_; }
  [[nodiscard]] const SameMinimum& same() const { return same_; }

  /// Where start `number` begins: a direction and an orientation, each as likely as all others, and
  /// the distance of the first contact.
  [[nodiscard]] PoseDegrees beginning_of(std::int64_t number) const;

  [[nodiscard]] FoundMinimum found(double energy, const PoseDegrees& pose) const {
    return found_minimum(energy, placer_.positions(pose));
  }

 private:
  DockOptions options_;
  EnergyModel search_;
  EnergyModel score_;
  Placer placer_;
  RigidPair rigid_;
  SameMinimum same_;
};

}  // namespace dravo
