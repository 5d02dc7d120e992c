#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "common/record_stream.hpp"

namespace dravo {

/// A file that is written at its end, and closed with its owner.
class GrowingFile {
 public:
  /// Makes the file or opens what is there. Throws IoFailure.
  explicit GrowingFile(const std::string& name);
  GrowingFile(const GrowingFile&) = delete;
  GrowingFile& operator=(const GrowingFile&) = delete;
  ~GrowingFile();

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] std::int64_t size() const;

  /// Shortens the file; what is appended follows there.
  void cut(std::int64_t size);
  void append(std::string_view bytes) { sink_->write(bytes); }

 private:
  std::string name_;
  int descriptor_;
  std::unique_ptr<ByteSink> sink_;
};

}  // namespace dravo
