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
  /// Forces are those on molecule 1, with torques as forces at its lever, kcal/mol/Angstrom. The
  /// optimiser goes on to a force that is none; in flat surfaces minima are up to 0.1 Angstrom off
  /// with ten times as much, and saddles pass for minima.
  static constexpr double kNoForce = 0.001;
  /// What it may leave where an energy is not smooth enough for it.
  static constexpr double kLittleForce = 0.01;

  Minimiser(const RigidPair& pair, EnergyEngine& engine) : pair_(&pair), engine_(&engine) {}

  /// Throws EngineFailure, and InvalidInput for a method without forces for this pair.
  Minimisation minimise(const PoseDegrees& start);

 private:
  [[nodiscard]] DockEnd end_of(const PoseDegrees& pose, const PoseEnergy& found) const;

  const RigidPair* pair_;
  EnergyEngine* engine_;
};

}  // namespace dravo
