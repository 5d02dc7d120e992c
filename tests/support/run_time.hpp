/// How long something took.
#pragma once

#include <sys/resource.h>
#include <sys/time.h>

namespace dravo::test {

/// Processor time since its construction: other work on the machine does not count.
class RunTime {
 public:
  [[nodiscard]] double seconds() const { return used() - start_; }

 private:
  static double used() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto in_seconds = [](const timeval& t) {
      return static_cast<double>(t.tv_sec) + 1e-6 * static_cast<double>(t.tv_usec);
    };
    return in_seconds(usage.ru_utime) + in_seconds(usage.ru_stime);
  }

  double start_ = used();
};

}  // namespace dravo::test
