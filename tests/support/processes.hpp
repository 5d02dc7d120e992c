/// Programs as child processes: in a folder, under limits, and watched at every system call.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/temporary_folder.hpp"

namespace dravo::test {

/// What a child process does last before it becomes the program.
using Preparation = std::function<void()>;

/// For the child process between fork and exec.
inline void redirect(int target, const char* path, int flags) {
  const int descriptor = ::open(path, flags, 0600);
  if (descriptor < 0 || ::dup2(descriptor, target) < 0) ::_exit(126);
  ::close(descriptor);
}

/// For the child process too.
inline void set_limit(decltype(RLIMIT_FSIZE) resource, rlim_t value) {
  const rlimit limit{value, value};
  if (::setrlimit(resource, &limit) != 0) ::_exit(126);
}

/// No file may become longer.
inline Preparation files_up_to(std::size_t bytes) {
  return [bytes] { set_limit(RLIMIT_FSIZE, bytes); };
}

/// Begins a program in `folder`, its standard streams nowhere; `words` are its path and arguments.
/// The caller waits for it.
inline pid_t start_in(const TemporaryFolder& folder, std::vector<std::string> words,
                      const Preparation& prepare = {}) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child > 0) return child;
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    redirect(stream, "/dev/null", O_RDWR);
  if (::chdir(folder.path().c_str()) != 0) ::_exit(126);
  if (prepare) prepare();
  ::execv(arguments[0], arguments.data());
  ::_exit(127);
}

/// Runs a program as `start_in` begins it, which must succeed, and calls `look` before it and
/// whenever it enters or leaves the system. Files change nowhere else, so these are all the states
/// in which a kill can leave them. False when tracing is not allowed.
inline bool watch_every_system_call(const TemporaryFolder& folder,
                                    const std::vector<std::string>& words,
                                    const std::function<void()>& look) {
  const pid_t child = start_in(folder, words, [] {
    // The leak check that ends a program under AddressSanitizer waits for a tracer of its own.
    ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(125);
  });
  int status = 0;
  ::waitpid(child, &status, 0);
  if (!WIFSTOPPED(status)) return false;
  look();
  while (::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) == 0 &&
         ::waitpid(child, &status, 0) == child && WIFSTOPPED(status))
    look();
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  return true;
}

}  // namespace dravo::test
