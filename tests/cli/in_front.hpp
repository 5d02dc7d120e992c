/// For libraries that are loaded before the C library into the program under test (LD_PRELOAD).
#pragma once

#include <dlfcn.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <string>

namespace dravo::test {

/// The function that would have been called.
template <class Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

inline std::string last_part(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/// Of the file behind a descriptor.
inline std::string name_of(int descriptor) {
  std::array<char, 4096> path{};
  const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
  const ssize_t size = ::readlink(link.c_str(), path.data(), path.size());
  return size < 0 ? "?" : last_part(std::string(path.data(), static_cast<std::size_t>(size)));
}

/// `step` are the milliseconds from one look at the steady clock to the next; null for the true
/// time.
inline int look_at_clock(const char* step, clockid_t clock, struct timespec* now) {
  static std::atomic<long> looks = 0;
  if (clock != CLOCK_MONOTONIC || step == nullptr)
    return real<int(clockid_t, struct timespec*)>("clock_gettime")(clock, now);
  constexpr long kThousand = 1000;
  const long milliseconds = std::atol(step) * ++looks;
  now->tv_sec = milliseconds / kThousand;
  now->tv_nsec = milliseconds % kThousand * kThousand * kThousand;
  return 0;
}

}  // namespace dravo::test
