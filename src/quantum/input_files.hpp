/// Input files of programs of quantum chemistry, each the whole text of a file for one computation.
///
/// No program may turn or move the atoms: a keyword that keeps it from that is always there.
/// Coordinates are in Angstrom with eight decimals, those of QCSchema in Bohr with all digits.
#pragma once

#include <string>

#include "quantum/quantum_job.hpp"

namespace dravo {

/// In fragments, which energy(..., bsse_type=) and SAPT need; or one molecule beside Gh() atoms.
std::string psi4_input(const QuantumJob& job, const QuantumSystem& system,
                       const NumberedPair& pose);

/// Ghost atoms have a colon.
std::string orca_input(const QuantumJob& job, const QuantumSystem& system,
                       const NumberedPair& pose);

/// Counterpoise=2 with fragments; ghost atoms are Bq.
std::string gaussian_input(const QuantumJob& job, const QuantumSystem& system,
                           const NumberedPair& pose);

/// With a bsse block. Each element has its functions, and its ghost the same ones by name: without
/// them ghosts would be silently without any.
std::string nwchem_input(const QuantumJob& job, const QuantumSystem& system,
                         const NumberedPair& pose);

/// Ghost atoms have an @.
std::string qchem_input(const QuantumJob& job, const QuantumSystem& system,
                        const NumberedPair& pose);

/// RUN_TYPE BSSE, in a cell without periodicity that is twice as wide as the pair. The method is a
/// functional; a basis whose name has GTH goes with pseudopotentials, any other is for all
/// electrons.
std::string cp2k_input(const QuantumJob& job, const QuantumSystem& system,
                       const NumberedPair& pose);

/// Ghost atoms have a negative nuclear charge. The basis is one that `gamess_basis` knows, or the
/// words of a $BASIS group.
std::string gamess_input(const QuantumJob& job, const QuantumSystem& system,
                         const NumberedPair& pose);

/// The words of the $BASIS group for a basis by its usual name. Throws InvalidInput.
std::string gamess_basis(const std::string& name);

/// An xyz file; everything else stands on the command line.
std::string xtb_input(const QuantumJob& job, const QuantumSystem& system, const NumberedPair& pose);

/// An AtomicInput, schema qcschema_input version 1, of a qcschema_molecule version 2.
std::string qcschema_input(const QuantumJob& job, const QuantumSystem& system,
                           const NumberedPair& pose);

}  // namespace dravo
