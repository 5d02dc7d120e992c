/// Reading the input file.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "benchmarks/boxes.hpp"
#include "driver/input_reader.hpp"

namespace dravo {
namespace {

using namespace benchmarks;

std::string input_text(std::int32_t atoms) {
  RandomNumbers random(1);
  const Vec3 edges = box_of_molecule1(edges_of_box(atoms));
  std::string text = std::to_string(atoms) + '\n';
  for (std::int32_t i = 0; i < atoms; ++i) {
    const Vec3 p = random.point_in(edges);
    char line[80];
    std::snprintf(line, sizeof line, "C  %15.8f %15.8f %15.8f\n", p.x, p.y, p.z);
    text.append(line);
  }
  text.append("n1\n").append(std::to_string(atoms / 2));
  return text.append("\nposition\n6.5\n84\n11\nrotation\n214\n152\n306\nend\n");
}

void read_input(benchmark::State& state) {
  const auto atoms = static_cast<std::int32_t>(state.range(0));
  const std::string text = input_text(atoms);
  const auto rows = static_cast<std::size_t>(atoms);
  std::vector<double> first(kColumns * rows);
  std::vector<double> second(kColumns * rows);
  std::vector<Label> labels(rows);
  for ([[maybe_unused]] auto _ : state) {
    FreeFormatReader reader(kInputFileName, text);
    AtomTable icoo_and_m(first);
    AtomTable newcoo_and_m(second);
    const InputGeometry geometry = dravo::read_input(reader, icoo_and_m, newcoo_and_m, labels);
    if (geometry.split.N != atoms) return state.SkipWithError("atoms are missing");
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
  state.SetItemsProcessed(state.iterations() * atoms);
}
BENCHMARK(read_input)->Arg(1500)->Arg(15000)->Arg(150000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace dravo
