#include "dock/final_minima.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "common/ordered_chunks.hpp"
#include "dock/clusters.hpp"
#include "dock/minimiser.hpp"

namespace dravo {
namespace {

using Energy = double DockMinimum::*;

/// Poses without an energy come last.
double rank_of(const DockMinimum& minimum, Energy energy) {
  const double value = minimum.*energy;
  return std::isnan(value) ? std::numeric_limits<double>::infinity() : value;
}

void sort_by(Energy energy, std::vector<DockMinimum>& minima) {
  std::stable_sort(minima.begin(), minima.end(),
                   [&](const DockMinimum& one, const DockMinimum& other) {
                     return rank_of(one, energy) < rank_of(other, energy);
                   });
}

/// The lowest of those that are one, with the starts of all, in ascending order.
std::vector<DockMinimum> gathered(const DockInside& docking, Energy energy,
                                  std::vector<DockMinimum> minima) {
  sort_by(energy, minima);
  Clusters clusters(docking.same());
  std::vector<DockMinimum> lowest;
  for (const DockMinimum& minimum : minima) {
    const std::size_t home = clusters.add(docking.found(minimum.*energy, minimum.pose));
    if (home == lowest.size())
      lowest.push_back(minimum);
    else
      lowest[home].starts += minimum.starts;
  }
  return lowest;
}

/// Those that the starts found, lowest first.
std::vector<DockMinimum> minima_of(const DockInside& docking, std::span<const DockStart> starts) {
  std::vector<DockStart> ordered;
  std::copy_if(starts.begin(), starts.end(), std::back_inserter(ordered),
               [](const DockStart& start) { return start.end == DockEnd::minimum; });
  std::sort(ordered.begin(), ordered.end(),
            [](const DockStart& one, const DockStart& other) { return one.number < other.number; });
  std::vector<DockMinimum> minima;
  minima.reserve(ordered.size());
  for (const DockStart& start : ordered)
    minima.push_back({start.pose, std::numeric_limits<double>::quiet_NaN(), start.energy, 1});
  return gathered(docking, &DockMinimum::search_energy, std::move(minima));
}

/// A little aside, across all planes and axes that the pair may have. By symmetry a minimum of one
/// method often has no force by the other where that has a saddle.
PoseDegrees aside(const RigidPair& pair, const PoseDegrees& pose) {
  const RelativePose before = relative_pose(pose);
  return pair.parameters(
      {before.place + Vec3{0.04, -0.01, 0.03}, rotation_by(Vec3{0.01, 0.04, -0.03}) * before.turn});
}

/// With engines of its own, for one thread.
class Scorer {
 public:
  explicit Scorer(const DockInside& docking)
      : docking_(docking), search_(docking.search().start()), score_(docking.score().start()) {}

  void score(DockMinimum& minimum) {
    minimum.score_energy = score_.energy(atoms_of(minimum)).interaction;
  }

  /// A minimum that leads nowhere stays as it is.
  void refine(DockMinimum& minimum) {
    const RigidPair& pair = docking_.rigid();
    const Minimisation found = Minimiser(pair, score_).minimise(aside(pair, minimum.pose));
    if (found.end != DockEnd::minimum) return;
    minimum.pose = found.pose;
    minimum.score_energy = found.energy;
    minimum.search_energy = search_.energy(atoms_of(minimum)).interaction;
    minimum.refined = true;
  }

 private:
  [[nodiscard]] std::vector<Vec3> atoms_of(const DockMinimum& minimum) const {
    return docking_.placer().positions(minimum.pose);
  }

  const DockInside& docking_;
  EnergyEngine search_;
  EnergyEngine score_;
};

using Work = void (Scorer::*)(DockMinimum&);

/// Makes what becomes of minima by the work on them.
struct Worker {
  Scorer scorer;
  Work work;
  const std::vector<DockMinimum>* minima;

  void make(std::int64_t k, std::int64_t /*end*/, DockMinimum& result) {
    result = (*minima)[static_cast<std::size_t>(k)];
    (scorer.*work)(result);
  }
};

/// Does the same to the first so many minima, several at a time; `took` is called after each.
void work_on(std::vector<DockMinimum>& minima, std::size_t count, const DockInside& docking,
             Work work, int threads, const std::function<void()>& took) {
  const auto jobs = static_cast<std::int64_t>(count);
  const auto busy = static_cast<int>(std::min<std::int64_t>(threads_of(threads), jobs));
  const std::vector<DockMinimum> before = minima;
  auto next = minima.begin();
  make_chunks<DockMinimum>(
      {0, jobs, 1, busy},
      [&] {
        return Worker{Scorer(docking), work, &before};
      },
      [&](const DockMinimum& result) {
        *next++ = result;
        took();
      });
}

/// Minimises the first so many again. What has no minimum of the better method near it is kept as
/// well: either method may be wrong, and it may be what is looked for.
void refine(std::vector<DockMinimum>& minima, std::size_t count, const DockInside& docking,
            int threads, const std::function<void()>& took) {
  constexpr double kElsewhere = 1.0;  // Angstrom
  const std::vector<DockMinimum> before(minima.begin(),
                                        minima.begin() + static_cast<std::ptrdiff_t>(count));
  work_on(minima, count, docking, &Scorer::refine, threads, took);
  const auto found = [&](const DockMinimum& minimum) {
    return docking.found(minimum.score_energy, minimum.pose);
  };
  for (std::size_t k = 0; k < count; ++k)
    if (minima[k].refined && !docking.same().within(kElsewhere, found(before[k]), found(minima[k])))
      minima.push_back(before[k]);
}

}  // namespace

std::vector<DockMinimum> final_minima(
    const DockInside& docking, std::span<const DockStart> starts, int threads,
    const std::function<void(std::int64_t, std::int64_t)>& progress) {
  std::vector<DockMinimum> minima = minima_of(docking, starts);
  if (docking.options().score == docking.options().search) {
    for (DockMinimum& minimum : minima) {
      minimum.score_energy = minimum.search_energy;
      minimum.refined = true;
    }
    return minima;
  }
  if (minima.empty()) return minima;
  const auto refined =
      std::min(static_cast<std::size_t>(std::max(docking.options().refined, 0)), minima.size());
  const auto of = static_cast<std::int64_t>(minima.size() + refined);
  std::int64_t done = 0;
  const auto took = [&] {
    ++done;
    if (progress) progress(done, of);
  };
  work_on(minima, minima.size(), docking, &Scorer::score, threads, took);
  sort_by(&DockMinimum::score_energy, minima);
  if (refined > 0) refine(minima, refined, docking, threads, took);
  return gathered(docking, &DockMinimum::score_energy, std::move(minima));
}

}  // namespace dravo
