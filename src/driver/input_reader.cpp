#include "driver/input_reader.hpp"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "common/errors.hpp"

namespace dravo {
namespace {

void read_atoms(FreeFormatReader& input, std::int32_t N, AtomTable icoo_and_m,
                std::span<Label> isymbol) {
  for (std::int32_t i = 0; i < N; ++i) {
    const std::int32_t atom = i + 1;
    input.next_statement();
    const Label label = input.label({"the element label", atom});
    const double x = input.real({"the x coordinate in Angstrom (a number)", atom});
    const double y = input.real({"the y coordinate in Angstrom (a number)", atom});
    const double z = input.real({"the z coordinate in Angstrom (a number)", atom});
    if (i >= icoo_and_m.rows()) continue;
    isymbol[static_cast<std::size_t>(i)] = label;
    icoo_and_m.set_position(i, {x, y, z});
    icoo_and_m.set_element(i, 0.0, 0.0);
  }
}

std::int32_t read_integer_line(FreeFormatReader& input, std::string_view expected) {
  input.next_statement();
  return input.integer({expected});
}

double read_real_line(FreeFormatReader& input, std::string_view expected) {
  input.next_statement();
  return input.real({expected});
}

enum class LineKind { no_atom, atom, atom_with_remark };

LineKind kind_of(const NumberedLine& line) {
  FreeFormatReader reader("", line.text);
  try {
    reader.next_statement();
    (void)reader.label({});
    for (int k = 0; k < 3; ++k) (void)reader.real({});
  } catch (const UnreadableItem&) {
    return LineKind::no_atom;
  }
  return reader.line_is_used_up() ? LineKind::atom : LineKind::atom_with_remark;
}

/// Other xyz files have a comment line after the count; here it moves the atoms one line down, the
/// last of them to the line that is read over. (Blank lines are not counted, as reading passes over
/// them.) By that a comment differs from a mistyped atom. One that happens to read as an atom,
/// "H 1 2 3 optimised", differs from the atom below by its remark.
std::optional<NumberedLine> comment_after_count(const FreeFormatReader& input, std::int32_t N) {
  constexpr std::int64_t kAfterCount = 2;
  if (N < 1) return std::nullopt;
  const auto suspect = input.line_with_text(kAfterCount);
  const auto below = input.line_with_text(kAfterCount + 1);
  const auto read_over = input.line_with_text(kAfterCount + N);
  if (!suspect || !below || !read_over) return std::nullopt;
  const LineKind kind = kind_of(*suspect);
  const LineKind kind_below = kind_of(*below);
  if (kind_below == LineKind::no_atom || kind_of(*read_over) == LineKind::no_atom)
    return std::nullopt;
  const bool comment = kind == LineKind::no_atom ||
                       (kind == LineKind::atom_with_remark && kind_below == LineKind::atom);
  return comment ? suspect : std::nullopt;
}

/// The line of a message that leads from the place of a failure to its likely reason, if any.
std::string note_line(const FreeFormatReader& input, std::int32_t N) {
  std::string note = input.note();
  if (const auto comment = comment_after_count(input, N))
    note = "line " + std::to_string(comment->number) +
           " looks like a comment line; this format has none after the number of atoms";
  return note.empty() ? note : "\nnote: " + note;
}

void require_suitable_counts(const FreeFormatReader& input, const MoleculeSplit& split,
                             const FewestAtoms& fewest, std::int32_t capacity) {
  using Fault = UnsuitableCount::Fault;
  const auto refuse = [&](Fault fault, const std::string& sentence) {
    throw UnsuitableCount(fault, input.name() + ": " + sentence);
  };
  if (split.n1 < fewest.n1)
    refuse(Fault::molecule1_too_small,
           "molecule 1 needs at least " + std::to_string(fewest.n1) + " atoms");
  if (split.N < fewest.N)
    refuse(Fault::pair_too_small, "a pair needs at least " + std::to_string(fewest.N) + " atoms");
  if (split.N > capacity)
    refuse(Fault::too_many_atoms, "a pair has at most " + std::to_string(capacity) + " atoms");
}

PoseDegrees read_parameters(FreeFormatReader& input) {
  PoseDegrees degrees;
  input.skip_line({"the line before the distance r"});
  degrees.r = read_real_line(input, "the distance r in Angstrom (a number)");
  degrees.theta = read_real_line(input, "the polar angle theta in degrees (a number)");
  degrees.phi = read_real_line(input, "the azimuth phi in degrees (a number)");
  input.skip_line({"the line before the Euler angle alpha"});
  degrees.alpha = read_real_line(input, "the Euler angle alpha in degrees (a number)");
  degrees.beta = read_real_line(input, "the Euler angle beta in degrees (a number)");
  degrees.gamma = read_real_line(input, "the Euler angle gamma in degrees (a number)");
  input.skip_line({"the line after the Euler angle gamma"});
  return degrees;
}

InputGeometry read_lines(FreeFormatReader& input, AtomTable& icoo_and_m, AtomTable& newcoo_and_m,
                         std::span<Label> isymbol, const FewestAtoms& fewest,
                         MoleculeSplit& split) {
  split.N = read_integer_line(input, "the total number of atoms (an integer)");
  const std::int32_t capacity = icoo_and_m.rows();
  icoo_and_m.shorten(std::clamp(split.N, 0, capacity));
  newcoo_and_m.shorten(icoo_and_m.rows());
  read_atoms(input, split.N, icoo_and_m, isymbol);
  input.skip_line({"the line before the number of atoms of molecule 1"});
  split.n1 = read_integer_line(input, "the number of atoms of molecule 1 (an integer)");

  require_suitable_counts(input, split, fewest, capacity);
  // No stage reads a row past N.
  newcoo_and_m.copy_rows(icoo_and_m, split.N);

  return {split, read_parameters(input)};
}

}  // namespace

InputGeometry read_input(FreeFormatReader& input, AtomTable& icoo_and_m, AtomTable& newcoo_and_m,
                         std::span<Label> isymbol, const FewestAtoms& fewest) {
  MoleculeSplit split{};
  try {
    return read_lines(input, icoo_and_m, newcoo_and_m, isymbol, fewest, split);
  } catch (const UnreadableItem& failure) {
    throw InvalidInput(failure.what() + note_line(input, split.N),
                       {failure.file(), failure.line(), failure.column()});
  }
}

}  // namespace dravo
