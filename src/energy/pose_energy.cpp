#include "energy/pose_energy.hpp"

#include <algorithm>
#include <cmath>

namespace dravo {

/// Of a pair of a dozen atoms; the work grows with the square of their number.
std::int64_t poses_of_a_moment(EnergyMethod method, std::int32_t atoms) {
  constexpr double kDozen = 12.0;
  constexpr double kForceField = 256.0, kTightBinding = 8.0;
  if (method == EnergyMethod::command) return 1;
  const double poses = method == EnergyMethod::gfnff ? kForceField : kTightBinding;
  const double size = std::max(atoms / kDozen, 1.0);
  return std::max<std::int64_t>(std::llround(poses / (size * size)), 1);
}

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
