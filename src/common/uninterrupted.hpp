#pragma once

#include <unistd.h>

#include <cerrno>

namespace dravo {

/// Calls a function of the system again while signals interrupt it.
template <class Call>
auto uninterrupted(const Call& call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

/// False when the bytes of the file may be lost. A signal that interrupts it loses none, and the
/// descriptor is closed.
inline bool closes(int descriptor) { return ::close(descriptor) == 0 || errno == EINTR; }

}  // namespace dravo
