/// Writes input files for measurements to standard output.
///
///     make_input diagonal              small pair whose axes z and Z are parallel
///     make_input contact ATOMS         two boxes of ATOMS atoms each that share a face
///     make_input coincident ATOMS      the same boxes with their centres in one point
#include <array>
#include <charconv>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "benchmarks/boxes.hpp"
#include "common/atom_table.hpp"
#include "orientation/rotations.hpp"

namespace dravo::benchmarks {
namespace {

struct Atom {
  const char* symbol;
  Vec3 position;
};

using Molecule = std::vector<Atom>;

void write_molecule(const Molecule& molecule) {
  for (const auto& [symbol, p] : molecule)
    std::printf("%-2s %15.8f %15.8f %15.8f\n", symbol, p.x, p.y, p.z);
}

/// Angles in degrees: theta and phi of the position, then the three Euler angles.
void write_input(const Molecule& molecule1, const Molecule& molecule2, double r,
                 const std::array<int, 5>& degrees) {
  std::printf("%zu\n", molecule1.size() + molecule2.size());
  write_molecule(molecule1);
  write_molecule(molecule2);
  std::printf("n1\n%zu\nposition\n%.2f\n%d\n%d\n", molecule1.size(), r, degrees[0], degrees[1]);
  std::printf("rotation\n%d\n%d\n%d\nend\n", degrees[2], degrees[3], degrees[4]);
}

/// Both symmetry planes are z = 0. It is the plane of molecule 2, whose largest moment therefore
/// belongs to z; molecule 1 is long in z, so its smallest moment does. With beta 0 only the sum of
/// the other two angles counts, and a whole diagonal of the grid is accepted.
void write_diagonal() {
  const Molecule molecule1{
      {"S", {-0.9, 1.2, 0.0}},   {"C", {0.0, 0.1, 0.75}},  {"C", {0.0, 0.1, -0.75}},
      {"C", {1.5, -0.2, 2.0}},   {"C", {1.5, -0.2, -2.0}}, {"N", {-1.3, -0.3, 3.1}},
      {"N", {-1.3, -0.3, -3.1}},
  };
  const Molecule molecule2{
      {"S", {3.4, 8.4, 0.0}}, {"C", {3.6, 6.7, 0.0}}, {"N", {2.5, 5.9, 0.0}},
      {"C", {4.9, 6.1, 0.0}}, {"O", {5.1, 4.9, 0.0}},
  };
  write_input(molecule1, molecule2, 8.0, {70, 40, 30, 60, 20});
}

/// Atoms of the light elements, and one sulfur near a corner, far from every plane of two axes: it
/// gives all three axes a direction. The box is turned, so that its axes are in general position.
Molecule filled_box(const Vec3& edges, std::int32_t atoms, const EulerAngles& turn,
                    std::uint64_t seed) {
  constexpr std::array<const char*, 8> kLightElements{"H", "C", "H", "C", "H", "N", "H", "O"};
  const Matrix3 rotation = euler_matrix(turn.alpha, turn.beta, turn.gamma);
  RandomNumbers random(seed);
  Molecule molecule{{"S", rotation * (0.4 * edges)}};
  for (std::int32_t i = 1; i < atoms; ++i) {
    const Vec3 position = random.point_in(edges);
    molecule.push_back(
        {kLightElements[static_cast<std::size_t>(i) % kLightElements.size()], rotation * position});
  }
  return molecule;
}

/// The boxes stand side by side along X with parallel axes, r apart.
void write_boxes(std::int32_t atoms, double r) {
  const BoxEdges edges = edges_of_box(atoms);
  write_input(filled_box(box_of_molecule1(edges), atoms, {0.4, 1.1, 2.3}, 1),
              filled_box(box_of_molecule2(edges), atoms, {1.9, 0.7, 0.5}, 2), r, {90, 0, 0, 0, 0});
}

/// Both molecules together must not exceed what the program takes.
std::optional<std::int32_t> atoms_from(std::string_view text) {
  std::int32_t atoms = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), atoms);
  const bool whole = error == std::errc{} && end == text.data() + text.size();
  if (!whole || atoms < 100 || atoms > kMaxAtoms / 2) return std::nullopt;
  return atoms;
}

int usage() {
  std::fputs("usage: make_input diagonal | contact ATOMS | coincident ATOMS  (100 to 75000)\n",
             stderr);
  return 2;
}

int make_input(const std::vector<std::string_view>& arguments) {
  if (arguments.size() == 1 && arguments[0] == "diagonal") {
    write_diagonal();
  } else if (arguments.size() == 2) {
    const auto atoms = atoms_from(arguments[1]);
    if (!atoms) return usage();
    if (arguments[0] == "contact")
      write_boxes(*atoms, touching_distance(edges_of_box(*atoms)));
    else if (arguments[0] == "coincident")
      write_boxes(*atoms, 0.0);
    else
      return usage();
  } else {
    return usage();
  }
  return std::fflush(stdout) == 0 ? 0 : 2;
}

}  // namespace
}  // namespace dravo::benchmarks

int main(int argc, char** argv) { return dravo::benchmarks::make_input({argv + 1, argv + argc}); }
