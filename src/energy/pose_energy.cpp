#include "energy/pose_energy.hpp"

#include <cmath>

namespace dravo {

/// The last term makes -0 to 0.
double rounded_energy(double interaction) {
  constexpr double kMillion = 1e6;
  return std::round(interaction * kMillion) / kMillion + 0.0;
}

PoseEnergy energy_unless_clash(EnergyEngine& engine, std::span<const Vec3> positions,
                               double clearance) {
  if (clearance < kClash) return {EnergyStatus::clash};
  PoseEnergy found = engine.energy(positions);
  found.interaction = rounded_energy(found.interaction);
  return found;
}

}  // namespace dravo
