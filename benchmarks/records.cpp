/// The record layer: single items, and whole geometry files.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

#include "benchmarks/boxes.hpp"
#include "common/record_format.hpp"
#include "common/record_stream.hpp"
#include "output/xyz_writer.hpp"

namespace dravo {
namespace {

using namespace benchmarks;

std::vector<double> random_values(double limit) {
  RandomNumbers random(1);
  std::vector<double> values(4096);
  for (double& value : values) value = random.between(-limit, limit);
  return values;
}

/// Appends every value once per iteration.
template <class Append>
void append_all(benchmark::State& state, const std::vector<double>& values, const Append& append) {
  std::string record;
  for ([[maybe_unused]] auto _ : state) {
    record.clear();
    for (const double value : values) append(record, value);
    benchmark::DoNotOptimize(record.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(record.size()));
}

/// Limits: angles and coordinates; inertia tensors in g cm^2, which take the exponent form.
void free_real(benchmark::State& state, double limit) {
  append_all(state, random_values(limit), append_free_real);
}
BENCHMARK_CAPTURE(free_real, fixed_form, 400.0);
BENCHMARK_CAPTURE(free_real, exponent_form, 1e-37);

void fixed_field(benchmark::State& state, int width, int decimals) {
  append_all(state, random_values(99.0), [=](std::string& record, double value) {
    append_fixed_field(record, value, width, decimals);
  });
}
BENCHMARK_CAPTURE(fixed_field, coordinate_of_an_atom, 15, 8);
BENCHMARK_CAPTURE(fixed_field, coordinate_of_the_drawing, 8, 3);

/// The same few values again and again, as in a log.
void repeated_reals(benchmark::State& state) {
  const std::vector<double> values = random_values(400.0);
  for ([[maybe_unused]] auto _ : state) {
    RecordStream log;
    for (std::size_t i = 0; i < values.size(); ++i) log.record(" beta  ", values[i % 8]);
    benchmark::DoNotOptimize(log.text().data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
}
BENCHMARK(repeated_reals);

void geometry_file(benchmark::State& state) {
  const auto atoms = static_cast<std::int32_t>(state.range(0));
  std::vector<double> storage(kColumns * static_cast<std::size_t>(atoms));
  AtomTable table(storage);
  RandomNumbers random(1);
  const Vec3 edges = box_of_molecule1(edges_of_box(atoms));
  for (std::int32_t i = 0; i < atoms; ++i) {
    table.set_position(i, random.point_in(edges));
    table.set_element(i, 6.0, 12.0);
  }
  std::size_t bytes = 0;
  for ([[maybe_unused]] auto _ : state) {
    RecordStream file;
    write_geometry(file, atoms, table, table);
    bytes += file.text().size();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
  state.SetItemsProcessed(state.iterations() * atoms);
}
BENCHMARK(geometry_file)->Arg(1500)->Arg(15000)->Arg(150000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace dravo
