/// Energies by a program of the user's, one process a computation.
#pragma once

#include <memory>
#include <regex>
#include <string>

#include "energy/system_engine.hpp"

namespace dravo {

/// Throws InvalidInput for a command line that lacks {xyz}, or {charge} or {unpaired} where there
/// are any: it would compute another system without a word.
void require_names(const std::string& line, bool charged, bool unpaired);

/// One of this unit, in Hartree.
double hartree(EnergyUnit unit);

/// Throws InvalidInput for an expression that is none or has not one group.
std::regex energy_expression(const std::string& text);

/// Throws InvalidInput for a command without {xyz}, and for an expression that is none or has not
/// one group; EngineFailure.
std::unique_ptr<SystemEngine> start_command(const EnergySystem& system,
                                            const EnergyCommand& command);

}  // namespace dravo
