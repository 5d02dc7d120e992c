/// @file
/// Interaction energies of a pair in its poses, computed by engines that exist already: libxtb, or
/// any program that prints an energy.
///
/// @code
/// const dravo::Pair pair = dravo::read_pair({.file = "dimer.xyz", .split = 6}).pair;
/// const dravo::EnergyModel model(pair, {.method = dravo::EnergyMethod::gfn2});
/// dravo::EnergyEngine engine = model.start();  // one per thread
/// const dravo::PoseEnergy found = engine.energy(dravo::Placer(pair).positions({.r = 4.0}));
/// if (found.status == dravo::EnergyStatus::ok) std::cout << found.interaction << " kcal/mol\n";
/// @endcode
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dravo/atoms.hpp"
#include "dravo/error.hpp"
#include "dravo/molecule.hpp"

namespace dravo {

/// One Hartree per molecule in kcal/mol (CODATA 2018).
inline constexpr double kKcalPerMolPerHartree = 627.5094740631;

/// One Bohr in Angstrom (CODATA 2018).
inline constexpr double kAngstromPerBohr = 0.529177210903;

/// How energies are computed.
enum class EnergyMethod {
  gfnff,    ///< GFN-FF, a force field (Spicher and Grimme, Angew. Chem. 2020, 59, 15665)
  gfn2,     ///< GFN2-xTB, tight binding (Bannwarth, Ehlert, Grimme, J. Chem. Theory Comput. 2019,
            ///< 15, 1652)
  gfn1,     ///< GFN1-xTB (Grimme, Bannwarth, Shushkov, J. Chem. Theory Comput. 2017, 13, 1989)
  command,  ///< a program of the user's
};

/// "gfnff", "gfn2", "gfn1", "command".
std::string_view name_of(EnergyMethod method);

/// By its name. Throws InvalidInput with the names that there are.
EnergyMethod energy_method(std::string_view name);

/// The names of all methods.
std::vector<std::string> energy_method_names();

/// Energy per molecule of what a program prints.
enum class EnergyUnit {
  hartree,   ///< atomic unit
  ev,        ///< electron volts
  kcal_mol,  ///< kcal/mol
  kj_mol,    ///< kJ/mol
};

/// "hartree", "ev", "kcal/mol", "kj/mol".
std::string_view name_of(EnergyUnit unit);

/// By its name. Throws InvalidInput with the names that there are.
EnergyUnit energy_unit(std::string_view name);

/// The names of all units.
std::vector<std::string> energy_unit_names();

/// A program that computes the energy of one system at a time.
struct EnergyCommand {
  /// A command line of the shell. It runs in a folder of its own, with one thread for OpenMP and
  /// OpenBLAS. {xyz} becomes the name of an xyz file of the system there, {charge} its net charge,
  /// {unpaired} its unpaired electrons, {here} the path of the folder of this process.
  std::string run;
  /// A regular expression (ECMAScript) with one group, which holds the energy, looked for in each
  /// line that the program prints. The last match counts.
  std::string read;
  EnergyUnit unit = EnergyUnit::hartree;  ///< of that energy
};

/// A method, and what it has to know about the molecules.
struct EnergyOptions {
  EnergyMethod method = EnergyMethod::gfnff;  ///< by which energies are computed
  std::array<int, 2> charges{};               ///< net charges of molecule 1 and molecule 2, e
  std::array<int, 2> unpaired{};  ///< their unpaired electrons; the pair has all of them
  EnergyCommand command{};        ///< of EnergyMethod::command
};

/// What became of the energy of a pose.
enum class EnergyStatus : std::uint8_t {
  ok,           ///< it was computed
  clash,        ///< not computed: atoms closer than `kClash` times the sum of their radii
  scf_fail,     ///< the engine found no energy
  nonphysical,  ///< below `kLowestInteraction` or above `kHighestInteraction`
  engine_died,  ///< the process of the engine ended, and so did another one that tried again
};

/// All of them.
inline constexpr std::array<EnergyStatus, 5> kEnergyStatuses{
    EnergyStatus::ok, EnergyStatus::clash, EnergyStatus::scf_fail, EnergyStatus::nonphysical,
    EnergyStatus::engine_died};

/// "ok", "clash", ...: as tables have it.
std::string_view name_of(EnergyStatus status);

/// By its name; empty for anything else.
std::optional<EnergyStatus> energy_status(std::string_view name);

/// Poses with a smaller clearance (`ContactSurvey::clearance`) are not computed.
inline constexpr double kClash = 0.5;

/// Energies below this, kcal/mol, come from collapsed geometries, which an engine may take without
/// an error.
inline constexpr double kLowestInteraction = -500.0;

/// So do energies above this, kcal/mol.
inline constexpr double kHighestInteraction = 5000.0;

/// On molecule 1 as a rigid body.
struct RigidForce {
  Vec3 force;   ///< kcal/mol/Angstrom
  Vec3 torque;  ///< about a point that is told, kcal/mol/radian
};

/// Energy of one pose, or why there is none.
struct PoseEnergy {
  EnergyStatus status = EnergyStatus::ok;  ///< what became of it
  /// kcal/mol; not a number unless the status is ok.
  double interaction = std::numeric_limits<double>::quiet_NaN();
  RigidForce on_molecule1{};  ///< when it was asked for and the status is ok
};

/// An engine cannot be had, or cannot compute the molecules alone. The message says what is missing
/// or what the engine said.
class EngineFailure : public Error {
 public:
  using Error::Error;
};

/// Computes poses of one pair, in a process of its own that lives as long as this. For one thread.
class EnergyEngine {
 public:
  /// For the library itself.
  struct Inside;

