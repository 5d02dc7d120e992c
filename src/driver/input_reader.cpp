#include "driver/input_reader.hpp"

#include <algorithm>

#include "common/errors.hpp"

namespace dravo {
namespace {

constexpr std::int32_t kFewestAtoms = 6;
constexpr std::int32_t kFewestAtomsOfMolecule1 = 3;

void read_atoms(RecordReader& input, std::int32_t N, AtomTable icoo_and_m,
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

std::int32_t read_integer_line(RecordReader& input, std::string_view expected) {
  input.next_statement();
  return input.integer({expected});
}

double read_real_line(RecordReader& input, std::string_view expected) {
  input.next_statement();
  return input.real({expected});
}

[[noreturn]] void stop_for_too_few_atoms(RecordStream& screen, const char* error) {
  screen.record(" This version allow the study of entities ");
  screen.record(" with more than 2 atoms ");
  screen.record(error);
  throw RunStop{};
}

UserParameters read_parameters(RecordReader& input) {
  UserParameters degrees;
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

}  // namespace

InputGeometry read_input(RecordReader& input, AtomTable& icoo_and_m, AtomTable& newcoo_and_m,
                         std::span<Label> isymbol, RecordStream& screen) {
  MoleculeSplit split{};
  split.N = read_integer_line(input, "the total number of atoms (an integer)");
  const std::int32_t capacity = icoo_and_m.rows();
  icoo_and_m.shorten(std::clamp(split.N, 0, capacity));
  newcoo_and_m.shorten(icoo_and_m.rows());
  read_atoms(input, split.N, icoo_and_m, isymbol);
  input.skip_line({"the line before the number of atoms of molecule 1"});
  split.n1 = read_integer_line(input, "the number of atoms of molecule 1 (an integer)");

  if (split.n1 < kFewestAtomsOfMolecule1) stop_for_too_few_atoms(screen, " ERROR \t");
  if (split.N < kFewestAtoms) stop_for_too_few_atoms(screen, " ERROR ");
  if (split.N > capacity) {
    screen.record(" max number of atoms -150000 -exceeded ");
    throw RunStop{};
  }
  // No stage reads a row past N.
  newcoo_and_m.copy_rows(icoo_and_m, split.N);

  const UserParameters degrees = read_parameters(input);
  return {split, prepare_parameters(degrees, screen)};
}

}  // namespace dravo
