#include "results/progress.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <iostream>

namespace dravo {
namespace {

std::string time_left(double seconds) {
  constexpr double kLongest = 1e9;
  const auto whole = static_cast<std::int64_t>(std::ceil(std::min(seconds, kLongest)));
  if (whole < 60) return fmt::format("{} s", whole);
  if (whole < 3600) return fmt::format("{} min {} s", whole / 60, whole % 60);
  return fmt::format("{} h {} min", whole / 3600, whole / 60 % 60);
}

}  // namespace

std::string progress_line(std::int64_t poses, std::int64_t done, std::int64_t made,
                          double seconds) {
  const double rate = seconds > 0.0 ? static_cast<double>(made) / seconds : 0.0;
  std::string line = fmt::format("{} %, {} of {} poses",
                                 100 * done / std::max<std::int64_t>(poses, 1), done, poses);
  if (rate > 0.0)
    line += fmt::format(", {} a second, {} left", std::llround(rate),
                        time_left(static_cast<double>(poses - done) / rate));
  return line;
}

Progress::Progress(Kind kind, std::int64_t poses, std::int64_t done)
    : kind_(kind), poses_(poses), done_before_(done) {
  if (kind_ != Kind::none && done > 0)
    std::cerr << fmt::format("dravo: {} of {} poses were made earlier\n", done, poses)
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
