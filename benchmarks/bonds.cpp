/// Molecules as what is bonded: boxes of water molecules on a lattice, atoms in random order.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "benchmarks/boxes.hpp"
#include "molecules/fragments.hpp"

namespace dravo {
namespace {

using namespace benchmarks;

struct Water {
  /// A whole number of molecules, 3.1 Angstrom apart, about that of ice.
  explicit Water(std::int32_t molecules) {
    const auto side = static_cast<std::int32_t>(std::ceil(std::cbrt(molecules)));
    for (std::int32_t m = 0; m < molecules; ++m) {
      const Vec3 oxygen =
          3.1 * Vec3{static_cast<double>(m % side), static_cast<double>(m / side % side),
                     static_cast<double>(m / side / side)};
      add({'O', ' '}, oxygen);
      add({'H', ' '}, oxygen + Vec3{0.96, 0.0, 0.0});
      add({'H', ' '}, oxygen + Vec3{-0.24, 0.93, 0.0});
    }
  }

  void add(const Label& label, const Vec3& position) {
    labels.push_back(label);
    positions.push_back(position);
  }

  void shuffle() {
    RandomNumbers random(1);
    for (std::size_t last = labels.size() - 1; last > 0; --last) {
      const auto other = static_cast<std::size_t>(random.between(0.0, static_cast<double>(last)));
      std::swap(labels[last], labels[other]);
      std::swap(positions[last], positions[other]);
    }
  }

  std::vector<Label> labels;
  std::vector<Vec3> positions;
};

void bonds(benchmark::State& state, const Water& water, std::size_t molecules) {
  for ([[maybe_unused]] auto _ : state)
    if (bonded_components(water.labels, water.positions).size() != molecules)
      return state.SkipWithError("other molecules than there are");
}

/// Argument: atoms.
void bonds_in_order(benchmark::State& state) {
  const Water water(static_cast<std::int32_t>(state.range(0) / 3));
  bonds(state, water, water.labels.size() / 3);
}
BENCHMARK(bonds_in_order)->Arg(1500)->Arg(150000)->Unit(benchmark::kMillisecond);

void bonds_out_of_order(benchmark::State& state) {
  Water water(static_cast<std::int32_t>(state.range(0) / 3));
  water.shuffle();
  bonds(state, water, water.labels.size() / 3);
}
BENCHMARK(bonds_out_of_order)->Arg(1500)->Arg(150000)->Unit(benchmark::kMillisecond);

/// Every atom is bonded to every other one.
void bonds_in_one_place(benchmark::State& state) {
  Water water(static_cast<std::int32_t>(state.range(0) / 3));
  for (Vec3& position : water.positions) position = {};
  bonds(state, water, 1);
}
BENCHMARK(bonds_in_one_place)->Arg(150000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace dravo
