#include "energy/private_folder.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "dravo/energy.hpp"

namespace dravo {
namespace {

namespace fs = std::filesystem;

constexpr auto kPrefix = "dravo-engine-";

/// A lock on the folder itself, which ends with the process that has it; below zero when somebody
/// else has it, or it is no folder of this user.
int locked(const std::string& folder) {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (descriptor < 0) return descriptor;
  struct stat opened {
  }, named{};
  const bool ours = ::fstat(descriptor, &opened) == 0 && opened.st_uid == ::geteuid() &&
                    ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 &&
                    ::stat(folder.c_str(), &named) == 0 && named.st_ino == opened.st_ino;
  if (ours) return descriptor;
  ::close(descriptor);
  return -1;
}

/// Whatever cannot be removed stays: it is in nobody's way.
void remove_left_behind(const fs::path& parent) {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(parent, ignored)) {
    if (!entry.path().filename().string().starts_with(kPrefix)) continue;
    const int lock = locked(entry.path().string());
    if (lock < 0) continue;
    fs::remove_all(entry.path(), ignored);
    ::close(lock);
  }
}

}  // namespace

PrivateFolder::PrivateFolder() {
  std::error_code none;
  const fs::path parent = fs::temp_directory_path(none);
  if (none) throw EngineFailure("no folder for temporary files: " + none.message());
  remove_left_behind(parent);
  // Between its making and its lock another run may take a folder for one that was left behind.
  while (lock_ < 0) {
    path_ = (parent / kPrefix).string() + "XXXXXX";
    if (::mkdtemp(path_.data()) == nullptr)
      throw EngineFailure(parent.string() + ": cannot make a folder for an engine: " +
                          std::system_category().message(errno));
    lock_ = locked(path_);
  }
}

PrivateFolder::~PrivateFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
  ::close(lock_);
}

}  // namespace dravo
