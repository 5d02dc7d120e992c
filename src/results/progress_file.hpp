/// NAME.progress: how far a scan is, for the process that goes on with it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/descriptor.hpp"
#include "results/scan_record.hpp"

namespace dravo {

[[nodiscard]] bool has_progress(const std::string& scan);

/// How many poses a scan has made by its progress, whoever holds it now; 0 when nothing tells it.
[[nodiscard]] std::int64_t poses_in_progress(const std::string& scan);

/// Held by one process at a time. Two records are kept, each with its fingerprint, so that the one
/// before the last stays whole while the last is written. A file without any record goes with its
/// owner.
class ProgressFile {
 public:
  /// Throws IoFailure while another process holds it.
  explicit ProgressFile(const std::string& scan);
  ProgressFile(const ProgressFile&) = delete;
  ProgressFile& operator=(const ProgressFile&) = delete;
  ~ProgressFile();

  [[nodiscard]] const std::string& name() const { return name_; }

  /// No scan has begun here.
  [[nodiscard]] bool empty() const { return size_ == 0; }

  /// The whole ones, later first. Throws IoFailure when the file holds other things only.
  [[nodiscard]] std::vector<ScanRecord> records() const;

  /// The record is on the disk when this returns, without its molecules; what it tells of must be
  /// there before.
  void write(const ScanRecord& record);

  /// The scan starts over.
  void clear();

  /// Nobody needs it any more, so it goes with its owner. Results that are complete stay so when
  /// that fails.
  void let_go();

 private:
  std::string name_;
  Descriptor descriptor_;
  std::int64_t size_ = 0;
  int next_slot_ = 0;
};

}  // namespace dravo
