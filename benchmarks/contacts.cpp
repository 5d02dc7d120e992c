/// The contact check of two boxes of atoms that share a face. Built a second time with the pairwise
/// check, for comparison.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "benchmarks/boxes.hpp"
#include "output/short_contacts.hpp"

namespace dravo {
namespace {

using namespace benchmarks;

/// Fills rows with atoms of a box.
void fill_box(AtomTable atoms, RowRange rows, const Vec3& edges, const Vec3& centre,
              std::uint64_t seed) {
  RandomNumbers random(seed);
  for (std::int32_t i = rows.begin; i < rows.end; ++i)
    atoms.set_position(i, centre + random.point_in(edges));
}

void contact_check(benchmark::State& state) {
  const auto atoms = static_cast<std::int32_t>(state.range(0));
  const MoleculeSplit split{2 * atoms, atoms};
  std::vector<double> storage(kColumns * 2 * static_cast<std::size_t>(atoms));
  const AtomTable table(storage);
  const BoxEdges edges = edges_of_box(atoms);
  fill_box(table, split.molecule1(), box_of_molecule1(edges), {touching_distance(edges), 0.0, 0.0},
           1);
  fill_box(table, split.molecule2(), box_of_molecule2(edges), {}, 2);

  std::size_t contacts = 0;
  for ([[maybe_unused]] auto _ : state) {
    contacts = find_short_contacts(table, split).size();
    if (contacts == 0) return state.SkipWithError("the boxes do not touch");
  }
  state.counters["contacts"] = static_cast<double>(contacts);
  state.counters["atoms/s"] = benchmark::Counter(static_cast<double>(split.N),
                                                 benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(contact_check)->Arg(1000)->Arg(10000)->Arg(75000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace dravo
