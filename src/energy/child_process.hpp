/// Programs that run beside this one.
#pragma once

#include <sys/types.h>

#include <array>
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
};

/// A process of a group of its own, so that Ctrl-C does not reach it: this process decides. It gets
/// one thread for each library that knows OMP_NUM_THREADS or OPENBLAS_NUM_THREADS.
class ChildProcess {
 public:
  /// Throws EngineFailure.
  explicit ChildProcess(const ChildRequest& request);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Kills what still runs.
  ~ChildProcess();

  /// False when the process is gone.
  [[nodiscard]] bool send(const void* bytes, std::size_t count) const;
  [[nodiscard]] bool receive(void* bytes, std::size_t count) const;

  /// Waits for its end, and returns its status as `waitpid` has it.
  int wait();

 private:
  ChildProcess(const ChildRequest& request, std::array<int, 2> ends);

  pid_t id_ = -1;
  Descriptor stream_;
};

}  // namespace dravo
