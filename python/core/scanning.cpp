#include <fmt/format.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "arrays.hpp"
#include "dravo/energy.hpp"
#include "dravo/error.hpp"
#include "dravo/scan.hpp"
#include "interruptible.hpp"
#include "parts.hpp"

namespace dravo::python {
namespace {

/// Columns of the poses that a loop gets at a time.
struct Columns {
  std::int64_t first_index = 1;
  std::int64_t looked_at = 0;
  std::vector<ScannedPose> poses;
  std::vector<double> positions;
};

/// A scan that runs in threads of its own, a few batches ahead of who takes them.
class RunningScan {
 public:
  RunningScan(Placer placer, Poses poses, ScanOptions options, std::optional<EnergyModel> model,
              std::int64_t batch)
      : placer_(std::move(placer)),
        poses_(std::move(poses)),
        options_(options),
        model_(std::move(model)),
        batch_(batch) {
    if (model_) options_.energy = &*model_;
  }

  /// In the thread that scans.
  void run() {
    try {
      if (!stopped())
        scan(placer_, poses_, options_, [this](const ScanBatch& found) { add(found); });
      if (filling_.looked_at > 0) hand_on();
    } catch (const Stopped&) {
    } catch (...) {
      failure_ = std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    done_ = true;
    changed_.notify_all();
  }

  void stop() {
    const std::lock_guard lock(mutex_);
    stop_ = true;
    changed_.notify_all();
  }

  /// The next columns; nothing at the end, or when they are not there in time, which `late` tells.
  std::optional<Columns> next(std::chrono::milliseconds time, bool& late) {
    std::unique_lock lock(mutex_);
    late = !changed_.wait_for(lock, time, [&] { return done_ || !ready_.empty(); });
    if (ready_.empty()) {
      if (done_ && failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
      return std::nullopt;
    }
    Columns columns = std::move(ready_.front());
    ready_.pop_front();
    changed_.notify_all();
    return columns;
  }

  [[nodiscard]] bool ends_within(std::chrono::milliseconds time) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, time, [&] { return done_; });
  }

 private:
  bool stopped() {
    const std::lock_guard lock(mutex_);
    return stop_;
  }

  void add(const ScanBatch& found) {
    if (filling_.looked_at == 0) filling_.first_index = found.first_index;
    filling_.looked_at += found.looked_at;
    filling_.poses.insert(filling_.poses.end(), found.poses.begin(), found.poses.end());
    filling_.positions.insert(filling_.positions.end(), found.positions.begin(),
                              found.positions.end());
    if (filling_.looked_at >= batch_) hand_on();
    if (stopped()) throw Stopped();
  }

  /// Waits while too many are ready.
  void hand_on() {
    constexpr std::size_t kMostReady = 2;
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return stop_ || ready_.size() < kMostReady; });
    if (stop_) throw Stopped();
    ready_.push_back(std::exchange(filling_, {}));
    changed_.notify_all();
  }

  Placer placer_;
  Poses poses_;
  ScanOptions options_;
  std::optional<EnergyModel> model_;
  std::int64_t batch_;
  Columns filling_;

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Columns> ready_;
  std::exception_ptr failure_;
  bool done_ = false;
  bool stop_ = false;
};

/// What Python iterates over.
class Scan {
 public:
  Scan(std::shared_ptr<RunningScan> running, std::int32_t atoms)
      : running_(std::move(running)), atoms_(atoms), thread_([scan = running_] { scan->run(); }) {}
  Scan(const Scan&) = delete;
  Scan& operator=(const Scan&) = delete;

  ~Scan() {
    try {
      close();
    } catch (const std::exception&) {  // it was told to stop, and ends by itself
    }
  }

  /// Ends it, and leaves an engine alone that does not end at once.
  void close() {
    constexpr auto kPatience = std::chrono::milliseconds(60);
    if (!thread_.joinable()) return;
    running_->stop();
    const py::gil_scoped_release without_lock;
    if (running_->ends_within(kPatience))
      thread_.join();
    else
      thread_.detach();
  }

  /// A dictionary of columns; None at the end.
  py::object next() {
    constexpr auto kBetweenLooks = std::chrono::milliseconds(20);
    if (!thread_.joinable()) return py::none();
    for (;;) {
      bool late = false;
      std::optional<Columns> columns;
      {
        const py::gil_scoped_release without_lock;
        columns = running_->next(kBetweenLooks, late);
      }
      if (columns) return dict_of(std::move(*columns));
      if (!late) break;
      if (PyErr_CheckSignals() == 0) continue;
      close();
      throw py::error_already_set();
    }
    close();
    return py::none();
  }

