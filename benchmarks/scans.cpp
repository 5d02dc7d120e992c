/// The grid scans: the fit of one alignment cycle and the Euler search.
#include <benchmark/benchmark.h>

#include <cstdint>

#include "orientation/alignment_fit.hpp"
#include "orientation/euler_search.hpp"
#include "orientation/euler_search_log.hpp"
#include "orientation/rotations.hpp"

namespace dravo {
namespace {

constexpr Vec3 kX{1.0, 0.0, 0.0};
constexpr Vec3 kY{0.0, 1.0, 0.0};
constexpr Vec3 kZ{0.0, 0.0, 1.0};

MoleculeFrame frame_of_molecule1(const Matrix3& axes) {
  return {{}, {axes * kZ, axes * kY, axes * kX}};
}

MoleculeFrame frame_of_molecule2(const Matrix3& axes) {
  return {{}, {axes * kY, axes * kX, axes * kZ}};
}

/// Any tilt. The three angles are no multiples of a step.
Matrix3 in_general_position() { return euler_matrix(1.2345, 0.8765, 2.3456); }

/// Turned about z alone, so that a whole diagonal of the grid is accepted.
Matrix3 without_tilt() { return euler_matrix(1.2345, 0.0, 0.0); }

void fit(benchmark::State& state, const Matrix3& axes) {
  const MoleculeFrame molecule2 = frame_of_molecule2(axes);
  for ([[maybe_unused]] auto _ : state) {
    const AlignmentFit found = fit_alignment(molecule2, [] {});
    if (!found.found) return state.SkipWithError("no guess angle");
    benchmark::DoNotOptimize(found.soma_diferencas);
  }
}
BENCHMARK_CAPTURE(fit, in_general_position, in_general_position())->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(fit, without_tilt, without_tilt())->Unit(benchmark::kMicrosecond);

PairOfFrames pair_with(const Matrix3& axes_of_molecule1) {
  constexpr Matrix3 laboratory{{kX, kY, kZ}};
  return {frame_of_molecule1(axes_of_molecule1), frame_of_molecule2(laboratory)};
}

/// What the scan itself takes.
void search(benchmark::State& state, const Matrix3& axes) {
  const PairOfFrames frames = pair_with(axes);
  std::int64_t accepted = 0;
  EulerSearchWatcher counter;
  counter.accepted = [&accepted](const auto&...) { ++accepted; };
  for ([[maybe_unused]] auto _ : state) {
    const auto found = search_euler_angles(frames, counter);
    if (!found) return state.SkipWithError("no angles");
    benchmark::DoNotOptimize(found->alpha);
  }
  state.counters["accepted"] =
      benchmark::Counter(static_cast<double>(accepted), benchmark::Counter::kAvgIterations);
}
BENCHMARK_CAPTURE(search, in_general_position, in_general_position())
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(search, without_tilt, without_tilt())->Unit(benchmark::kMicrosecond);

EulerSearchWatcher logged(RecordStream& log) {
  return {[&log](const auto&... told) { write_accepted_point(log, told...); },
          [&log](const auto&... told) { write_pass(log, told...); }};
}

/// The scan and its log section.
void logged_search(benchmark::State& state, const Matrix3& axes) {
  const PairOfFrames frames = pair_with(axes);
  std::size_t bytes = 0;
  for ([[maybe_unused]] auto _ : state) {
    RecordStream log;
    const auto found = search_euler_angles(frames, logged(log));
    if (!found) return state.SkipWithError("no angles");
    bytes += log.text().size();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}
BENCHMARK_CAPTURE(logged_search, in_general_position, in_general_position())
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(logged_search, without_tilt, without_tilt())->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace dravo
