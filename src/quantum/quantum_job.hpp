/// What a program of quantum chemistry is to compute of a pair.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dravo/molecule.hpp"

namespace dravo {

enum class QuantumProgram {
  psi4,
  orca,
  gaussian,
  nwchem,
  qchem,
  cp2k,
  gamess,
  xtb,
  qcschema,
  user,  ///< a template of the user's
};

/// How the interaction energy is defined.
enum class Treatment {
  counterpoise,  ///< every molecule with the basis functions of both
  plain,         ///< every molecule with its own functions
  sapt,          ///< perturbation theory, which takes no difference
};

struct QuantumJob {
  QuantumProgram program = QuantumProgram::psi4;
  std::string method;
  std::string basis;                  ///< empty for a program that has none
  std::vector<std::string> keywords;  ///< lines that the user adds
  std::array<int, 2> charges{};       ///< of molecule 1 and molecule 2, e
  std::array<int, 2> multiplicities{1, 1};
  Treatment treatment = Treatment::counterpoise;
  int ghost = 0;   ///< 1 or 2: this molecule lends its functions, the other one is computed alone
  int cores = 1;   ///< of one computation
  int memory = 0;  ///< GB of one computation; 0 for what the program takes by itself
};

/// What a molecule is in a computation.
enum class Presence {
  real,
  ghost,  ///< its basis functions without nuclei and electrons
  absent,
};

/// The atoms of one computation.
struct QuantumSystem {
  std::string_view name;  ///< of its files: "pair", "molecule-1", "molecule-2"
  std::array<Presence, 2> molecules;
};

/// A pose with the number that tells it from others.
struct NumberedPair {
  std::int64_t index;
  const Pair& pair;
};

/// The computations of a pose, each in a file of its own. Programs that take the difference
/// themselves have one.
std::vector<QuantumSystem> systems_of(const QuantumJob& job);

/// Whether one file makes the program compute the interaction energy by itself.
bool in_one_file(const QuantumJob& job);

/// Of the real molecules. Unpaired electrons of two have the same spin.
int charge_of(const QuantumJob& job, const QuantumSystem& system);
int multiplicity_of(const QuantumJob& job, const QuantumSystem& system);

/// Of both molecules.
int charge_of(const QuantumJob& job);
int multiplicity_of(const QuantumJob& job);

/// "psi4", "orca", ...; "template" for the user's.
std::string_view name_of(QuantumProgram program);

/// By its name. Throws InvalidInput with the names that there are.
QuantumProgram quantum_program(std::string_view name);

/// The names of all programs.
std::vector<std::string> quantum_program_names();

/// Counterpoise where the program has ghost atoms.
Treatment usual_treatment(QuantumProgram program);

/// "counterpoise", "plain", "sapt".
std::string_view name_of(Treatment treatment);
Treatment treatment_of(std::string_view name);

/// Fills in the method of a program that has one of its own. Throws InvalidInput for what the
/// program does not have, and for what would break its files.
void complete(QuantumJob& job);

/// Throws InvalidInput for charges and multiplicities that the molecules cannot have.
void require_possible(const QuantumJob& job, const Pair& pair);

}  // namespace dravo