 private:
  template <class Value, class Get>
  static py::array_t<Value> column(const std::vector<ScannedPose>& poses, const Get& get) {
    std::vector<Value> values;
    values.reserve(poses.size());
    for (const ScannedPose& pose : poses) values.push_back(get(pose));
    return array_of(std::move(values));
  }

  static py::array_t<double> rows(const std::vector<ScannedPose>& poses,
                                  PoseDegrees ScannedPose::*which) {
    std::vector<PoseDegrees> values;
    values.reserve(poses.size());
    for (const ScannedPose& pose : poses) values.push_back(pose.*which);
    return poses_array(values);
  }

  [[nodiscard]] py::dict dict_of(Columns columns) const {
    const auto& poses = columns.poses;
    const auto count = static_cast<py::ssize_t>(poses.size());
    std::vector<std::int32_t> closest;
    closest.reserve(2 * poses.size());
    for (const ScannedPose& pose : poses)
      closest.insert(closest.end(), {pose.clearance_atom1, pose.clearance_atom2});
    py::dict found;
    found["first_index"] = columns.first_index;
    found["looked_at"] = columns.looked_at;
    found["index"] = column<std::int64_t>(poses, [](const auto& pose) { return pose.index; });
    found["above_contact"] =
        column<double>(poses, [](const auto& pose) { return pose.above_contact; });
    found["poses"] = rows(poses, &ScannedPose::asked);
    found["applied"] = rows(poses, &ScannedPose::applied);
    found["shortest"] = column<double>(poses, [](const auto& pose) { return pose.shortest; });
    found["contacts"] = column<std::int64_t>(poses, [](const auto& pose) { return pose.contacts; });
    found["clearance"] = column<double>(poses, [](const auto& pose) { return pose.clearance; });
    found["clearance_atoms"] = array_of(std::move(closest), {count, 2});
    found["equivalents"] =
        column<std::int64_t>(poses, [](const auto& pose) { return pose.equivalents; });
    found["interaction"] = column<double>(poses, [](const auto& pose) { return pose.interaction; });
    found["status"] = column<std::int8_t>(poses, [](const auto& pose) {
      return pose.energy_status ? static_cast<std::int8_t>(*pose.energy_status) : std::int8_t{-1};
    });
    const auto atoms = static_cast<py::ssize_t>(atoms_);
    found["positions"] =
        columns.positions.empty() && count > 0
            ? py::object(py::none())
            : py::object(array_of(std::move(columns.positions), {count, atoms, 3}));
    return found;
  }

  std::shared_ptr<RunningScan> running_;
  std::int32_t atoms_;
  std::thread thread_;
};

ContactRule contact_rule(const std::string& name) {
  if (name == "keep") return ContactRule::keep;
  if (name == "drop") return ContactRule::drop;
  if (name == "only") return ContactRule::only;
  throw InvalidInput(fmt::format("contacts: expected keep, drop or only, found \"{}\"", name));
}

std::unique_ptr<Scan> started(const Placer& placer, const CountedPoses& poses,
                              const std::string& contacts, bool positions, bool clearance,
                              bool unique, std::optional<EnergyModel> model,
                              const std::optional<double>& keep_below, int threads,
                              std::int64_t batch) {
  if (threads < 0)
    throw InvalidInput(
        fmt::format("threads: expected a number of threads, or 0 for all, found {}", threads));
  ScanOptions options{.contacts = contact_rule(contacts),
                      .threads = threads,
                      .above_contact = poses.above_contact,
                      .positions = positions,
                      .clearance = clearance,
                      .unique = unique,
                      .keep_below = keep_below};
  return std::make_unique<Scan>(
      std::make_shared<RunningScan>(placer, poses.poses, options, std::move(model), batch),
      placer.size());
}

}  // namespace

void add_scanning(py::module_& core) {
  using namespace py::literals;
  py::class_<Scan>(core, "Scan").def("next", &Scan::next).def("close", &Scan::close);
  core.def("scan", started, "placer"_a, "poses"_a, "contacts"_a, "positions"_a, "clearance"_a,
           "unique"_a, "model"_a, "keep_below"_a, "threads"_a, "batch"_a);
}

}  // namespace dravo::python
