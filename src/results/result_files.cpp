#include "results/result_files.hpp"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include "common/errors.hpp"
#include "common/free_format_reader.hpp"
#include "common/output_folder.hpp"

namespace dravo {
namespace {

constexpr std::string_view kPart = ".part";
constexpr std::array<const char*, 3> kEndings{kFramesEnding, kTableEnding, kRecordEnding};

bool exists(const std::string& name) { return ::access(name.c_str(), F_OK) == 0; }

void rename_file(const std::string& from, const std::string& to) {
  if (std::rename(from.c_str(), to.c_str()) != 0) throw_system_failure(to, "put in place");
}

void require_size(const std::string& name, std::int64_t bytes) {
  std::error_code failure;
  const auto size = std::filesystem::file_size(name, failure);
  if (failure) throw IoFailure(name + ": cannot read: " + failure.message());
  if (size != static_cast<std::uintmax_t>(bytes))
    throw IoFailure(name + ": expected " + std::to_string(bytes) + " bytes, found " +
                    std::to_string(size));
}

}  // namespace

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

ScanRecord finished_record(const std::string& name) {
  const std::string file = name + kRecordEnding;
  ScanRecord record = parse_record(file, read_file(file));
  if (record.with_frames()) require_size(name + kFramesEnding, record.frame_bytes);
  require_size(name + kTableEnding, record.table_bytes);
  return record;
}

bool has_finished_record(const std::string& name) { return exists(name + kRecordEnding); }

void refuse_earlier_results(const std::string& name) {
  for (const char* ending : kEndings)
    if (exists(name + ending))
      throw IoFailure(name + ending + ": exists already; --overwrite replaces it");
}

void remove_earlier_results(const std::string& name) {
  // The record first: it must not tell of results that are gone.
  for (const char* ending : {kRecordEnding, kFramesEnding, kTableEnding})
    ::unlink((name + ending).c_str());
}

void refuse_inputs_as_results(const std::string& name, const std::vector<std::string>& inputs) {
  constexpr std::array<const char*, 7> kWritten{".xyz",  ".xyz.part",  ".csv",     ".csv.part",
                                                ".json", ".json.part", ".progress"};
  for (const std::string& input : inputs)
    for (const char* ending : kWritten) {
      std::error_code ignored;  // what does not exist is not the same
      if (std::filesystem::equivalent(input, name + ending, ignored))
        throw IoFailure(input + ": would be replaced by the results; choose another --output");
    }
}

}  // namespace dravo
