/// Finding numbers in what programs print.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "quantum/output_files.hpp"

namespace dravo {

/// The line that holds the character at `position`, which may be its end.
std::string_view line_at(std::string_view text, std::size_t position);

/// Whether it stands anywhere.
bool has(std::string_view text, std::string_view mark);

/// The text behind the first place of `mark`; empty without it.
std::string_view behind(std::string_view text, std::string_view mark);

/// The words of a line, separated by blanks.
std::vector<std::string_view> words_in(std::string_view line);

/// Whether they differ at most in small and large letters.
bool is_same_word(std::string_view a, std::string_view b);

/// The first number of a text, behind any of " =:>".
std::optional<double> number_in_front(std::string_view text);

/// The numbers that stand behind all places of `mark`.
std::vector<double> numbers_behind(std::string_view text, std::string_view mark);

/// Adds the atoms of every list of a text. It begins some lines behind `mark` and ends with an
/// empty line; `symbol` and `x` are the numbers of the columns, from 0, y and z follow x.
struct AtomList {
  std::string_view mark;
  int lines;  ///< from that of the mark to the first atom
  std::size_t symbol;
  std::size_t x;
};
void add_atoms(std::vector<OutputAtom>& atoms, std::string_view text, const AtomList& list);

}  // namespace dravo
