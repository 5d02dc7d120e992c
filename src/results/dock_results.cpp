#include "results/dock_results.hpp"

#include <limits>
#include <utility>

#include "results/result_files.hpp"

namespace dravo {

void write_minima(const std::string& name, const DockTexts& texts, ScanRecord& record) {
  ResultFiles files(name, record.results());
  files.begin();
  files.append(ResultFile::table, texts.table);
  files.append(ResultFile::frames, texts.frames);
  const std::int64_t starts = record.totals.poses;
  record.totals = texts.totals;
  record.totals.poses = starts;
  record.files.clear();
  files.describe(record);
  files.finish(record);
}

DockResults::DockResults(const std::string& name, const DockOptions& options,
                         std::shared_ptr<DockFindings> found)
    : name_(name),
      files_(name, {ResultFile::starts}),
      columns_(columns_of_starts(options)),
      found_(std::move(found)) {}

void DockResults::begin(ScanRecord& record) {
  files_.begin();
  files_.append(ResultFile::starts, columns_.heading());
  files_.describe(record);
}

bool DockResults::take_up(const ScanRecord& record) {
  if (!files_.take_up(record)) return false;
  for (const DockStart& start : read_table(part_name(name_, ResultFile::starts), columns_))
    found_->add(start);
  return true;
}

void DockResults::append(const TextChunk& chunk, ScanRecord& record) {
  files_.append(ResultFile::starts, chunk.table);
  files_.describe(record);
}

void DockResults::finish(ScanRecord& record) {
  if (!found_->texts) return files_.finish(record);
  record.docking = found_->summary;
  write_minima(name_, *found_->texts, record);
  remove_unfinished(name_);
}

TextChunk chunk_of(const DockStart& start, const Columns<DockStart>& columns) {
  TextChunk chunk;
  columns.append_row(chunk.table, start);
  chunk.totals = {1, 0, 1, 0, std::numeric_limits<double>::infinity(), 0};
  return chunk;
}

}  // namespace dravo
