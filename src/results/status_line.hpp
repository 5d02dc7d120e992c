/// How far a long work is, on standard error.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace dravo {

/// On a terminal a line that is written over several times a second; elsewhere a line a minute.
class StatusLine {
 public:
  enum class Kind { none, terminal, lines };

  explicit StatusLine(Kind kind) : kind_(kind) {}

  /// Takes the line of a terminal away.
  ~StatusLine();
  StatusLine(const StatusLine&) = delete;
  StatusLine& operator=(const StatusLine&) = delete;

  [[nodiscard]] Kind kind() const { return kind_; }

  /// `text(seconds)` makes the line when it is time for one; the seconds count from the beginning.
  void show(const std::function<std::string(double)>& text);

 private:
  using Clock = std::chrono::steady_clock;

  Kind kind_;
  Clock::time_point begin_ = Clock::now();
  Clock::time_point shown_ = begin_;
  std::size_t columns_ = 0;  ///< of the line on the terminal
};

/// The kind for standard error as it is.
StatusLine::Kind kind_of_status(bool quiet);

/// "42 %, 4200 frames, 350 a second, 17 s left": of a file of `bytes`, 0 when not known, of which
/// `bytes_done` lie behind the frames.
std::string frames_text(std::int64_t frames, std::int64_t bytes_done, std::int64_t bytes,
                        double seconds);

/// "42 s", "3 min 20 s", "5 h 7 min"; rounded up.
std::string duration_text(double seconds);

}  // namespace dravo
