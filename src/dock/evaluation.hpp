/// Energies for which a process that died is asked again.
#pragma once

#include <span>

#include "dravo/energy.hpp"

namespace dravo {

/// A process that somebody killed must change no result, and a pose that kills every process must
/// end nothing.
template <class Compute>
PoseEnergy asked_again(const Compute& compute) {
  constexpr int kAttempts = 3;
  PoseEnergy found;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    found = compute();
    if (found.status != EnergyStatus::engine_died) break;
  }
  return found;
}

inline PoseEnergy energy_of(EnergyEngine& engine, std::span<const Vec3> positions) {
  return asked_again([&] { return engine.energy(positions); });
}

inline PoseEnergy energy_and_force_of(EnergyEngine& engine, std::span<const Vec3> positions,
                                      const Vec3& centre) {
  return asked_again([&] { return engine.energy_and_force(positions, centre); });
}

}  // namespace dravo
