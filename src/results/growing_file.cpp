#include "results/growing_file.hpp"

#include <fcntl.h>
#include <unistd.h>

#include "common/errors.hpp"
#include "common/output_folder.hpp"

namespace dravo {

GrowingFile::GrowingFile(const std::string& name)
    : name_(name), descriptor_(::open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
  if (descriptor_ < 0) throw_system_failure(name, "open for writing");
  sink_ = sink_to_descriptor(descriptor_, name);
}

GrowingFile::~GrowingFile() { ::close(descriptor_); }

std::int64_t GrowingFile::size() const { return ::lseek(descriptor_, 0, SEEK_END); }

void GrowingFile::cut(std::int64_t size) {
  if (::ftruncate(descriptor_, size) != 0 || ::lseek(descriptor_, size, SEEK_SET) != size)
    throw_system_failure(name_, "write");
}

}  // namespace dravo
