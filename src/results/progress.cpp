#include "results/progress.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iostream>

namespace dravo {

std::string progress_line(std::int64_t poses, std::int64_t done, std::int64_t made,
                          double seconds) {
  const double rate = seconds > 0.0 ? static_cast<double>(made) / seconds : 0.0;
  std::string line = fmt::format("{} %, {} of {} poses",
                                 100 * done / std::max<std::int64_t>(poses, 1), done, poses);
  if (rate > 0.0)
    line +=
        fmt::format(", {} a second, {} left",
                    rate < 1.0 ? fmt::format("{:.2g}", rate) : std::to_string(std::llround(rate)),
                    duration_text(static_cast<double>(poses - done) / rate));
  return line;
}

Progress::Progress(Kind kind, std::int64_t poses, std::int64_t done)
    : line_(kind), poses_(poses), done_before_(done) {
  if (kind != Kind::none && done > 0)
    std::cerr << fmt::format("dravo: {} of {} poses were made earlier\n", done, poses)
              << std::flush;
}

void Progress::show(std::int64_t done) {
  line_.show(
      [&](double seconds) { return progress_line(poses_, done, done - done_before_, seconds); });
}

}  // namespace dravo
