#include "results/progress.hpp"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <iostream>

namespace dravo {
namespace {

std::string time_left(double seconds) {
  constexpr double kLongest = 1e9;
  const auto whole = static_cast<std::int64_t>(std::ceil(std::min(seconds, kLongest)));
  if (whole < 60) return std::to_string(whole) + " s";
  if (whole < 3600) return std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
  return std::to_string(whole / 3600) + " h " + std::to_string(whole / 60 % 60) + " min";
}

}  // namespace

std::string progress_line(std::int64_t poses, std::int64_t done, std::int64_t made,
                          double seconds) {
  const double rate = seconds > 0.0 ? static_cast<double>(made) / seconds : 0.0;
  std::string line = std::to_string(100 * done / std::max<std::int64_t>(poses, 1)) + " %, " +
                     std::to_string(done) + " of " + std::to_string(poses) + " poses";
  if (rate > 0.0)
    line += ", " + std::to_string(std::llround(rate)) + " a second, " +
            time_left(static_cast<double>(poses - done) / rate) + " left";
  return line;
}

Progress::Progress(Kind kind, std::int64_t poses, std::int64_t done)
    : kind_(kind), poses_(poses), done_before_(done) {
  if (kind_ != Kind::none && done > 0)
    std::cerr << "dravo: " + std::to_string(done) + " of " + std::to_string(poses) +
                     " poses were made earlier\n"
              << std::flush;
}

Progress::~Progress() {
  if (columns_ > 0) std::cerr << '\r' << std::string(columns_, ' ') << '\r' << std::flush;
}

void Progress::show(std::int64_t done) {
  if (kind_ == Kind::none) return;
  constexpr auto kOnTerminal = std::chrono::milliseconds(200);
  constexpr auto kOnLines = std::chrono::minutes(1);
  const auto now = Clock::now();
  if (now - shown_ < (kind_ == Kind::terminal ? Clock::duration(kOnTerminal) : kOnLines)) return;
  shown_ = now;
  const double seconds = std::chrono::duration<double>(now - begin_).count();
  std::string line = "dravo: " + progress_line(poses_, done, done - done_before_, seconds);
  if (kind_ == Kind::lines) {
    std::cerr << line + "\n" << std::flush;
    return;
  }
  columns_ = std::max(columns_, line.size());
  line.append(columns_ - line.size(), ' ');
  std::cerr << "\r" + line << std::flush;
}

Progress::Kind kind_of_progress(bool quiet) {
  if (quiet) return Progress::Kind::none;
  return ::isatty(STDERR_FILENO) == 1 ? Progress::Kind::terminal : Progress::Kind::lines;
}

}  // namespace dravo
