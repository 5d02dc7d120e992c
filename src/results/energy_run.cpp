#include "results/energy_run.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "common/number_format.hpp"
#include "common/ordered_chunks.hpp"
#include "common/shown_text.hpp"
#include "common/text.hpp"
#include "common/version.hpp"
#include "energy/pose_energy.hpp"
#include "results/checksum.hpp"
#include "results/energy_text.hpp"
#include "results/interruption.hpp"
#include "results/pose_choice.hpp"
#include "results/poses_again.hpp"
#include "results/result_files.hpp"
#include "results/selected_rows.hpp"
#include "results/table_rows.hpp"
#include "results/text_chunk.hpp"
#include "scan/pose_maker.hpp"

namespace dravo {
namespace {

namespace fs = std::filesystem;

std::string status_column(EnergyMethod method) { return fmt::format("status_{}", name_of(method)); }

/// Rows as they are in the table, and what becomes of them.
struct Batch {
  std::vector<std::string> rows;
  TextChunk text;
};

/// One per thread.
class EnergyMaker {
 public:
  EnergyMaker(PosesAgain poses, const EnergyModel& model, bool frames)
      : poses_(std::move(poses)),
        engine_(model.start()),
        method_(model.options().method),
        frames_(frames) {}

  void make(Batch& batch) {
    batch.text.frames.clear();
    batch.text.table.clear();
    batch.text.totals = {};
    batch.text.totals.energies.emplace();
    for (const std::string& row : batch.rows) compute(row, batch.text);
  }

 private:
  void compute(const std::string& row, TextChunk& text) {
    const MadePose pose = poses_.made(row);
    positions_.clear();
    for (std::int32_t i = 0; i < pose.atoms.rows(); ++i)
      positions_.push_back(pose.atoms.position(i));
    const PoseEnergy found = energy_unless_clash(engine_, positions_, pose.numbers.clearance);
    text.table.append(row).append(",");
    append_energy(text.table, found);
    text.table += '\n';
    if (frames_) append_frame(text.frames, pose, found);
    ScannedPose numbers = pose.numbers;
    numbers.energy_status = found.status;
    numbers.interaction = found.interaction;
    text.totals.add({1, 0, 1, numbers.contacts > 0 ? 1 : 0, numbers.shortest, numbers.index});
    text.totals.energies->add(numbers);
  }

  /// That of the scan, with the energy at the end of its comment line.
  void append_frame(std::string& frames, const MadePose& pose, const PoseEnergy& found) const {
    const std::size_t begin = frames.size();
    poses_.append_frame(frames, pose);
    std::string keys;
    if (found.status == EnergyStatus::ok)
      keys = fmt::format(" {}={}", energy_column(method_),
                         fixed_text(found.interaction, kEnergyDecimals));
    keys += fmt::format(" {}={}", status_column(method_), name_of(found.status));
    frames.insert(frames.find('\n', frames.find('\n', begin) + 1), keys);
  }

  PosesAgain poses_;
  EnergyEngine engine_;
  EnergyMethod method_;
  bool frames_;
  std::vector<Vec3> positions_;
};

bool has_column(std::string_view heading, std::string_view name) {
  const auto names = parts_between(heading, ',');
  return std::find(names.begin(), names.end(), name) != names.end();
}

SelectedRows selected_rows(const ScanRecord& scan, EnergyMethod method,
                           const EnergyRequest& request) {
  const std::string table = request.scan + ending_of(ResultFile::table);
  const std::string column = energy_column(method);
  if (has_column(TableRows(table).heading(), column))
    throw InvalidInput(fmt::format("{} has the column {} already", table, column));
  return chosen_rows(request.scan, scan, {request.poses, request.best, {}});
}

std::int64_t number_of(SelectedRows& rows) {
  std::int64_t number = 0;
  std::string row;
  rows.rewind();
  while (rows.next(row)) ++number;
  rows.rewind();
  return number;
}

/// With the keys of the scan beside its own.
ScanRecord record_of(const ScanRecord& scan, const EnergyRequest& request, const EnergyModel& model,
                     SelectedRows& rows) {
  ScanRecord record;
  record.origin = scan.origin;
  add_again_to_origin(record.origin, model, request.frames ? Writing::frames : Writing::table);
  const auto add = [&](const char* key, const std::string& text) {
    record.origin[fmt::format("{}-{}", name_of(model.options().method), key)] = text;
  };
  const auto bytes = static_cast<std::int64_t>(fs::file_size(rows.table()));
  add("poses", words_of({request.poses, request.best, {}}));
  constexpr std::size_t kLongestName = 255;  // a name may be any bytes, a record is UTF-8
  add("table", printable(fs::path(rows.table()).filename().string(), kLongestName).text);
  add("table-xxh3", text_of_checksum(checksum_of_first(bytes, rows.table()).value_or(0)));
  add("version", DRAVO_VERSION);
  record.poses = number_of(rows);
  record.totals.energies.emplace();
  record.molecules = scan.molecules;
  record.reference_energies = scan.reference_energies;
  add_references(record, model);
  return record;
}

/// The results so far are whole, and the rows stand behind them.
void compute_rest(ScanFiles& files, SelectedRows& rows, std::int64_t poses,
                  const EnergyRequest& request, const std::function<EnergyMaker()>& new_maker,
                  std::int64_t most) {
  Progress progress(request.progress, poses, files.totals().poses);
  const InterruptionWatch watch;
  std::string row;
  for (std::int64_t done = 0; done < files.totals().poses; ++done) (void)rows.next(row);
  const auto fill = [&](Batch& batch) {
    batch.rows.clear();
    while (std::ssize(batch.rows) < most && rows.next(row)) batch.rows.push_back(row);
    return !batch.rows.empty();
  };
  make_chunks_of_stream<Batch>(request.threads, fill, new_maker, [&](const Batch& batch) {
    files.append(batch.text);
    const std::int64_t done = files.totals().poses;
    progress.show(done);
    if (InterruptionWatch::noted() != 0 && done < poses)
      throw Interrupted(InterruptionWatch::noted(), done, poses);
  });
  files.finish();
}

}  // namespace

ScanTotals compute_energies(const ScanRecord& scan, const PairPlacer& placer,
                            const EnergyModel& model, const EnergyRequest& request) {
  refuse_inputs_as_results(
      request.name, {request.scan + kRecordEnding, request.scan + ending_of(ResultFile::table)});
  const EnergyMethod method = model.options().method;
  SelectedRows rows = selected_rows(scan, method, request);
  const auto poses_again = [&] {
    return PosesAgain(placer, rows.heading(), Writing::frames, rows.table(), has_energies(scan));
  };
  (void)poses_again();  // refuses a table of other columns before any file is made
  const ScanRecord record = record_of(scan, request, model, rows);
  const std::string heading =
      fmt::format("{},{},{}\n", rows.heading(), energy_column(method), status_column(method));
  ScanFiles files(
      request.name, record,
      [&] {
        return std::make_unique<StreamedResults>(request.name, record.results(),
                                                 ResultTexts{heading, ""});
      },
      request.earlier);
  if (!files.finished())
    compute_rest(
        files, rows, record.poses, request,
        [&] { return EnergyMaker(poses_again(), model, request.frames); },
        poses_of_a_moment(method, scan.molecules->pair.size()));
  return files.totals();
}

}  // namespace dravo