  /// For the library itself; EnergyModel::start makes engines.
  explicit EnergyEngine(std::unique_ptr<Inside> inside);

  /// The process goes with it; what is left may only be assigned to or destroyed.
  EnergyEngine(EnergyEngine&&) noexcept;

  /// Ends its own process, and takes over the other one.
  EnergyEngine& operator=(EnergyEngine&&) noexcept;

  /// Ends the process.
  ~EnergyEngine();

  /// The pair with its atoms at these positions, N, Angstrom. Depends on them alone. The status is
  /// never clash. Throws InvalidInput for another number of atoms, EngineFailure when a process
  /// that died cannot be replaced.
  [[nodiscard]] PoseEnergy energy(std::span<const Vec3> positions);

  /// The same with force and torque; the torque is about `centre`. Of GFN2 and GFN1 the energy is
  /// converged further, and differs by up to 1e-6 kcal/mol. Throws InvalidInput for an engine that
  /// has no forces (EnergyMethod::command).
  [[nodiscard]] PoseEnergy energy_and_force(std::span<const Vec3> positions, const Vec3& centre);

 private:
  std::unique_ptr<Inside> inside_;
};

/// A method for one pair: what is checked and computed once. Immutable, cheap to copy, and usable
/// from several threads at once.
class EnergyModel {
 public:
  /// Computes the reference energies. Throws InvalidInput for charges that do not fit the numbers
  /// of electrons, for elements that the method does not have, and with GFN-FF for two net charges
  /// and a charged molecule of several parts; EngineFailure.
  EnergyModel(const Pair& pair, const EnergyOptions& options);

  /// As they were given.
  [[nodiscard]] const EnergyOptions& options() const;

  /// "libxtb 6.5.1", or "command".
  [[nodiscard]] const std::string& engine() const;

  /// Hartree: what the energy of a pose is counted from. GFN-FF: that of the pair 100 Angstrom
  /// apart. Otherwise those of molecule 1 and molecule 2 alone.
  [[nodiscard]] const std::vector<double>& references() const;

  /// Another one for each thread. Throws EngineFailure.
  [[nodiscard]] EnergyEngine start() const;

 private:
  struct Inside;
  std::shared_ptr<const Inside> inside_;
};

}  // namespace dravo
