/// Loaded before the C library into the program under test (LD_PRELOAD): counts its calls that
/// write anything, and lets one of them fail. The processes that the program starts are left alone.
///
///     FAILING_CALL   "N REASON": the N-th call fails with this errno; 0 takes half of the bytes
///     FAILING_LOG    file that gets a line for each call: name of the call, file
///     FAILING_CLOCK  milliseconds that pass from one look at the steady clock to the next
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "cli/in_front.hpp"

namespace {

using dravo::test::last_part;
using dravo::test::look_at_clock;
using dravo::test::name_of;
using dravo::test::real;

/// The settings as they are at the start. Its children do not get them.
struct Settings {
  std::string log;
  std::string clock;
  int number = 0;
  int reason = 0;

  static std::string taken(const char* name) {
    const char* const value = std::getenv(name);
    std::string text = value == nullptr ? "" : value;
    ::unsetenv(name);
    return text;
  }

  Settings() : log(taken("FAILING_LOG")), clock(taken("FAILING_CLOCK")) {
    (void)std::sscanf(taken("FAILING_CALL").c_str(), "%d %d", &number, &reason);
    ::unsetenv("LD_PRELOAD");
  }
};

const Settings& settings() {
  static const Settings kSettings;
  return kSettings;
}

// Before the program runs.
[[maybe_unused]] const Settings& kTakenAtTheStart = settings();

/// The functions of the system are those of this library, so none of them.
void write_down(const std::string& line) {
  if (settings().log.empty()) return;
  const long file = ::syscall(SYS_openat, AT_FDCWD, settings().log.c_str(),
                              O_WRONLY | O_APPEND | O_CLOEXEC, 0600);
  if (::syscall(SYS_write, file, line.data(), line.size()) < 0) std::abort();
  ::syscall(SYS_close, file);
}

/// What becomes of a call.
enum class Fate { done, half, failed };

Fate fate_of(const char* call, const std::string& file) {
  static std::atomic<int> calls = 0;
  const int kept = errno;
  const bool disturbed = ++calls == settings().number;
  const bool half = disturbed && settings().reason == 0;
  write_down(std::string(call) + " " + file + "\n");
  errno = disturbed && !half ? settings().reason : kept;
  if (!disturbed) return Fate::done;
  return half ? Fate::half : Fate::failed;
}

bool fails(const char* call, const std::string& file) { return fate_of(call, file) != Fate::done; }

/// Half of the bytes, but at least one.
std::size_t half_of(std::size_t size) { return size < 2 ? size : size / 2; }

bool is_for_writing(int flags) { return (flags & (O_ACCMODE | O_CREAT | O_TRUNC)) != O_RDONLY; }

/// A file, no terminal and no stream to another process.
bool is_written_file(int descriptor) {
  struct stat status {};
  const int flags = ::fcntl(descriptor, F_GETFL);
  return flags >= 0 && is_for_writing(flags) && ::fstat(descriptor, &status) == 0 &&
         S_ISREG(status.st_mode);
}

using OpenFunction = int(const char*, int, ...);

int open_by(const char* function, const char* path, int flags, mode_t mode) {
  if (is_for_writing(flags) && fails("open", last_part(path))) return -1;
  return real<OpenFunction>(function)(path, flags, mode);
}

std::FILE* fopen_by(const char* function, const char* path, const char* mode) {
  const bool writes = std::string(mode).find_first_of("wa+") != std::string::npos;
  if (writes && fails("open", last_part(path))) return nullptr;
  return real<std::FILE*(const char*, const char*)>(function)(path, mode);
}

mode_t mode_in(int flags, va_list& more) {
  return (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = mode_in(flags, more);
  va_end(more);
  return open_by("open", path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = mode_in(flags, more);
  va_end(more);
  return open_by("open64", path, flags, mode);
}

std::FILE* fopen(const char* path, const char* mode) { return fopen_by("fopen", path, mode); }

std::FILE* fopen64(const char* path, const char* mode) { return fopen_by("fopen64", path, mode); }

ssize_t write(int descriptor, const void* bytes, size_t size) {
  const auto really = real<ssize_t(int, const void*, size_t)>("write");
  if (!is_written_file(descriptor)) return really(descriptor, bytes, size);
  const Fate fate = fate_of("write", name_of(descriptor));
  if (fate == Fate::failed) return -1;
  return really(descriptor, bytes, fate == Fate::half ? half_of(size) : size);
}

ssize_t pwrite(int descriptor, const void* bytes, size_t size, off_t offset) {
  const auto really = real<ssize_t(int, const void*, size_t, off_t)>("pwrite");
  const Fate fate = fate_of("write", name_of(descriptor));
  if (fate == Fate::failed) return -1;
  return really(descriptor, bytes, fate == Fate::half ? half_of(size) : size, offset);
}

/// Half of the first part, where there are several.
ssize_t writev(int descriptor, const struct iovec* parts, int count) {
  const auto really = real<ssize_t(int, const struct iovec*, int)>("writev");
  if (!is_written_file(descriptor)) return really(descriptor, parts, count);
  const Fate fate = fate_of("write", name_of(descriptor));
  if (fate == Fate::failed) return -1;
  const bool half = fate == Fate::half && count > 0;
  const struct iovec some { half ? parts->iov_base : nullptr, half ? half_of(parts->iov_len) : 0 };
  return half ? really(descriptor, &some, 1) : really(descriptor, parts, count);
}

int ftruncate(int descriptor, off_t size) noexcept {
  if (fails("ftruncate", name_of(descriptor))) return -1;
  return real<int(int, off_t)>("ftruncate")(descriptor, size);
}

int truncate(const char* path, off_t size) noexcept {
  if (fails("ftruncate", last_part(path))) return -1;
  return real<int(const char*, off_t)>("truncate")(path, size);
}

// Nobody takes the disk away while a test runs, so nothing need be forced to it.
int fdatasync(int descriptor) { return fails("sync", name_of(descriptor)) ? -1 : 0; }

int fsync(int descriptor) { return fails("sync", name_of(descriptor)) ? -1 : 0; }

int syncfs(int descriptor) noexcept { return fails("syncfs", name_of(descriptor)) ? -1 : 0; }

/// The system closes a file, whatever it says.
int close(int descriptor) {
  const auto really = real<int(int)>("close");
  const bool failed = is_written_file(descriptor) && fails("close", name_of(descriptor));
  const int reason = errno;
  const int result = really(descriptor);
  if (!failed) return result;
  errno = reason;
  return -1;
}

int fclose(std::FILE* file) {
  const auto really = real<int(std::FILE*)>("fclose");
  const int descriptor = ::fileno(file);
  const bool failed = is_written_file(descriptor) && fails("close", name_of(descriptor));
  const int reason = errno;
  const int result = really(file);
  if (!failed) return result;
  errno = reason;
  return -1;
}

int rename(const char* from, const char* to) noexcept {
  if (fails("rename", last_part(to))) return -1;
  return real<int(const char*, const char*)>("rename")(from, to);
}

int link(const char* from, const char* to) noexcept {
  if (fails("link", last_part(to))) return -1;
  return real<int(const char*, const char*)>("link")(from, to);
}

int unlink(const char* path) noexcept {
  return fails("unlink", last_part(path)) ? -1 : real<int(const char*)>("unlink")(path);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
  if (fails("unlink", last_part(path))) return -1;
  return real<int(int, const char*, int)>("unlinkat")(folder, path, flags);
}

int rmdir(const char* path) noexcept {
  return fails("unlink", last_part(path)) ? -1 : real<int(const char*)>("rmdir")(path);
}

int remove(const char* path) noexcept {
  return fails("unlink", last_part(path)) ? -1 : real<int(const char*)>("remove")(path);
}

int mkdir(const char* path, mode_t mode) noexcept {
  return fails("mkdir", last_part(path)) ? -1 : real<int(const char*, mode_t)>("mkdir")(path, mode);
}

/// The file of a folder with a name that nobody knows before is the folder that it stands in.
char* mkdtemp(char* path) noexcept {
  const std::string name(path);
  if (fails("mkdir", last_part(name.substr(0, name.rfind('/'))))) return nullptr;
  return real<char*(char*)>("mkdtemp")(path);
}

int clock_gettime(clockid_t clock, struct timespec* now) noexcept {
  const std::string& step = settings().clock;
  return look_at_clock(step.empty() ? nullptr : step.c_str(), clock, now);
}
}
