/// Goes downhill in the six coordinates of a rigid molecule.
#pragma once

#include <cstdint>
#include <limits>

#include "dock/rigid_pair.hpp"
#include "dravo/dock.hpp"
#include "dravo/energy.hpp"

namespace dravo {

struct Minimisation {
  DockEnd end = DockEnd::failed;
  PoseDegrees pose;
  double energy = std::numeric_limits<double>::quiet_NaN();  ///< of this pose, kcal/mol
  std::int64_t evaluations = 0;
};

/// For one thread. The pair and the engine are not owned.
class Minimiser {
 public:
  /// A smaller force is none, kcal/mol/Angstrom. Torques count as forces at the lever of
  /// molecule 1.
  static constexpr double kNoForce = 0.01;

  Minimiser(const RigidPair& pair, EnergyEngine& engine) : pair_(&pair), engine_(&engine) {}

  /// Throws EngineFailure.
  Minimisation minimise(const PoseDegrees& start);

 private:
  [[nodiscard]] DockEnd end_of(const PoseDegrees& pose, const PoseEnergy& found) const;

  const RigidPair* pair_;
  EnergyEngine* engine_;
};

}  // namespace dravo
