// dock_pair FILE.xyz N1 SEED THREADS: docks the two molecules of a file, the first N1 atoms and the
// others, until nothing new is found or 500 starts are done. Prints the minima as frames of an xyz
// file, best first, with energies (kcal/mol) and starts in the comment line; and on the error
// stream one line: starts, those that ended in no minimum, evaluations, minima, seconds for the
// starts, for the last stage and for all.
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

#include "common/ordered_chunks.hpp"
#include "dravo/dock.hpp"
#include "dravo/molecule.hpp"

namespace {

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point then) {
  return std::chrono::duration<double>(Clock::now() - then).count();
}

struct Maker {
  dravo::Docking::Starter starter;
  void make(std::int64_t first, std::int64_t /*end*/, dravo::DockStart& start) {
    start = starter.run(first + 1);
  }
};

/// Thrown when nothing new is found.
struct Done {};

std::vector<dravo::DockStart> all_starts(const dravo::Docking& docking, int threads) {
  constexpr std::int64_t kMost = 500;
  std::vector<dravo::DockStart> starts;
  dravo::DockSearch search(docking);
  try {
    dravo::make_chunks<dravo::DockStart>(
        {0, kMost, 1, threads}, [&] { return Maker{docking.starter()}; },
        [&](const dravo::DockStart& start) {
          starts.push_back(start);
          search.add(start);
          if (search.nothing_new()) throw Done();
        });
  } catch (const Done&) {
  }
  return starts;
}

void print(const dravo::Placer& placer, const dravo::DockMinimum& minimum) {
  fmt::print("{}\n{:.8f} {:.8f} {} {}\n", placer.size(), minimum.score_energy,
             minimum.search_energy, minimum.starts, minimum.refined ? 1 : 0);
  const std::vector<dravo::Vec3> atoms = placer.positions(minimum.pose);
  for (std::size_t i = 0; i < atoms.size(); ++i)
    fmt::print("{}{} {:.8f} {:.8f} {:.8f}\n", placer.labels()[i][0], placer.labels()[i][1],
               atoms[i].x, atoms[i].y, atoms[i].z);
}

void run(char** words) {
  const int threads = std::atoi(words[4]);
  const auto begun = Clock::now();
  const dravo::Docking docking(
      dravo::read_pair({.file = words[1], .split = std::atoi(words[2])}).pair,
      {.seed = static_cast<std::uint64_t>(std::atoll(words[3]))});
  const std::vector<dravo::DockStart> starts = all_starts(docking, threads);
  const double for_starts = seconds_since(begun);
  const auto minima = docking.minima(starts, threads, nullptr);
  const double all = seconds_since(begun);
  for (const dravo::DockMinimum& minimum : minima) print(docking.placer(), minimum);
  std::int64_t evaluations = 0, lost = 0;
  for (const dravo::DockStart& start : starts) {
    evaluations += start.evaluations;
    if (start.end != dravo::DockEnd::minimum) ++lost;
  }
  fmt::print(stderr, "{} {} {} {} {:.2f} {:.2f} {:.2f}\n", starts.size(), lost, evaluations,
             minima.size(), for_starts, all - for_starts, all);
}

}  // namespace

int main(int count, char** words) {
  if (count != 5) {
    fmt::print(stderr, "usage: dock_pair FILE.xyz N1 SEED THREADS\n");
    return 2;
  }
  try {
    run(words);
  } catch (const std::exception& failure) {
    fmt::print(stderr, "{}\n", failure.what());
    return 1;
  }
}
