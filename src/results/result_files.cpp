#include "results/result_files.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include "common/errors.hpp"
#include "common/free_format_reader.hpp"
#include "common/shown_text.hpp"
#include "results/checksum.hpp"
#include "results/durable.hpp"

namespace dravo {
namespace {

constexpr std::string_view kPart = ".part";

/// Of all files that a scan may have under its final names. The record first: it must not tell of
/// results that are gone.
std::vector<std::string> result_names(const std::string& name) {
  std::vector<std::string> names{name + kRecordEnding};
  for (const ResultName& result : kResultNames) names.push_back(name + result.ending);
  return names;
}

bool exists(const std::string& name) { return ::access(name.c_str(), F_OK) == 0; }

/// And of what is left of unfinished ones.
std::vector<std::string> names_with_parts(const std::string& name) {
  std::vector<std::string> names = result_names(name);
  for (const std::string& result : result_names(name)) names.push_back(result + std::string(kPart));
  return names;
}

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

void require_checksum(const std::string& record, const std::string& name, const FileState& state) {
  if (!state.checksum || checksum_of_first(state.bytes, name) == *state.checksum) return;
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

std::string part_name(const std::string& name, ResultFile file) {
  return name + ending_of(file) + std::string(kPart);
}

ResultFiles::ResultFiles(std::string name, const std::vector<ResultFile>& files)
    : name_(std::move(name)) {
  for (const ResultFile file : files) {
    const std::string result = name_ + ending_of(file);
    const std::string part = part_name(name_, file);
    // A kill between the last steps of a scan leaves a result that has its name already.
    if (!exists(part) && exists(result)) rename_file(result, part);
    files_[file] = std::make_unique<GrowingFile>(part);
  }
}

void ResultFiles::begin() {
  for (const auto& [kind, file] : files_) file->cut(0, {});
}

bool ResultFiles::take_up(const ScanRecord& record) {
  std::map<ResultFile, Checksum> found;
  for (const auto& [kind, file] : files_) {
    const FileState& state = record.files.at(kind);
    auto checksum = checksum_in(*file, state.bytes, state.checksum);
    if (!checksum) return false;
    found.emplace(kind, *std::move(checksum));
  }
  for (const auto& [kind, file] : files_)
    file->cut(record.files.at(kind).bytes, std::move(found.at(kind)));
  return true;
}

void ResultFiles::append(ResultFile file, std::string_view bytes) {
  const auto found = files_.find(file);
  if (found != files_.end()) found->second->append(bytes);
}

void ResultFiles::describe(ScanRecord& record) const {
  for (const auto& [kind, file] : files_) record.files[kind] = {file->size(), file->checksum()};
}

void ResultFiles::sync() {
  for (const auto& [kind, file] : files_) file->sync();
}

void ResultFiles::finish(const ScanRecord& record) {
  for (const auto& [kind, file] : files_) file->finish(name_ + ending_of(kind));
  write_record(name_ + kRecordEnding, text_of(record) + "\n");
}

ScanRecord finished_record(const std::string& name) {
  const std::string file = name + kRecordEnding;
  ScanRecord record = parse_record(file, read_file(file));
  for (const auto& [kind, state] : record.files) require_size(name + ending_of(kind), state.bytes);
  return record;
}

void require_unchanged(const std::string& name, const ScanRecord& record) {
  const std::string file = name + kRecordEnding;
  for (const auto& [kind, state] : record.files)
    require_checksum(file, name + ending_of(kind), state);
}

bool has_finished_record(const std::string& name) { return exists(name + kRecordEnding); }

void refuse_earlier_results(const std::string& name) {
  for (const std::string& result : result_names(name))
    if (exists(result)) throw IoFailure(result + ": exists already; --overwrite replaces it");
}

double bytes_of_earlier_results(const std::string& name) {
  double bytes = 0.0;
  for (const std::string& result : names_with_parts(name)) {
    std::error_code failure;
    const auto size = std::filesystem::file_size(result, failure);
    if (!failure) bytes += static_cast<double>(size);
  }
  return bytes;
}

void remove_earlier_results(const std::string& name) {
  for (const std::string& result : names_with_parts(name)) ::unlink(result.c_str());
}

void replace_results(const std::string& name, const std::function<void()>& write) {
  remove_earlier_results(name);
  try {
    write();
  } catch (...) {
    remove_earlier_results(name);
    throw;
  }
}

void remove_unfinished(const std::string& name) {
  for (const std::string& result : result_names(name))
    ::unlink((result + std::string(kPart)).c_str());
}

void require_file_name(const std::string& name) {
  const std::string file = std::filesystem::path(name).filename().string();
  if (file.empty() || file == "." || file == "..")
    throw IoFailure("--output: expected the name of a file without ending, found " +
                    dravo::quoted(name));
}

void refuse_inputs_as_results(const std::string& name, const std::vector<std::string>& inputs) {
  std::vector<std::string> written = names_with_parts(name);
  written.push_back(name + ".progress");
  for (const std::string& input : inputs)
    for (const std::string& file : written) {
      std::error_code ignored;  // what does not exist is not the same
      if (std::filesystem::equivalent(input, file, ignored))
        throw IoFailure(input + ": would be replaced by the results; choose another --output");
    }
}

}  // namespace dravo
