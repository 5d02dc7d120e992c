#include "results/progress_file.hpp"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "common/errors.hpp"
#include "common/free_format_reader.hpp"
#include "common/uninterrupted.hpp"
#include "results/durable.hpp"
#include "scan/fingerprint.hpp"

namespace dravo {
namespace {

constexpr auto kEnding = ".progress";
constexpr std::size_t kSlotBytes = 16384;

std::string fingerprint_of(std::string_view text) {
  Fingerprint fingerprint;
  fingerprint.add(text);
  return std::to_string(fingerprint.value());
}

/// A record and its fingerprint on one line; empty for anything else.
std::optional<ScanRecord> record_in(const std::string& name, std::string_view slot) {
  const std::size_t end = slot.find('\n');
  const std::size_t blank = slot.substr(0, end).rfind(' ');
  if (end == std::string_view::npos || blank == std::string_view::npos) return std::nullopt;
  const std::string_view text = slot.substr(0, blank);
  if (slot.substr(blank + 1, end - blank - 1) != fingerprint_of(text)) return std::nullopt;
  return parse_record(name, std::string(text));
}

/// The whole ones, later first.
std::vector<ScanRecord> records_in(const std::string& name) {
  std::string text = read_file(name);
  text.resize(2 * kSlotBytes);
  std::vector<ScanRecord> records;
  for (const std::size_t slot : {0U, 1U})
    if (const auto record =
            record_in(name, std::string_view(text).substr(slot * kSlotBytes, kSlotBytes)))
      records.push_back(*record);
  std::sort(records.begin(), records.end(), [](const ScanRecord& a, const ScanRecord& b) {
    return a.totals.poses > b.totals.poses;
  });
  return records;
}

}  // namespace

bool has_progress(const std::string& scan) { return ::access((scan + kEnding).c_str(), F_OK) == 0; }

std::int64_t poses_in_progress(const std::string& scan) {
  if (!has_progress(scan)) return 0;
  try {
    const auto records = records_in(scan + kEnding);
    return records.empty() ? 0 : records.front().totals.poses;
  } catch (const Error&) {  // whoever goes on with it meets this too
    return 0;
  }
}

ProgressFile::ProgressFile(const std::string& scan)
    : name_(scan + kEnding), descriptor_(uninterrupted([&] {
        return ::open(name_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
      })) {
  if (descriptor_.get() < 0) throw_system_failure(name_, "open for writing");
  // Some file systems of clusters have no locks; there the user sees to it.
  const bool held = ::flock(descriptor_.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  struct stat status {};
  const bool known = ::fstat(descriptor_.get(), &status) == 0;
  const bool just_removed = known && status.st_nlink == 0;
  if (held || just_removed || !known)
    throw IoFailure(name_ + ": another process is writing these results");
  size_ = status.st_size;
}

ProgressFile::~ProgressFile() {
  if (empty()) ::unlink(name_.c_str());
}

std::vector<ScanRecord> ProgressFile::records() const {
  std::vector<ScanRecord> records = records_in(name_);
  if (records.empty())
    throw IoFailure(name_ +
                    ": expected the progress of a scan, found something else; --overwrite "
                    "starts over");
  return records;
}

void ProgressFile::write(const ScanRecord& record) {
  ScanRecord small = record;
  small.molecules = nullptr;
  const std::string text = text_of(small);
  const std::string line = fmt::format("{} {}\n", text, fingerprint_of(text));
  if (line.size() > kSlotBytes) throw std::length_error("the record of a scan is too long");
  const auto offset = static_cast<std::int64_t>(kSlotBytes) * next_slot_;
  write_at(descriptor_.get(), name_, line, offset);
  sync_bytes(descriptor_.get(), name_);
  next_slot_ = 1 - next_slot_;
  size_ = 1;
}

void ProgressFile::clear() {
  if (uninterrupted([&] { return ::ftruncate(descriptor_.get(), 0); }) != 0)
    throw_system_failure(name_, "write");
  size_ = 0;
  next_slot_ = 0;
}

void ProgressFile::let_go() {
  std::error_code ignored;
  std::filesystem::resize_file(name_, 0, ignored);  // what cannot be removed tells nothing
  size_ = 0;
}

}  // namespace dravo
