/// Loaded before the C library into the program under test (LD_PRELOAD): writes down what it asks
/// the system to keep, in this order, and fails or ends it on demand.
///
///     WATCHED_LOG    file that gets a line for each call: name of the call, file, details
///     WATCHED_FAIL   "CALL FILE ERRNO N": the N-th such call fails
///     WATCHED_KILL   N: the process is killed at its N-th call
///     WATCHED_SIGNAL "NUMBER N COUNT": the process gets the signal at its N-th call, and at COUNT
///                    calls in all
///     WATCHED_CLOCK  milliseconds that pass from one look at the steady clock to the next
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "cli/in_front.hpp"

namespace {

using dravo::test::last_part;
using dravo::test::look_at_clock;
using dravo::test::name_of;
using dravo::test::real;

void write_down(const std::string& line) {
  const char* log = std::getenv("WATCHED_LOG");
  if (log == nullptr) return;
  const int file = ::open(log, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
  if (::write(file, line.data(), line.size()) < 0) std::abort();
  static auto* const really = real<int(int)>("close");
  really(file);
}

bool shall_fail(const std::string& call, const std::string& file) {
  static std::atomic<int> met = 0;
  const char* wish = std::getenv("WATCHED_FAIL");
  char wished_call[64], wished_file[256];
  int reason = 0, number = 0;
  if (wish == nullptr ||
      std::sscanf(wish, "%63s %255s %d %d", wished_call, wished_file, &reason, &number) != 4 ||
      call != wished_call || file != wished_file || ++met != number)
    return false;
  errno = reason;
  return true;
}

/// Whether the call shall be made.
bool watch(const std::string& call, const std::string& file, const std::string& details = "") {
  static std::atomic<int> calls = 0;
  const char* killed_at = std::getenv("WATCHED_KILL");
  if (killed_at != nullptr && ++calls == std::atoi(killed_at)) ::kill(::getpid(), SIGKILL);
  int signal = 0, first = 0, count = 0;
  const char* signalled = std::getenv("WATCHED_SIGNAL");
  if (signalled != nullptr && std::sscanf(signalled, "%d %d %d", &signal, &first, &count) == 3) {
    static std::atomic<int> signalled_calls = 0;
    const int now = ++signalled_calls;
    if (now >= first && now < first + count) ::kill(::getpid(), signal);
  }
  const bool fails = shall_fail(call, file);
  write_down((fails ? "failed-" : "") + call + " " + file + " " + details + "\n");
  return !fails;
}

/// What a record tells of, when it is one.
std::string details_of(const std::string& file, const void* bytes, std::size_t size, off_t offset) {
  std::string details = std::to_string(offset) + " " + std::to_string(size);
  if (!file.ends_with(".progress")) return details;
  const std::string text(static_cast<const char*>(bytes), size);
  return details + " " + text.substr(0, text.find('\n'));
}

}  // namespace

extern "C" {

ssize_t pwrite(int descriptor, const void* bytes, size_t size, off_t offset) {
  const std::string file = name_of(descriptor);
  if (!watch("pwrite", file, details_of(file, bytes, size, offset))) return -1;
  return real<ssize_t(int, const void*, size_t, off_t)>("pwrite")(descriptor, bytes, size, offset);
}

// Nobody takes the disk away while a test runs, so nothing need be forced to it.
int fdatasync(int descriptor) { return watch("fdatasync", name_of(descriptor)) ? 0 : -1; }

int fsync(int descriptor) { return watch("fsync", name_of(descriptor)) ? 0 : -1; }

int syncfs(int descriptor) noexcept { return watch("syncfs", name_of(descriptor)) ? 0 : -1; }

int close(int descriptor) {
  static auto* const really = real<int(int)>("close");
  const std::string file = name_of(descriptor);
  const bool closed = !file.ends_with(".part") || watch("close", file);
  const int reason = errno;
  const int result = really(descriptor);
  if (closed) return result;
  errno = reason;
  return -1;
}

int rename(const char* from, const char* to) noexcept {
  return watch("rename", last_part(from), last_part(to))
             ? real<int(const char*, const char*)>("rename")(from, to)
             : -1;
}

int unlink(const char* path) noexcept {
  return watch("unlink", last_part(path)) ? real<int(const char*)>("unlink")(path) : -1;
}

int clock_gettime(clockid_t clock, struct timespec* now) noexcept {
  return look_at_clock(std::getenv("WATCHED_CLOCK"), clock, now);
}
}
