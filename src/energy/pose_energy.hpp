/// Energies of poses as results have them.
#pragma once

#include <cstdint>
#include <span>

#include "dravo/energy.hpp"

namespace dravo {

/// How many poses of so many atoms take about a tenth of a second, at most.
std::int64_t poses_of_a_moment(EnergyMethod method, std::int32_t atoms);

/// To six decimals, those of tables, and never -0.
double rounded_energy(double interaction);

/// Rounded. A pose with this clearance may clash, and is not computed then.
PoseEnergy energy_unless_clash(EnergyEngine& engine, std::span<const Vec3> positions,
                               double clearance);

}  // namespace dravo
