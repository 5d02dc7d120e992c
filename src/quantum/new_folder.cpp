#include "quantum/new_folder.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "common/descriptor.hpp"
#include "common/errors.hpp"
#include "common/uninterrupted.hpp"
#include "results/durable.hpp"

namespace dravo {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kFolder = 0777, kFile = 0666, kProgram = 0777;  // as the user wants

std::string without_slash(std::string name) {
  while (name.size() > 1 && name.back() == '/') name.pop_back();
  return name;
}

void require_free(const std::string& name) {
  if (name.empty()) throw InvalidInput("--output: expected the name of a folder, found none");
  std::error_code failure;
  const auto status = fs::symlink_status(name, failure);
  if (!fs::exists(status)) return;
  if (fs::is_directory(status) && fs::is_empty(name, failure) && !failure) return;
  throw IoFailure(name + ": exists already; choose another --output, or remove it");
}

}  // namespace

NewFolder::NewFolder(std::string name)
    : name_(without_slash(std::move(name))), part_(name_ + ".part") {
  require_free(name_);
  if (::mkdir(part_.c_str(), kFolder) == 0) return;
  if (errno != EEXIST) throw_system_failure(part_, "make the folder");
  throw IoFailure(part_ +
                  ": is there already, left of an export that was stopped, or of one that goes on; "
                  "remove it if it is not needed");
}

NewFolder::~NewFolder() {
  std::error_code ignored;  // what cannot be removed stays under a name that says it is a part
  if (!finished_) fs::remove_all(part_, ignored);
}

void NewFolder::make_folder(const std::string& name) const {
  const std::string folder = part_ + "/" + name;
  if (::mkdir(folder.c_str(), kFolder) != 0) throw_system_failure(folder, "make the folder");
}

void NewFolder::write(const std::string& file, std::string_view text, bool program) const {
  const std::string name = part_ + "/" + file;
  Descriptor opened(uninterrupted([&] {
    return ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                  program ? kProgram : kFile);
  }));
  if (opened.get() < 0) throw_system_failure(name, "open for writing");
  write_at(opened.get(), name, text, 0);
  if (!opened.close()) throw_system_failure(name, "write");
}

void NewFolder::finish() {
  {
    const Descriptor folder(::open(part_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.get() < 0) throw_system_failure(part_, "open");
    if (::syncfs(folder.get()) != 0) throw_system_failure(part_, "write");
  }
  put_in_place(part_, name_);
  finished_ = true;
}

}  // namespace dravo
