#include "scan/scan_files.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "common/errors.hpp"
#include "common/output_folder.hpp"
#include "common/record_reader.hpp"

namespace dravo {
namespace {

constexpr auto kProgressEnding = ".progress";
constexpr std::string_view kPart = ".part";

/// What a kill may cost at most, besides the chunks in work; records are small beside it.
constexpr std::int64_t kMostUnrecordedBytes = 1 << 20;
constexpr auto kMostUnrecordedTime = std::chrono::milliseconds(200);

[[noreturn]] void fail(const std::string& name, const char* action) {
  const int reason = errno;
  throw IoFailure(name + ": cannot " + action + ": " + std::generic_category().message(reason));
}

bool exists(const std::string& name) { return ::access(name.c_str(), F_OK) == 0; }

void rename_file(const std::string& from, const std::string& to) {
  if (std::rename(from.c_str(), to.c_str()) != 0) fail(to, "put in place");
}

void require_same_origin(const std::string& name, const ScanRecord& earlier,
                         const ScanRecord& now) {
  const std::string differs = difference(earlier, now);
  if (!differs.empty()) throw IoFailure(name + ": is of another scan: " + differs);
}

/// The lines that end with a line feed, the last one first.
std::vector<std::string_view> whole_lines_backwards(std::string_view text) {
  std::vector<std::string_view> lines;
  text = text.substr(0, text.rfind('\n') + 1);
  while (!text.empty()) {
    text.remove_suffix(1);
    const std::size_t start = text.rfind('\n') + 1;
    lines.push_back(text.substr(start));
    text = text.substr(0, start);
  }
  return lines;
}

}  // namespace

GrowingFile::GrowingFile(const std::string& name)
    : name_(name), descriptor_(::open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
  if (descriptor_ < 0) fail(name, "open for writing");
  sink_ = sink_to_descriptor(descriptor_, name);
}

GrowingFile::~GrowingFile() { ::close(descriptor_); }

std::int64_t GrowingFile::size() const { return ::lseek(descriptor_, 0, SEEK_END); }

void GrowingFile::cut(std::int64_t size) {
  if (::ftruncate(descriptor_, size) != 0 || ::lseek(descriptor_, size, SEEK_SET) != size)
    fail(name_, "write");
}

bool GrowingFile::lock() {
  // Some file systems of clusters have no locks; there the user sees to it.
  return ::flock(descriptor_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

ResultFiles::ResultFiles(std::string name, bool with_frames) : name_(std::move(name)) {
  const auto open = [&](const char* ending) {
    const std::string result = name_ + ending;
    std::string part = result;
    part += kPart;
    // A kill between the last steps of a scan leaves a result that has its name already.
    if (!exists(part) && exists(result)) rename_file(result, part);
    return std::make_unique<GrowingFile>(part);
  };
  if (with_frames) frames_ = open(kFramesEnding);
  table_ = open(kTableEnding);
}

bool ResultFiles::have(const ScanRecord& record) const {
  return (!frames_ || frames_->size() >= record.frame_bytes) &&
         table_->size() >= record.table_bytes;
}

void ResultFiles::cut(const ScanRecord& record) {
  if (frames_) frames_->cut(record.frame_bytes);
  table_->cut(record.table_bytes);
}

void ResultFiles::append_frames(std::string_view bytes, ScanRecord& record) {
  if (frames_) frames_->append(bytes);
  record.frame_bytes += static_cast<std::int64_t>(bytes.size());
}

void ResultFiles::append_table(std::string_view bytes, ScanRecord& record) {
  table_->append(bytes);
  record.table_bytes += static_cast<std::int64_t>(bytes.size());
}

void ResultFiles::finish(const ScanRecord& record) {
  for (auto* file : {&frames_, &table_}) {
    if (!*file) continue;
    const std::string part = (*file)->name();
    file->reset();
    rename_file(part, part.substr(0, part.size() - kPart.size()));
  }
  WorkingDirectory().replace(name_ + kRecordEnding, text_of(record) + "\n");
}

void refuse_earlier_results(const std::string& name) {
  for (const char* ending : {kFramesEnding, kTableEnding, kRecordEnding})
    if (exists(name + ending))
      throw IoFailure(name + ending + ": exists already; --overwrite replaces it");
}

void remove_earlier_results(const std::string& name) {
  for (const char* ending : {kRecordEnding, kFramesEnding, kTableEnding})
    ::unlink((name + ending).c_str());
}

ScanFiles::ScanFiles(std::string name, const ScanRecord& plan, const std::string& table_heading,
                     Earlier earlier)
    : name_(std::move(name)), record_(plan) {
  const std::string record_file = name_ + kRecordEnding;
  if (earlier == Earlier::resume && exists(record_file)) {
    record_ = parse_record(record_file, read_file(record_file));
    require_same_origin(record_file, record_, plan);
    return;
  }
  refuse_files_in_the_way(earlier);
  progress_ = std::make_unique<GrowingFile>(name_ + kProgressEnding);
  if (!progress_->lock())
    throw IoFailure(progress_->name() + ": another process is making this scan");
  if (earlier == Earlier::overwrite) remove_earlier_results(name_);
  results_ = std::make_unique<ResultFiles>(name_, plan.with_frames());
  if (earlier != Earlier::resume || !take_up(plan)) begin(table_heading);
}

/// The files of an unfinished scan are not in the way of one that goes on with it.
void ScanFiles::refuse_files_in_the_way(Earlier earlier) const {
  if (earlier == Earlier::overwrite) return;
  if (!exists(name_ + kProgressEnding)) return refuse_earlier_results(name_);
  if (earlier == Earlier::refuse)
    throw IoFailure(
        name_ + kProgressEnding +
        ": is of an unfinished scan; --resume goes on with it, --overwrite begins anew");
}

void ScanFiles::begin(const std::string& table_heading) {
  progress_->cut(0);
  results_->cut(record_);
  results_->append_table(table_heading, record_);
  record();
}

/// From the last record whose bytes have all arrived. False when there is none.
bool ScanFiles::take_up(const ScanRecord& plan) {
  const std::string text = read_file(progress_->name());
  for (const std::string_view line : whole_lines_backwards(text)) {
    const ScanRecord earlier = parse_record(progress_->name(), std::string(line));
    require_same_origin(progress_->name(), earlier, plan);
    if (!results_->have(earlier)) continue;
    record_ = earlier;
    progress_->cut(line.data() + line.size() + 1 - text.data());
    results_->cut(record_);
    return true;
  }
  return false;
}

void ScanFiles::append(const Chunk& chunk) {
  results_->append_frames(chunk.frames, record_);
  results_->append_table(chunk.table, record_);
  record_.totals.add(chunk.totals);
  unrecorded_bytes_ += static_cast<std::int64_t>(chunk.frames.size() + chunk.table.size());
  const auto now = std::chrono::steady_clock::now();
  if (unrecorded_bytes_ >= kMostUnrecordedBytes || now - recorded_ >= kMostUnrecordedTime) record();
}

void ScanFiles::record() {
  progress_->append(text_of(record_) + "\n");
  unrecorded_bytes_ = 0;
  recorded_ = std::chrono::steady_clock::now();
}

void ScanFiles::finish() {
  results_->finish(record_);
  results_.reset();
  ::unlink(progress_->name().c_str());
  progress_.reset();
}

}  // namespace dravo
