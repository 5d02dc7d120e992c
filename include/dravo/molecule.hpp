/// @file
/// Molecules, pairs of them, and the files that hold them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "dravo/atoms.hpp"
#include "dravo/pose.hpp"

namespace dravo {

/// Smallest coordinate, Angstrom: what a file with eight decimals in fifteen columns holds.
inline constexpr double kLowestCoordinate = -99999.0;

/// Largest coordinate, Angstrom.
inline constexpr double kHighestCoordinate = 999999.0;

/// One or more atoms, each of an element H to U and at a point with coordinates from
/// `kLowestCoordinate` to `kHighestCoordinate`. Nothing else can be made.
///
/// @code
/// const dravo::Molecule water({"O", "H", "H"},
///                             {{0, 0, 0.117}, {0, 0.757, -0.469}, {0, -0.757, -0.469}});
/// @endcode
class Molecule {
 public:
  /// `symbols`: one for each position, in any case, or atomic numbers ("8"). `positions`: Angstrom.
  /// Throws InvalidInput, which names the atom.
  Molecule(const std::vector<std::string>& symbols, std::vector<Vec3> positions);

  /// The same from labels, each the symbol of an element in its usual spelling.
  Molecule(std::vector<Label> labels, std::vector<Vec3> positions);

  /// Number of atoms, 1 or more.
  [[nodiscard]] std::int32_t size() const { return static_cast<std::int32_t>(labels_.size()); }

  /// One for each atom.
  [[nodiscard]] const std::vector<Label>& labels() const { return labels_; }
  [[nodiscard]] const std::vector<Vec3>& positions() const { return positions_; }  ///< Angstrom

  /// Symbol of atom `i`, from 0, without blanks. The view lives as long as the molecule.
  [[nodiscard]] std::string_view symbol(std::int32_t i) const;

 private:
  std::vector<Label> labels_;
  std::vector<Vec3> positions_;
};

/// Two molecules as somebody gave them, molecule 1 first: at least one atom each, and together at
/// most `kMaxAtoms`. Nothing else can be made.
///
/// @code
/// const dravo::Pair dimer(formamide, ethanol);
/// const dravo::Pair same = dravo::read_pair({.file = "dimer.xyz", .split = 6}).pair;
/// @endcode
class Pair {
 public:
  /// Throws InvalidInput for more than `kMaxAtoms` atoms in all.
  Pair(const Molecule& molecule1, const Molecule& molecule2);

  /// The first `n1` atoms are molecule 1. Throws InvalidInput.
  Pair(std::int32_t n1, Molecule atoms);

  [[nodiscard]] std::int32_t size() const { return atoms_.size(); }  ///< N
  [[nodiscard]] std::int32_t n1() const { return n1_; }  ///< atoms of molecule 1, the first ones

  /// Of both molecules, one for each atom.
  [[nodiscard]] const std::vector<Label>& labels() const { return atoms_.labels(); }

  /// Of both molecules, Angstrom.
  [[nodiscard]] const std::vector<Vec3>& positions() const { return atoms_.positions(); }

 private:
  Molecule atoms_;
  std::int32_t n1_;
};

/// Unit of the coordinates of a file.
enum class LengthUnit {
  angstrom,  ///< 1e-10 m
  bohr,      ///< 0.529177210903 Angstrom (CODATA 2018)
  nm,        ///< 10 Angstrom
};

/// The two molecules are the two bonded components.
struct SplitByBonds {};

/// How a file of both molecules divides into them: by bonds, or after so many atoms. Empty when the
/// file tells it.
using Split = std::optional<std::variant<SplitByBonds, std::int32_t>>;

/// Which pair is wanted of which files.
struct PairRequest {
  std::string file;              ///< "-" for standard input
  std::string second_file = {};  ///< molecule 2, when `file` holds molecule 1 alone; else empty
  Split split = std::nullopt;    ///< of a file of both molecules
  std::int32_t frame = 1;        ///< of files with several, from 1
  LengthUnit unit = LengthUnit::angstrom;  ///< of all coordinates that are read
  /// Refuse bonds across the split, atoms closer than 0.5 Angstrom and coordinates in another unit;
  /// remark on molecules that are not one connected whole.
  bool check = true;
  /// Atoms of molecule 1 when neither `split` nor the file tells.
  std::optional<std::int32_t> n1_if_untold = std::nullopt;
};

/// A pair that was read.
struct PairFile {
  Pair pair;  ///< molecule 1 first, whatever the order in the file
  /// As a QN-input-GEOMETRY.xyz states it; empty for other files.
  std::optional<PoseDegrees> parameters;
  /// What the user should know about the reading, one sentence each: atoms that were reordered, an
  /// ignored frame, ...
  std::vector<std::string> remarks;
};

/// Reads standard and extended xyz, `QN-input-GEOMETRY.xyz`, `input-GEOMETRY.xyz` with its trailer;
/// told apart by their contents. Throws InvalidInput for whatever cannot be read, is no element, or
/// is not two molecules, and IoFailure when the system refuses the file.
PairFile read_pair(const PairRequest& request);

/// All atoms of a file, whatever their molecules.
struct AtomsFile {
  Molecule atoms;  ///< those of molecule 1 first where the file has two
  /// Atoms of molecule 1, the first ones, where the file or the request divides them; else empty.
  std::optional<std::int32_t> n1;
  std::vector<std::string> remarks;  ///< as those of a `PairFile`
};

/// Reads the same files, with one molecule, two, or any number of them. The request is for one
/// file. Throws as `read_pair` does, but not where nothing divides the atoms.
AtomsFile read_atoms(const PairRequest& request);

/// Reads one molecule, all atoms of frame `frame` (from 1) of a standard or extended xyz file.
/// Throws InvalidInput and IoFailure.
Molecule read_molecule(const std::string& file, std::int32_t frame = 1,
                       LengthUnit unit = LengthUnit::angstrom);

}  // namespace dravo
