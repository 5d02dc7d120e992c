/// Energies of poses as results have them.
#pragma once

#include <span>

#include "dravo/energy.hpp"

namespace dravo {

/// To six decimals, those of tables, and never -0.
double rounded_energy(double interaction);

/// Rounded. A pose with this clearance may clash, and is not computed then.
PoseEnergy energy_unless_clash(EnergyEngine& engine, std::span<const Vec3> positions,
                               double clearance);

}  // namespace dravo
