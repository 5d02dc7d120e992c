/// What the files of all programs of quantum chemistry have: atoms with their coordinates.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "quantum/quantum_job.hpp"

namespace dravo {

/// An atom of a computation.
struct SystemAtom {
  std::string_view symbol;
  Vec3 position;  ///< Angstrom
  bool ghost;
  int molecule;  ///< 1 or 2
};

/// In the order of the pair, without those that are absent.
std::vector<SystemAtom> atoms_of(const Pair& pair, const QuantumSystem& system);

/// Methods and bases are written in small and large letters.
std::string small_letters(std::string name);

/// Each element once, in the order of the atoms.
std::vector<std::string_view> elements_of(const Pair& pair);

/// "     -0.60412015     -1.07034623      0.00000000" and the end of the line: the digits that
/// frames have.
void append_coordinates(std::string& text, const Vec3& position);

/// A line for each atom: before its symbol and behind it a text, then the coordinates. A ghost has
/// other texts.
struct AtomNotation {
  std::string_view before_ghost = {};
  std::string_view behind_ghost = {};
};
void append_atom_lines(std::string& text, const std::vector<SystemAtom>& atoms,
                       const AtomNotation& notation = {});

/// The pose as a frame: number of atoms, a comment line, atoms with their molecules.
std::string frame_text(const NumberedPair& pose);

/// The atom lines of that frame alone.
std::string_view atoms_in_frame(std::string_view frame);

}  // namespace dravo
