#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/descriptor.hpp"
#include "results/checksum.hpp"

namespace dravo {

/// A file that is written at its end, and closed with its owner. All functions throw IoFailure when
/// the system refuses.
class GrowingFile {
 public:
  /// Makes the file or opens what is there. Before anything is appended it must be cut.
  explicit GrowingFile(const std::string& name);
  GrowingFile(const GrowingFile&) = delete;
  GrowingFile& operator=(const GrowingFile&) = delete;
  ~GrowingFile() = default;

  [[nodiscard]] const std::string& name() const { return name_; }

  /// Of the bytes that were left by the last cut and appended since.
  [[nodiscard]] std::int64_t size() const { return size_; }
  [[nodiscard]] std::uint64_t checksum() const { return checksum_.value(); }

  /// Of the first bytes of the file as it is; empty when it has fewer.
  [[nodiscard]] std::optional<Checksum> checksum_of_first(std::int64_t bytes) const {
    return dravo::checksum_of_first(bytes, descriptor_.get(), name_);
  }

  /// Shortens the file to the bytes of that checksum; what is appended follows there.
  void cut(std::int64_t size, Checksum checksum);

  void append(std::string_view bytes);

  /// All bytes are on the disk when this returns.
  void sync();

  /// The complete file gets its name, for good; nothing more may be done with it.
  void finish(const std::string& final_name);

 private:
  std::string name_;
  Descriptor descriptor_;
  std::int64_t size_ = 0;
  Checksum checksum_;
};

}  // namespace dravo
