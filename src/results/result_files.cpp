#include "results/result_files.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include "common/errors.hpp"
#include "common/free_format_reader.hpp"
#include "results/checksum.hpp"
#include "results/durable.hpp"

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
  if (failure) throw IoFailure(fmt::format("{}: cannot read: {}", name, failure.message()));
  if (size != static_cast<std::uintmax_t>(bytes))
    throw IoFailure(fmt::format("{}: expected {} bytes, found {}", name, bytes, size));
}

/// Of so many bytes, when they are there and have the checksum that a record tells of.
std::optional<Checksum> checksum_in(const GrowingFile& file, std::int64_t bytes,
                                    const std::optional<std::uint64_t>& expected) {
  auto found = file.checksum_of_first(bytes);
  return found && expected && found->value() != *expected ? std::nullopt : std::move(found);
}

void require_checksum(const std::string& record, const std::string& name, std::int64_t bytes,
                      const std::optional<std::uint64_t>& expected) {
  if (!expected) return;
  if (checksum_of_first(bytes, name) == *expected) return;
  throw IoFailure(fmt::format(
      "{}: has changed since it was written: its checksum is not that in {}", name, record));
}

void write_record(const std::string& name, const std::string& text) {
  const std::string part = name + std::string(kPart);
  try {
    GrowingFile file(part);
    file.cut(0, {});
    file.append(text);
    file.finish(name);
  } catch (const IoFailure&) {
    ::unlink(part.c_str());
    throw;
  }
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

void ResultFiles::begin() {
  if (frames_) frames_->cut(0, {});
  table_->cut(0, {});
}

bool ResultFiles::take_up(const ScanRecord& record) {
  auto frames = frames_ ? checksum_in(*frames_, record.frame_bytes, record.frame_checksum)
                        : std::optional(Checksum());
  auto table = checksum_in(*table_, record.table_bytes, record.table_checksum);
  if (!frames || !table) return false;
  if (frames_) frames_->cut(record.frame_bytes, *std::move(frames));
  table_->cut(record.table_bytes, *std::move(table));
  return true;
}

void ResultFiles::append_frames(std::string_view bytes) {
  if (frames_) frames_->append(bytes);
}

void ResultFiles::append_table(std::string_view bytes) { table_->append(bytes); }

void ResultFiles::describe(ScanRecord& record) const {
  if (frames_) {
    record.frame_bytes = frames_->size();
    record.frame_checksum = frames_->checksum();
  }
  record.table_bytes = table_->size();
  record.table_checksum = table_->checksum();
}

void ResultFiles::sync() {
  if (frames_) frames_->sync();
  table_->sync();
}

void ResultFiles::finish(const ScanRecord& record) {
  for (auto* file : {frames_.get(), table_.get()})
    if (file != nullptr) file->finish(file->name().substr(0, file->name().size() - kPart.size()));
  write_record(name_ + kRecordEnding, text_of(record) + "\n");
}

ScanRecord finished_record(const std::string& name) {
  const std::string file = name + kRecordEnding;
  ScanRecord record = parse_record(file, read_file(file));
  if (record.with_frames()) require_size(name + kFramesEnding, record.frame_bytes);
  require_size(name + kTableEnding, record.table_bytes);
  return record;
}

void require_unchanged(const std::string& name, const ScanRecord& record) {
  const std::string file = name + kRecordEnding;
  if (record.with_frames())
    require_checksum(file, name + kFramesEnding, record.frame_bytes, record.frame_checksum);
  require_checksum(file, name + kTableEnding, record.table_bytes, record.table_checksum);
}

bool has_finished_record(const std::string& name) { return exists(name + kRecordEnding); }

void refuse_earlier_results(const std::string& name) {
  for (const char* ending : kEndings)
    if (exists(name + ending))
      throw IoFailure(fmt::format("{}{}: exists already; --overwrite replaces it", name, ending));
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
