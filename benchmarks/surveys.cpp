/// What a pose of a scan asks of molecule 2: how near molecule 1 comes, and where it first touches.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "benchmarks/boxes.hpp"
#include "output/contact_surveyor.hpp"

namespace dravo {
namespace {

using namespace benchmarks;

using Atoms = std::vector<Vec3>;

Atoms box_of_atoms(std::int32_t count, RandomNumbers& random) {
  const Vec3 edges = box_of_molecule2(edges_of_box(count));
  Atoms atoms(static_cast<std::size_t>(count));
  for (Vec3& atom : atoms) atom = random.point_in(edges);
  return atoms;
}

Vec3 direction(RandomNumbers& random) {
  const double z = random.between(-1.0, 1.0);
  const double phi = random.between(0.0, 6.283185307179586);
  const double across = std::sqrt(1.0 - z * z);
  return {across * std::cos(phi), across * std::sin(phi), z};
}

/// A molecule 1 to be set around a molecule 2, in directions and at distances that come round
/// again.
struct Approaches {
  struct Pose {
    Vec3 direction;
    double r;
  };

  /// Up to `gap` Angstrom beyond the place where the molecules touch.
  Approaches(std::int32_t atoms1, std::int32_t atoms2, double gap)
      : random(1),
        molecule1(box_of_atoms(atoms1, random)),
        surveyor(box_of_atoms(atoms2, random)),
        poses(kPoses),
        storage(kColumns * molecule1.size()) {
    for (Pose& pose : poses) {
      pose.direction = direction(random);
      pose.r = surveyor.touching_distance(molecule1, pose.direction) + random.between(0.0, gap);
    }
  }

  /// A power of two.
  static constexpr std::size_t kPoses = 1024;

  RandomNumbers random;
  Atoms molecule1;
  ContactSurveyor surveyor;
  std::vector<Pose> poses;
  std::vector<double> storage;
};

/// Arguments: atoms of molecule 1, atoms of molecule 2, gap in Angstrom.
void survey(benchmark::State& state) {
  Approaches approaches(static_cast<std::int32_t>(state.range(0)),
                        static_cast<std::int32_t>(state.range(1)),
                        static_cast<double>(state.range(2)));
  AtomTable placed(approaches.storage);
  std::size_t next = 0;
  for ([[maybe_unused]] auto _ : state) {
    const Approaches::Pose& pose = approaches.poses[next++ % Approaches::kPoses];
    for (std::int32_t i = 0; i < placed.rows(); ++i)
      placed.set_position(
          i, approaches.molecule1[static_cast<std::size_t>(i)] + pose.r * pose.direction);
    benchmark::DoNotOptimize(approaches.surveyor.survey(placed, {0, placed.rows()}));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(survey)
    ->Args({6, 6, 2})
    ->Args({6, 100, 2})
    ->Args({6, 3000, 2})
    ->Args({6, 3000, 50})
    ->Args({6, 75000, 2})
    ->Args({1000, 1000, 2});

/// Arguments: atoms of molecule 1, atoms of molecule 2.
void touching(benchmark::State& state) {
  const Approaches approaches(static_cast<std::int32_t>(state.range(0)),
                              static_cast<std::int32_t>(state.range(1)), 0.0);
  std::size_t next = 0;
  for ([[maybe_unused]] auto _ : state) {
    const Approaches::Pose& pose = approaches.poses[next++ % Approaches::kPoses];
    benchmark::DoNotOptimize(
        approaches.surveyor.touching_distance(approaches.molecule1, pose.direction));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(touching)
    ->Args({6, 6})
    ->Args({6, 100})
    ->Args({6, 3000})
    ->Args({6, 75000})
    ->Args({1000, 1000});

}  // namespace
}  // namespace dravo
