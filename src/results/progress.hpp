/// How far a scan is, on standard error.
#pragma once

#include <cstdint>
#include <string>

#include "results/status_line.hpp"

namespace dravo {

class Progress {
 public:
  using Kind = StatusLine::Kind;

  /// For `poses` in all, `done` of them made by an earlier run, which is told.
  Progress(Kind kind, std::int64_t poses, std::int64_t done);

  void show(std::int64_t done);

 private:
  StatusLine line_;
  std::int64_t poses_;
  std::int64_t done_before_;
};

/// "42 %, 420000 of 1000000 poses, 350000 a second, 2 s left"; `seconds` were spent on `made` of
/// the `done` poses.
std::string progress_line(std::int64_t poses, std::int64_t done, std::int64_t made, double seconds);

}  // namespace dravo
