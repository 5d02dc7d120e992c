/// Programs that run beside this one.
#pragma once

#include <sys/types.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "common/descriptor.hpp"

namespace dravo {

struct ChildRequest {
  std::vector<std::string> command;  ///< program and arguments; the program by its path
  std::string folder;                ///< in which it runs
  std::string output;                ///< file for what it prints, made anew
  /// Whether its standard input is a stream to `ChildProcess`, on which it answers too. Otherwise
  /// that is empty.
  bool conversation = false;
  pid_t group = 0;  ///< of the processes that it joins; 0 for a new one
};

/// A process in another group than this one, so that Ctrl-C does not reach it: this process
/// decides. It gets no descriptors but its standard streams, and one thread for each library that
/// knows OMP_NUM_THREADS or OPENBLAS_NUM_THREADS.
class ChildProcess {
 public:
  /// Throws NoEngine.
  explicit ChildProcess(const ChildRequest& request);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Kills it, if it still runs, and the rest of its group, if that is its own.
  ~ChildProcess();

  [[nodiscard]] pid_t id() const { return id_; }

  /// False when the process is gone.
  [[nodiscard]] bool send(const void* bytes, std::size_t count) const;
  [[nodiscard]] bool receive(void* bytes, std::size_t count) const;

  /// Whether it says something, or ends, before that time is over.
  [[nodiscard]] bool is_heard_within(std::chrono::milliseconds time) const;

  /// Waits for its end, and returns its status as `waitpid` has it. Once.
  int wait();

  /// The same of a process that need not end by itself.
  int end();

 private:
  ChildProcess(const ChildRequest& request, std::array<int, 2> ends);

  pid_t id_ = -1;
  bool leads_;  ///< a group of its own
  Descriptor stream_;
};

/// What ended a process: "it ended with status 2", "signal 11 ended it (Segmentation fault)".
std::string end_text(int status);

/// A group of processes that end with their owner, and when this process is killed.
class GuardedGroup {
 public:
  /// Throws NoEngine.
  GuardedGroup();

  [[nodiscard]] pid_t id() const { return guard_.id(); }

 private:
  ChildProcess guard_;
};

}  // namespace dravo
