#include "results/poses_again.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "common/errors.hpp"
#include "common/free_format_reader.hpp"
#include "common/shown_text.hpp"
#include "common/text.hpp"
#include "driver/user_parameters.hpp"
#include "results/progress_file.hpp"
#include "results/result_files.hpp"
#include "results/text_chunk.hpp"

namespace dravo {
namespace {

PoseColumns columns_in(std::string_view heading, bool exact, bool energies) {
  const auto names = parts_between(heading, ',');
  const auto has = [&](std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
  };
  return {has("above_contact"), has("equivalents"), exact, energies};
}

/// More may follow behind a comma.
bool begins_with(std::string_view row, std::string_view begin) {
  return row.starts_with(begin) && (row.size() == begin.size() || row[begin.size()] == ',');
}

std::string_view without_line_end(std::string_view line) { return line.substr(0, line.size() - 1); }

}  // namespace

ScanRecord record_of_results(const std::string& name) {
  const std::string file = name + kRecordEnding;
  if (has_finished_record(name)) return parse_record(file, read_file(file));
  if (has_progress(name))
    throw IoFailure(name + ": is unfinished; the command that makes it goes on with --resume");
  throw IoFailure(fmt::format("{}: there is no scan of this name, which has {}", name, file));
}

ScanRecord record_of_finished(const std::string& name) {
  ScanRecord record = record_of_results(name);
  if (record.is_docking())
    throw InvalidInput(fmt::format("{0}: is a docking, not a scan; its frames are in {0}{1}", name,
                                   ending_of(ResultFile::frames)));
  return record;
}

ContactCriterion criterion_of(const ScanRecord& record) {
  const auto distance = record.origin.find(kContactDistance);
  return distance == record.origin.end() ? ContactCriterion()
                                         : ContactCriterion::of_text(distance->second);
}

PairPlacer placer_of(const std::string& name, const ScanRecord& record) {
  const std::string file = name + kRecordEnding;
  if (!record.molecules)
    throw IoFailure(
        file + ": is of an earlier version and does not hold the molecules; make the scan again");
  const ScannedPair& molecules = *record.molecules;
  const auto pair = record.origin.find("pair");
  if (pair == record.origin.end() || pair->second != fingerprint_of(molecules.pair))
    throw IoFailure(file + ": the molecules have changed since it was written");
  const bool exact = is_exact(record);
  PairPlacer placer(molecules.pair,
                    {exact ? Placing::exact : Placing::automatic,
                     molecules.like ? &*molecules.like : nullptr, criterion_of(record)});
  if (placer.exact() != exact)
    throw IoFailure(file + ": this version of the program places the pair in another way");
  return placer;
}

PosesAgain::PosesAgain(const PairPlacer& placer, std::string_view heading, Writing writing,
                       std::string table, bool energies)
    : writer_(writer_of(placer, columns_in(heading, placer.exact(), energies), writing)),
      maker_(placer, Poses::list({}), {.clearance = true}),
      table_(std::move(table)) {
  if (!begins_with(heading, without_line_end(writer_.table_heading())))
    throw IoFailure(fmt::format("{}:1: expected the columns of a scan by this program, found {}",
                                table_, dravo::quoted(heading)));
}

MadePose PosesAgain::made(std::string_view row) {
  const auto known = writer_.read_row(row);
  if (!known || complaint_about({0.0, known->asked.theta, known->asked.phi, known->asked.alpha,
                                 known->asked.beta, known->asked.gamma}))
    throw IoFailure(
        fmt::format("{}: expected a row of the scan, found {}", table_, dravo::quoted(row)));
  const MadePose pose = maker_.made_again(*known);
  writer_.fill(row_, pose.numbers);
  if (!begins_with(row, row_.without_line_end()))
    throw IoFailure(
        fmt::format("{}: the row of pose {} is not the one that this program writes: the table has "
                    "changed, or another version made it",
                    table_, known->index));
  return pose;
}

void PosesAgain::append_frame(std::string& frames, const MadePose& last) const {
  writer_.append_frame(frames, row_, last.atoms);
}

}  // namespace dravo
