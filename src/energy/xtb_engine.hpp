/// Energies by libxtb, in a process of its own.
#pragma once

#include <memory>
#include <string>

#include "energy/system_engine.hpp"

namespace dravo {

/// "libxtb 6.5.1"; "libxtb" where the version was not known when this was built.
std::string xtb_version();

/// `method` is one of libxtb. Throws InvalidInput for elements that it does not have; EngineFailure
/// when the library is not there or does not take the system.
std::unique_ptr<SystemEngine> start_xtb(const EnergySystem& system, EnergyMethod method);

}  // namespace dravo
