#include "energy/private_folder.hpp"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "energy/system_engine.hpp"

namespace dravo {
namespace {

namespace fs = std::filesystem;

constexpr auto kPrefix = "dravo-engine-";

enum class Claim {
  ours,
  others,      ///< somebody has it, it is somebody's, or it is there no more
  impossible,  ///< the system has no locks there, or no descriptor
};

/// Locks the folder itself, until the descriptor is closed or the process ends.
Claim claim(const std::string& folder, std::optional<Descriptor>& lock) {
  lock.emplace(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (lock->get() < 0) return errno == ENOENT ? Claim::others : Claim::impossible;
  if (::flock(lock->get(), LOCK_EX | LOCK_NB) != 0)
    return errno == EWOULDBLOCK ? Claim::others : Claim::impossible;
  struct stat locked {
  }, named{};
  const bool ours = ::fstat(lock->get(), &locked) == 0 && ::stat(folder.c_str(), &named) == 0 &&
                    locked.st_dev == named.st_dev && locked.st_ino == named.st_ino &&
                    locked.st_uid == ::geteuid();
  return ours ? Claim::ours : Claim::others;
}

/// Whatever cannot be removed stays: it is in nobody's way.
void remove_left_behind(const fs::path& parent) {
  std::error_code ignored;
  for (fs::directory_iterator entry(parent, ignored), end; entry != end; entry.increment(ignored)) {
    if (!entry->path().filename().string().starts_with(kPrefix)) continue;
    std::optional<Descriptor> lock;
    if (claim(entry->path().string(), lock) == Claim::ours) fs::remove_all(entry->path(), ignored);
  }
}

fs::path folder_of_temporary_files() {
  const char* const told = std::getenv("TMPDIR");
  return fs::absolute(told != nullptr && *told != '\0' ? told : "/tmp");
}

std::string new_folder(const fs::path& parent) {
  std::string path = (parent / kPrefix).string() + "XXXXXX";
  if (::mkdtemp(path.data()) != nullptr) return path;
  const std::string reason = std::system_category().message(errno);
  throw NoEngine(fmt::format(
      "{}: cannot make a folder for an engine there: {}; the variable TMPDIR can name another place",
      parent.string(), reason));
}

}  // namespace

PrivateFolder::PrivateFolder() {
  const fs::path parent = folder_of_temporary_files();
  remove_left_behind(parent);
  // Between its making and its lock another run may take a folder for one that was left behind.
  // Where there are no locks, nobody does.
  do {
    path_ = new_folder(parent);
  } while (claim(path_, lock_) == Claim::others);
}

PrivateFolder::~PrivateFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

}  // namespace dravo
