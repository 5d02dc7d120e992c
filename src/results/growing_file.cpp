#include "results/growing_file.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <utility>

#include "common/errors.hpp"
#include "common/uninterrupted.hpp"
#include "results/durable.hpp"

namespace dravo {

GrowingFile::GrowingFile(const std::string& name)
    : name_(name),
      descriptor_(
          uninterrupted([&] { return ::open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666); })) {
  if (descriptor_.get() < 0) throw_system_failure(name, "open for writing");
}

void GrowingFile::cut(std::int64_t size, Checksum checksum) {
  if (uninterrupted([&] { return ::ftruncate(descriptor_.get(), size); }) != 0)
    throw_system_failure(name_, "write");
  size_ = size;
  checksum_ = std::move(checksum);
}

void GrowingFile::append(std::string_view bytes) {
  write_at(descriptor_.get(), name_, bytes, size_);
  checksum_.add(bytes);
  size_ += static_cast<std::int64_t>(bytes.size());
}

void GrowingFile::sync() { sync_bytes(descriptor_.get(), name_); }

/// Some file systems report only now that they could not keep the bytes.
void GrowingFile::finish(const std::string& final_name) {
  sync_file(descriptor_.get(), name_);
  if (!descriptor_.close()) throw_system_failure(name_, "write");
  put_in_place(name_, final_name);
}

}  // namespace dravo
