/// Long work that Ctrl-C ends.
#pragma once

#include <pybind11/pybind11.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <type_traits>
#include <utility>

namespace dravo::python {

namespace py = pybind11;

/// What work looks at between its steps.
using Stop = std::atomic<bool>;

/// What ends work that was told to stop. Nobody sees it.
struct Stopped {};

/// Keeps an object of Python for another thread, which need not have the lock when it is done.
class Kept {
 public:
  explicit Kept(py::object object)
      : object_(object.release().ptr(), [](PyObject* kept) {
          if (Py_IsInitialized() == 0 || _Py_IsFinalizing() != 0) return;  // all of it goes
          const py::gil_scoped_acquire lock;
          Py_DECREF(kept);
        }) {}

 private:
  std::shared_ptr<PyObject> object_;
};

/// The result of `work(const Stop&)`, which runs in a thread of its own while this one, without the
/// interpreter's lock, looks for signals. After a signal the work is told to stop, and left alone
/// if it does not end at once, as an engine in the middle of an energy: it must own what it uses.
template <class Work>
auto interruptible(Work work) {
  using Result = std::invoke_result_t<Work&, const Stop&>;
  struct State {
    explicit State(Work given) : work(std::move(given)) {}
    Work work;
    std::mutex mutex;
    std::condition_variable changed;
    Stop stop = false;
    bool done = false;
    std::optional<Result> result;
    std::exception_ptr failure;
  };
  constexpr auto kBetweenLooks = std::chrono::milliseconds(20);
  constexpr auto kPatience = std::chrono::milliseconds(60);

  const auto state = std::make_shared<State>(std::move(work));
  std::thread thread([state] {
    try {
      state->result.emplace(state->work(std::as_const(state->stop)));
    } catch (...) {
      state->failure = std::current_exception();
    }
    const std::lock_guard lock(state->mutex);
    state->done = true;
    state->changed.notify_all();
  });

  const auto wait = [&](std::chrono::milliseconds time) {
    const py::gil_scoped_release without_lock;
    std::unique_lock lock(state->mutex);
    return state->changed.wait_for(lock, time, [&] { return state->done; });
  };
  while (!wait(kBetweenLooks)) {
    if (PyErr_CheckSignals() == 0) continue;
    state->stop = true;
    if (wait(kPatience))
      thread.join();
    else
      thread.detach();
    throw py::error_already_set();
  }
  thread.join();
  if (state->failure) std::rethrow_exception(state->failure);
  return std::move(*state->result);
}

/// The same for work on so many atoms, of which few need no thread.
template <class Work>
auto interruptible(std::int32_t atoms, Work work) {
  constexpr std::int32_t kFew = 500;
  if (atoms > kFew) return interruptible(std::move(work));
  const py::gil_scoped_release without_lock;
  return work(Stop(false));
}

}  // namespace dravo::python
