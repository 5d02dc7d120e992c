#include "results/durable.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "common/descriptor.hpp"
#include "common/errors.hpp"
#include "common/uninterrupted.hpp"

namespace dravo {
namespace {

/// Special files and some network file systems have nothing to sync.
bool cannot_sync() { return errno == EINVAL || errno == ENOTSUP; }

}  // namespace

void write_at(int descriptor, const std::string& name, std::string_view bytes,
              std::int64_t offset) {
  while (!bytes.empty()) {
    const ssize_t written =
        uninterrupted([&] { return ::pwrite(descriptor, bytes.data(), bytes.size(), offset); });
    if (written < 0) throw_system_failure(name, "write");
    bytes.remove_prefix(static_cast<std::size_t>(written));
    offset += written;
  }
}

void sync_bytes(int descriptor, const std::string& name) {
  if (uninterrupted([&] { return ::fdatasync(descriptor); }) != 0 && !cannot_sync())
    throw_system_failure(name, "write");
}

void sync_file(int descriptor, const std::string& name) {
  if (uninterrupted([&] { return ::fsync(descriptor); }) != 0 && !cannot_sync())
    throw_system_failure(name, "write");
}

void sync_folder_of(const std::string& name) {
  const std::filesystem::path parent = std::filesystem::path(name).parent_path();
  const std::string folder = parent.empty() ? "." : parent.string();
  std::error_code ignored;  // who works in a folder that is gone gets no name of it
  const std::string shown =
      parent.empty() ? std::filesystem::current_path(ignored).string() : folder;
  const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.get() < 0 && errno == EACCES) return;  // files may be made where nobody may look
  if (opened.get() < 0) throw_system_failure(shown, "open");
  sync_file(opened.get(), shown);
}

void put_in_place(const std::string& from, const std::string& to) {
  if (std::rename(from.c_str(), to.c_str()) != 0) throw_system_failure(to, "put in place");
  sync_folder_of(to);
}

}  // namespace dravo
