/// Total energies of one system of atoms.
#pragma once

#include <cstddef>
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
  /// From 0: an atom of the molecule that has the charge. For GFN-FF, which cannot find it out.
  std::size_t charged_atom = 0;
};

struct SystemEnergy {
  EnergyStatus status = EnergyStatus::ok;  ///< ok, scf_fail or engine_died
  double energy = 0.0;                     ///< Hartree, when ok
  std::string message = {};                ///< why there is none, unless ok
};

/// The system lets no engine run, whatever the molecules.
class NoEngine : public EngineFailure {
 public:
  using EngineFailure::EngineFailure;
};

/// For one thread.
class SystemEngine {
 public:
  SystemEngine() = default;
  SystemEngine(const SystemEngine&) = delete;
  SystemEngine& operator=(const SystemEngine&) = delete;
  virtual ~SystemEngine() = default;

  /// `positions`: of each atom, Angstrom. `gradient`: as many, Hartree/Bohr, or none. Throws
  /// NoEngine when no process can be had, InvalidInput for a gradient that it cannot compute.
  virtual SystemEnergy compute(std::span<const Vec3> positions, std::span<Vec3> gradient) = 0;
};

}  // namespace dravo
