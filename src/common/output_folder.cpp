#include "common/output_folder.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <utility>

#include "common/errors.hpp"
#include "common/uninterrupted.hpp"

namespace dravo {
namespace {

class DescriptorSink : public ByteSink {
 public:
  DescriptorSink(int descriptor, std::string name)
      : descriptor_(descriptor), name_(std::move(name)) {}

  void write(std::string_view bytes) override {
    while (!bytes.empty()) {
      const ssize_t written =
          uninterrupted([&] { return ::write(descriptor_, bytes.data(), bytes.size()); });
      if (written < 0) throw_system_failure(name_, "write");
      bytes.remove_prefix(static_cast<std::size_t>(written));
    }
  }

 protected:
  int descriptor_;
  std::string name_;
};

class FileSink final : public DescriptorSink {
 public:
  /// `name` is the file that a reader of a later message knows.
  FileSink(const std::string& path, const std::string& name)
      : DescriptorSink(uninterrupted([&] {
                         return ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC,
                                       0666);
                       }),
                       name) {
    if (descriptor_ < 0) throw_system_failure(path, "open for writing");
  }
  FileSink(const FileSink&) = delete;
  FileSink& operator=(const FileSink&) = delete;
  ~FileSink() override {
    if (descriptor_ >= 0) ::close(descriptor_);
  }

  void close() override {
    if (descriptor_ >= 0 && !closes(std::exchange(descriptor_, -1)))
      throw_system_failure(name_, "write");
  }
};

}  // namespace

std::unique_ptr<ByteSink> WorkingDirectory::open(const std::string& name) {
  return std::make_unique<FileSink>(name, name);
}

void WorkingDirectory::replace(const std::string& name, std::string_view contents) {
  const std::string unfinished = name + ".part";
  FileSink file(unfinished, name);
  try {
    file.write(contents);
    file.close();
    if (std::rename(unfinished.c_str(), name.c_str()) != 0)
      throw_system_failure(name, "put in place");
  } catch (const IoFailure&) {
    ::unlink(unfinished.c_str());
    throw;
  }
}

std::unique_ptr<ByteSink> sink_to_descriptor(int descriptor, const std::string& name) {
  return std::make_unique<DescriptorSink>(descriptor, name);
}

}  // namespace dravo
