/// What programs of quantum chemistry wrote: energies, and the atoms that they belong to.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "dravo/energy.hpp"
#include "quantum/quantum_job.hpp"

namespace dravo {

/// How far a program came.
enum class OutputState {
  finished,
  failed,      ///< it says so
  unfinished,  ///< it does not say that it ended
};

/// Electrostatics, exchange, induction, dispersion.
using SaptTerms = std::array<double, 4>;
inline constexpr std::array kSaptTerms{"elst", "exch", "ind", "disp"};

struct OutputAtom {
  std::string symbol;  ///< of a ghost too, in any case
  Vec3 position;       ///< Angstrom
};

/// Of one file.
struct QuantumOutput {
  OutputState state = OutputState::unfinished;
  /// Hartree: the interaction energy of a job in one file, else the total energy.
  std::optional<double> energy = std::nullopt;
  std::optional<SaptTerms> terms = std::nullopt;  ///< Hartree
  /// All that it shows, some of them several times; empty for a program that shows none.
  std::vector<OutputAtom> atoms = {};
};

QuantumOutput read_psi4(const QuantumJob& job, std::string_view text);
QuantumOutput read_nwchem(const QuantumJob& job, std::string_view text);
QuantumOutput read_cp2k(const QuantumJob& job, std::string_view text);
QuantumOutput read_xtb(const QuantumJob& job, std::string_view text);
QuantumOutput read_qcschema(const QuantumJob& job, std::string_view text);

/// How the output of any other program is read.
struct UserReading {
  std::regex expression;  ///< with one group, the energy; the last match counts
  EnergyUnit unit = EnergyUnit::hartree;
};

/// Without atoms. Finished when there is an energy.
QuantumOutput read_by(const UserReading& reading, std::string_view text);

/// Whether this program's own output can be read.
bool is_readable(QuantumProgram program);

/// By the program of the job, which is readable.
QuantumOutput read_output(const QuantumJob& job, std::string_view text);

/// Whether all these atoms are atoms of the pair, and each of the pair is among them. Programs show
/// six decimals at least.
bool are_those_of(const std::vector<OutputAtom>& atoms, const std::vector<OutputAtom>& pair);

}  // namespace dravo
