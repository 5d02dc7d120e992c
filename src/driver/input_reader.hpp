/// The input file: both molecules and the six association parameters.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "common/atom_table.hpp"
#include "common/free_format_reader.hpp"
#include "dravo/error.hpp"
#include "dravo/pose.hpp"

namespace dravo {

inline constexpr auto kInputFileName = "QN-input-GEOMETRY.xyz";

/// Counts of atoms that no run takes.
class UnsuitableCount : public InvalidInput {
 public:
  enum class Fault { molecule1_too_small, pair_too_small, too_many_atoms };
  UnsuitableCount(Fault fault, const std::string& message) : InvalidInput(message), fault_(fault) {}

  [[nodiscard]] Fault fault() const { return fault_; }

 private:
  Fault fault_;
};

/// The smallest counts that a reader takes.
struct FewestAtoms {
  std::int32_t N;   ///< of both molecules together
  std::int32_t n1;  ///< of molecule 1
};

/// Those of `qn-dravo`.
inline constexpr FewestAtoms kFewestAtomsOfARun{6, 3};

struct InputGeometry {
  MoleculeSplit split;
  PoseDegrees stated;  ///< as the file has them; may be out of range
};

/// Reads the file line by line:
///
///     N                        total number of atoms
///     label x y z              N lines, Angstrom, molecule 1 first
///     (ignored)
///     n1                       atoms of molecule 1
///     (ignored)
///     r, theta, phi            Angstrom and degrees, one per line
///     (ignored)
///     alpha, beta, gamma       degrees, one per line
///     (ignored)
///
/// Fills the positions of `icoo_and_m` and the labels, then copies the rows to `newcoo_and_m`. Both
/// tables are shortened to the announced rows. Atoms past their capacity are read but not stored.
/// Throws UnsuitableCount, before the parameters are read; an unreadable or missing line throws
/// InvalidInput, whose text may end with a line "note: ..." about the likely reason, when that lies
/// elsewhere in the file.
InputGeometry read_input(FreeFormatReader& input, AtomTable& icoo_and_m, AtomTable& newcoo_and_m,
                         std::span<Label> isymbol, const FewestAtoms& fewest = kFewestAtomsOfARun);

}  // namespace dravo
