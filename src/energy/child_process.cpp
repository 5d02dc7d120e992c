#include "energy/child_process.hpp"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): sigaction and kill are of POSIX
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>

#include "energy/system_engine.hpp"

namespace dravo {
namespace {

/// That of this process, with one thread for each library.
std::vector<std::string> environment_of_child() {
  constexpr std::array<std::string_view, 2> kOneThread{"OMP_NUM_THREADS=", "OPENBLAS_NUM_THREADS="};
  std::vector<std::string> environment;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view text(*entry);
    if (!text.starts_with(kOneThread[0]) && !text.starts_with(kOneThread[1]))
      environment.emplace_back(text);
  }
  for (const std::string_view name : kOneThread) environment.push_back(std::string(name) + "1");
  return environment;
}

/// As the system's functions want them.
std::vector<char*> pointers_to(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

class FileActions {
 public:
  FileActions(const ChildRequest& request, int conversation) {
    ::posix_spawn_file_actions_init(&actions_);
    if (conversation >= 0)
      ::posix_spawn_file_actions_adddup2(&actions_, conversation, STDIN_FILENO);
    else
      ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    constexpr mode_t kOwnersAlone = 0600;
    ::posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, request.output.c_str(),
                                       O_WRONLY | O_CREAT | O_TRUNC, kOwnersAlone);
    ::posix_spawn_file_actions_adddup2(&actions_, STDOUT_FILENO, STDERR_FILENO);
    ::posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
    ::posix_spawn_file_actions_addchdir_np(&actions_, request.folder.c_str());
  }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  ~FileActions() { ::posix_spawn_file_actions_destroy(&actions_); }

  [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

/// The group, and signals as they are by default.
class Attributes {
 public:
  explicit Attributes(pid_t group) {
    ::posix_spawnattr_init(&attributes_);
    sigset_t all, none;
    ::sigfillset(&all);
    ::sigemptyset(&none);
    ::posix_spawnattr_setsigdefault(&attributes_, &all);
    ::posix_spawnattr_setsigmask(&attributes_, &none);
    ::posix_spawnattr_setpgroup(&attributes_, group);
    ::posix_spawnattr_setflags(
        &attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  ~Attributes() { ::posix_spawnattr_destroy(&attributes_); }

  [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_{};
};

/// Both ends end with this process, so that a child sees when it is gone.
std::array<int, 2> new_stream() {
  std::array<int, 2> ends{-1, -1};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
    throw NoEngine("cannot talk to an engine: " + std::system_category().message(errno));
  return ends;
}

/// Whoever started this process may have told it to ignore the ends of its children. Then nobody
/// could wait for one.
void hear_of_ended_children() {
  struct sigaction action {};
  if (::sigaction(SIGCHLD, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
    ::signal(SIGCHLD, SIG_DFL);
}

}  // namespace

ChildProcess::ChildProcess(const ChildRequest& request)
    : ChildProcess(request, request.conversation ? new_stream() : std::array{-1, -1}) {}

ChildProcess::ChildProcess(const ChildRequest& request, std::array<int, 2> ends)
    : leads_(request.group == 0), stream_(ends[0]) {
  const Descriptor others_end(ends[1]);
  hear_of_ended_children();
  std::vector<std::string> command = request.command, environment = environment_of_child();
  const FileActions actions(request, others_end.get());
  const Attributes attributes(request.group);
  const int failure = ::posix_spawn(&id_, command.front().c_str(), actions.get(), attributes.get(),
                                    pointers_to(command).data(), pointers_to(environment).data());
  if (failure == 0) return;
  throw NoEngine(fmt::format("{}: cannot be started in {}: {}", request.command.front(),
                             request.folder, std::system_category().message(failure)));
}

ChildProcess::~ChildProcess() {
  if (id_ >= 0) (void)end();
}

bool ChildProcess::send(const void* bytes, std::size_t count) const {
  const auto* next = static_cast<const char*>(bytes);
  while (count > 0) {
    const ssize_t sent = ::send(stream_.get(), next, count, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    next += sent;
    count -= static_cast<std::size_t>(sent);
  }
  return true;
}

bool ChildProcess::receive(void* bytes, std::size_t count) const {
  auto* next = static_cast<char*>(bytes);
  while (count > 0) {
    const ssize_t got = ::recv(stream_.get(), next, count, 0);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    next += got;
    count -= static_cast<std::size_t>(got);
  }
  return true;
}

bool ChildProcess::is_heard_within(std::chrono::milliseconds time) const {
  const auto end = std::chrono::steady_clock::now() + time;
  pollfd stream{stream_.get(), POLLIN, 0};
  int left = 0;
  do {
    const auto rest = end - std::chrono::steady_clock::now();
    left = static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(rest).count());
    if (::poll(&stream, 1, std::max(left, 0)) > 0) return true;
  } while (left > 0);
  return false;
}

int ChildProcess::wait() {
  int status = 0;
  while (::waitpid(id_, &status, 0) < 0 && errno == EINTR) {
  }
  id_ = -1;
  return status;
}

int ChildProcess::end() {
  ::kill(leads_ ? -id_ : id_, SIGKILL);
  return wait();
}

std::string end_text(int status) {
  if (!WIFSIGNALED(status)) return fmt::format("it ended with status {}", WEXITSTATUS(status));
  const int signal = WTERMSIG(status);
  return fmt::format("signal {} ended it ({})", signal, ::strsignal(signal));
}

// The shell waits for a line that never comes; when this process is gone, it reads the end.
GuardedGroup::GuardedGroup()
    : guard_({{"/bin/sh", "-c", "read -r _; kill -s KILL 0"}, "/", "/dev/null", true}) {}

}  // namespace dravo
