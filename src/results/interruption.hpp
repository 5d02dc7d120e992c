/// Ctrl-C, and the request of a batch system to end.
#pragma once

#include <cstdint>
#include <string>

#include "dravo/error.hpp"

namespace dravo {

/// A scan was asked to end before it was done. What it had made stays, and can be gone on with.
class Interrupted : public Error {
 public:
  Interrupted(int signal, std::int64_t done, std::int64_t poses);
  Interrupted(int signal, const std::string& after);  ///< "120 starts"

  [[nodiscard]] int signal() const { return signal_; }  ///< SIGINT or SIGTERM

 private:
  int signal_;
};

/// While it lives, the first SIGINT or SIGTERM is noted and does nothing else; a second one ends
/// the process at once. A signal that was ignored before stays so. One at a time.
class InterruptionWatch {
 public:
  InterruptionWatch();
  ~InterruptionWatch();
  InterruptionWatch(const InterruptionWatch&) = delete;
  InterruptionWatch& operator=(const InterruptionWatch&) = delete;

  /// The signal that came, 0 for none.
  [[nodiscard]] static int noted();
};

}  // namespace dravo
