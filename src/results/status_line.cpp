#include "results/status_line.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <iostream>

namespace dravo {

StatusLine::~StatusLine() {
  if (columns_ > 0) std::cerr << '\r' << std::string(columns_, ' ') << '\r' << std::flush;
}

void StatusLine::show(const std::function<std::string(double)>& text) {
  if (kind_ == Kind::none) return;
  constexpr auto kOnTerminal = std::chrono::milliseconds(200);
  constexpr auto kOnLines = std::chrono::minutes(1);
  const auto now = Clock::now();
  if (now - shown_ < (kind_ == Kind::terminal ? Clock::duration(kOnTerminal) : kOnLines)) return;
  shown_ = now;
  std::string line = "dravo: " + text(std::chrono::duration<double>(now - begin_).count());
  if (kind_ == Kind::lines) {
    std::cerr << line + "\n" << std::flush;
    return;
  }
  columns_ = std::max(columns_, line.size());
  line.append(columns_ - line.size(), ' ');
  std::cerr << "\r" + line << std::flush;
}

StatusLine::Kind kind_of_status(bool quiet) {
  if (quiet) return StatusLine::Kind::none;
  return ::isatty(STDERR_FILENO) == 1 ? StatusLine::Kind::terminal : StatusLine::Kind::lines;
}

std::string frames_text(std::int64_t frames, std::int64_t bytes_done, std::int64_t bytes,
                        double seconds) {
  std::string text = fmt::format("{} frames, {} a second", frames,
                                 std::llround(static_cast<double>(frames) / seconds));
  if (bytes == 0 || bytes_done == 0) return text;
  const double part = static_cast<double>(bytes_done) / static_cast<double>(bytes);
  return fmt::format("{} %, {}, {} left", static_cast<int>(100.0 * part), text,
                     duration_text(seconds * (1.0 - part) / part));
}

std::string duration_text(double seconds) {
  constexpr double kLongest = 1e9;
  const auto whole = static_cast<std::int64_t>(std::ceil(std::min(seconds, kLongest)));
  if (whole < 60) return fmt::format("{} s", whole);
  if (whole < 3600) return fmt::format("{} min {} s", whole / 60, whole % 60);
  return fmt::format("{} h {} min", whole / 3600, whole / 60 % 60);
}

}  // namespace dravo
