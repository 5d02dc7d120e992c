#include "cli/opened_page.hpp"

#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace dravo {
namespace {

bool is_set(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr && *value != '\0';
}

bool has_display() { return is_set("DISPLAY") || is_set("WAYLAND_DISPLAY"); }

/// A program in a session of its own, without our streams; what keeps it from beginning, or 0.
int begin(const char* program, std::string argument) {
  std::string name = program;
  std::array<char*, 3> words{name.data(), argument.data(), nullptr};
  posix_spawn_file_actions_t streams;
  posix_spawnattr_t session;
  ::posix_spawn_file_actions_init(&streams);
  ::posix_spawnattr_init(&session);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    ::posix_spawn_file_actions_addopen(&streams, stream, "/dev/null", O_RDWR, 0);
  ::posix_spawnattr_setflags(&session, POSIX_SPAWN_SETSID);
  pid_t child = 0;
  const int failure = ::posix_spawnp(&child, program, &streams, &session, words.data(), environ);
  ::posix_spawnattr_destroy(&session);
  ::posix_spawn_file_actions_destroy(&streams);
  return failure;
}

}  // namespace

std::string open_page(const std::string& file) {
  if (!has_display()) return "";
  // Whole, so that it begins with no hyphen.
  const int failure = begin("xdg-open", std::filesystem::absolute(file).string());
  if (failure == 0) return "";
  return fmt::format("{}: cannot open it by xdg-open: {}", file, std::strerror(failure));
}

}  // namespace dravo
