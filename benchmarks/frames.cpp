/// Frames of molecules and parameters of pairs, from memory.
#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/boxes.hpp"
#include "common/constants.hpp"
#include "dravo/identify.hpp"

namespace dravo {
namespace {

using namespace benchmarks;

struct Atoms {
  std::vector<std::string> symbols;
  std::vector<Vec3> positions;

  void add(const char* symbol, const Vec3& position) {
    symbols.emplace_back(symbol);
    positions.push_back(position);
  }

  [[nodiscard]] Molecule molecule() const { return {symbols, positions}; }
};

/// Atoms of several elements without any symmetry, at least 1.2 Angstrom apart on a rattled
/// lattice.
Molecule without_symmetry(std::int32_t atoms, bool strict) {
  RandomNumbers random(7);
  Atoms made;
  const auto side = static_cast<std::int32_t>(std::ceil(std::cbrt(atoms)));
  for (std::int32_t i = 0; i < atoms; ++i) {
    const Vec3 place{1.8 * (i % side), 1.8 * (i / side % side), 1.8 * (i / side / side)};
    const Vec3 noise{random.between(0, 0.6), random.between(0, 0.6), random.between(0, 0.6)};
    made.add(i == 0 && strict ? "S" : i % 3 == 0 ? "C" : "H", place + noise);
  }
  return made.molecule();
}

/// Rings of carbon and hydrogen around z.
Molecule benzene() {
  Atoms made;
  for (const auto& [symbol, radius] : {std::pair{"C", 1.395}, {"H", 2.482}})
    for (int k = 0; k < 6; ++k)
      made.add(symbol, {radius * std::cos(k * kPi / 3), radius * std::sin(k * kPi / 3), 0.0});
  return made.molecule();
}

/// Corners of a truncated icosahedron, edges of 1.43 Angstrom: all even permutations and signs of
/// (0, 1, 3 g), (1, 2 + g, 2 g) and (g, 2, 2 g + 1), g the golden ratio.
Molecule fullerene() {
  const double g = (1.0 + std::sqrt(5.0)) / 2.0;
  Atoms made;
  for (const Vec3& corner : {Vec3{0, 1, 3 * g}, {1, 2 + g, 2 * g}, {g, 2, 2 * g + 1}})
    for (int turn = 0; turn < 3; ++turn)
      for (int signs = 0; signs < 8; ++signs) {
        const std::array<double, 3> c{corner.x, corner.y, corner.z};
        const auto coordinate = [&](int k) {
          const double value = c[static_cast<std::size_t>((k + turn) % 3)];
          return 0.715 * ((signs >> k) % 2 == 0 ? value : -value);
        };
        const Vec3 p{coordinate(0), coordinate(1), coordinate(2)};
        const bool twice = corner.x == 0.0 && (signs >> ((3 - turn) % 3)) % 2 != 0;
        if (!twice) made.add("C", p);
      }
  return made.molecule();
}

void frame_of(benchmark::State& state, const Molecule& molecule, std::size_t rotations) {
  for ([[maybe_unused]] auto _ : state)
    if (principal_frame(molecule, Role::molecule1).rotations.size() != rotations)
      return state.SkipWithError("another symmetry than the molecule has");
}

BENCHMARK_CAPTURE(frame_of, strict_12, without_symmetry(12, true), 1);
BENCHMARK_CAPTURE(frame_of, extended_12, without_symmetry(12, false), 1);
BENCHMARK_CAPTURE(frame_of, benzene, benzene(), 12);
BENCHMARK_CAPTURE(frame_of, fullerene, fullerene(), 60);
BENCHMARK_CAPTURE(frame_of, extended_3000, without_symmetry(3000, false), 1);

void identify_pair(benchmark::State& state, const Molecule& one, const Molecule& two) {
  const Pair pair(one, two);
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(identify(pair).parameters.r);
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK_CAPTURE(identify_pair, strict_12, without_symmetry(6, true), without_symmetry(6, true));
BENCHMARK_CAPTURE(identify_pair, extended_12, without_symmetry(6, false),
                  without_symmetry(6, false));

}  // namespace
}  // namespace dravo
