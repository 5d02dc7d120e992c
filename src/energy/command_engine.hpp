/// Energies by a program of the user's, one process a computation.
#pragma once

#include <memory>

#include "energy/system_engine.hpp"

namespace dravo {

/// Throws InvalidInput for a command without {xyz}, and for an expression that is none or has not
/// one group; EngineFailure.
std::unique_ptr<SystemEngine> start_command(const EnergySystem& system,
                                            const EnergyCommand& command);

}  // namespace dravo
