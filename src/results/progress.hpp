/// How far a scan is, on standard error.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace dravo {

/// On a terminal a line that is written over several times a second; elsewhere a line a minute.
class Progress {
 public:
  enum class Kind { none, terminal, lines };

  /// For `poses` in all, `done` of them made by an earlier run, which is told.
  Progress(Kind kind, std::int64_t poses, std::int64_t done);

  /// Takes the line of a terminal away.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void show(std::int64_t done);

 private:
  using Clock = std::chrono::steady_clock;

  Kind kind_;
  std::int64_t poses_;
  std::int64_t done_before_;
  Clock::time_point begin_ = Clock::now();
  Clock::time_point shown_ = begin_;
  std::size_t columns_ = 0;  ///< of the line on the terminal
};

/// "42 %, 420000 of 1000000 poses, 350000 a second, 2 s left"; `seconds` were spent on `made` of
/// the `done` poses.
std::string progress_line(std::int64_t poses, std::int64_t done, std::int64_t made, double seconds);

/// The kind for standard error as it is.
Progress::Kind kind_of_progress(bool quiet);

}  // namespace dravo
