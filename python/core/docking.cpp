#include <pybind11/stl.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "arrays.hpp"
#include "common/ordered_chunks.hpp"
#include "dravo/dock.hpp"
#include "interruptible.hpp"
#include "parts.hpp"
#include "results/dock_run.hpp"

namespace dravo::python {
namespace {

/// When a search ends.
struct Limits {
  std::optional<std::int64_t> starts;  ///< so many; without it, when new ones find nothing new
  std::optional<double> seconds;       ///< no start begins later
  int threads;
};

/// Makes starts in several threads and takes them in the order of their numbers.
class Search {
 public:
  Search(const Docking& docking, const Limits& limits, const Stop& stop)
      : docking_(&docking), limits_(limits), stop_(&stop), search_(docking) {}

  std::vector<DockStart> run() && {
    struct Maker {
      Docking::Starter starter;
      void make(DockStart& start) { start = starter.run(start.number); }
    };
    make_chunks_of_stream<DockStart>(
        limits_.threads, [this](DockStart& start) { return begin(start); },
        [this] { return Maker{docking_->starter()}; },
        [this](const DockStart& start) { take(start); });
    return std::move(starts_);
  }

 private:
  using Clock = std::chrono::steady_clock;

  bool begin(DockStart& start) {
    const std::chrono::duration<double> passed = Clock::now() - begin_;
    const bool late = limits_.seconds && begun_ > 0 && passed.count() >= *limits_.seconds;
    if (end_ || late || begun_ == limits_.starts.value_or(kMostStarts)) return false;
    start.number = ++begun_;
    return true;
  }

  void take(const DockStart& start) {
    if (*stop_) throw Stopped();
    if (end_) return;
    starts_.push_back(start);
    search_.add(start);
    if (!limits_.starts && search_.nothing_new()) end_ = true;
  }

  const Docking* docking_;
  Limits limits_;
  const Stop* stop_;
  DockSearch search_;
  Clock::time_point begin_ = Clock::now();
  std::vector<DockStart> starts_;
  std::int64_t begun_ = 0;
  std::atomic<bool> end_ = false;
};

/// What a docking leaves.
struct Found {
  std::vector<DockStart> starts;
  std::vector<DockMinimum> minima;
};

template <class Row, class Value>
py::array_t<Value> column(const std::vector<Row>& rows, Value Row::*member) {
  std::vector<Value> values;
  values.reserve(rows.size());
  for (const Row& row : rows) values.push_back(row.*member);
  return array_of(std::move(values));
}

py::dict dict_of(const Found& found) {
  std::vector<PoseDegrees> poses;
  for (const DockMinimum& minimum : found.minima) poses.push_back(minimum.pose);
  std::vector<std::int8_t> refined;
  for (const DockMinimum& minimum : found.minima) refined.push_back(minimum.refined ? 1 : 0);
  py::dict columns;
  columns["poses"] = poses_array(poses);
  columns["score_energy"] = column(found.minima, &DockMinimum::score_energy);
  columns["search_energy"] = column(found.minima, &DockMinimum::search_energy);
  columns["starts"] = column(found.minima, &DockMinimum::starts);
  columns["refined"] = array_of(std::move(refined));
  columns["starts_made"] = static_cast<std::int64_t>(found.starts.size());
  return columns;
}

py::dict docked(const Pair& pair, const std::string& search, const std::string& score,
                const std::array<int, 2>& charges, const std::array<int, 2>& unpaired,
                std::uint64_t seed, int refined, const std::optional<std::int64_t>& starts,
                const std::optional<double>& seconds, int threads) {
  const DockOptions options{
      energy_method(search), energy_method(score), charges, unpaired, seed, refined};
  const Limits limits{starts, seconds, threads};
  return dict_of(interruptible([pair, options, limits](const Stop& stop) {
    const Docking docking(pair, options);
    Found found;
    found.starts = Search(docking, limits, stop).run();
    found.minima = docking.minima(found.starts, limits.threads, [&](auto, auto) {
      if (stop) throw Stopped();
    });
    return found;
  }));
}

}  // namespace

void add_docking(py::module_& core) {
  using namespace py::literals;
  core.def("dock", docked, "pair"_a, "search"_a, "score"_a, "charges"_a, "unpaired"_a, "seed"_a,
           "refined"_a, "starts"_a, "seconds"_a, "threads"_a);
}

}  // namespace dravo::python
