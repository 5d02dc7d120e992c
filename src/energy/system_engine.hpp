/// Total energies of one system of atoms.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "dravo/energy.hpp"

namespace dravo {

/// A molecule, or a pair, as an engine meets it.
struct EnergySystem {
  std::vector<Label> labels;
  std::vector<Vec3> positions;  ///< Angstrom; an engine that looks for bonds finds them here
  int charge = 0;               ///< e
  int unpaired = 0;             ///< electrons
};

struct SystemEnergy {
  EnergyStatus status = EnergyStatus::ok;  ///< ok, scf_fail or engine_died
  double energy = 0.0;                     ///< Hartree, when ok
  std::string message = {};                ///< what the engine said, unless ok; may be empty
};

/// For one thread.
class SystemEngine {
 public:
  SystemEngine() = default;
  SystemEngine(const SystemEngine&) = delete;
  SystemEngine& operator=(const SystemEngine&) = delete;
  virtual ~SystemEngine() = default;

  /// `positions`: of each atom, Angstrom. `gradient`: as many, Hartree/Bohr, or none. Throws
  /// EngineFailure when no process can be had, InvalidInput for a gradient that it cannot compute.
  virtual SystemEnergy compute(std::span<const Vec3> positions, std::span<Vec3> gradient) = 0;
};

}  // namespace dravo
