/// Any bytes as the table of a scan, of energies or of a docking: rows that are read and written
/// again stay what they were.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/index_selection.hpp"
#include "fuzz/expectations.hpp"
#include "results/best_poses.hpp"
#include "results/dock_tables.hpp"
#include "results/pose_writer.hpp"
#include "results/ranked_poses.hpp"
#include "results/selected_rows.hpp"
#include "results/table_rows.hpp"
#include "view/first_map.hpp"
#include "view/pose_table.hpp"

namespace {

using namespace dravo;
using test::require;

constexpr std::int64_t kMost = 5;

/// Rows of a scan, whatever the heading says. What is read is written, and that is read as the
/// same.
void read_rows(const std::string& file, const PoseColumns& columns) {
  const PoseWriter writer({}, columns);
  TableRows rows(file);
  PoseRow first, second;
  for (std::string row; rows.next(row);) {
    const auto pose = writer.read_row(row);
    if (!pose) continue;
    writer.fill(first, *pose);
    const auto again = writer.read_row(first.without_line_end());
    if (!again) continue;
    writer.fill(second, *again);
    require(first.line() == second.line(), "a row that is written is read as the same");
  }
}

void read_selected(const std::string& scan, bool best) {
  ScanRecord record;
  if (best) add_to_origin(record.origin, Writing::table, BestRule{3, kShortestColumn, false});
  SelectedRows rows(scan, record, IndexSelection::parse("--poses", "1:7:2,4,900"));
  rows.rewind();
  for (std::string row; rows.next(row);)
    require(index_of_row(row, rows.table()) >= 1, "a row that was selected has an index");
  rows.require_named(record);
}

/// By each of the first columns.
void read_ranked(const std::string& file, const std::vector<std::string>& columns) {
  for (const std::string& column : columns)
    for (const RankedPose& pose : ranked_poses(file, column, columns.back(), kMost))
      require(!pose.other || *pose.other >= 1, "places count from 1");
}

std::vector<std::string> first_columns(std::string_view heading) {
  std::vector<std::string> names;
  while (names.size() < kMost && !heading.empty()) {
    const std::string_view name = heading.substr(0, heading.find(','));
    names.emplace_back(name);
    heading.remove_prefix(std::min(name.size() + 1, heading.size()));
  }
  return names;
}

void read_shown(const std::string& file) {
  PoseTable table = read_pose_table(file, kMost);
  require(table.rows >= 1 && !table.samples.empty(), "a table that is shown has rows");
  const std::size_t shown = table.columns.at(0).rows();
  require(shown >= 1 && shown <= static_cast<std::size_t>(kMost) + 1, "no more than asked for");
  for (const ViewColumn& column : table.columns)
    require(column.rows() == shown && (column.words.empty() || column.numbers.empty()),
            "all columns have as many cells");
  ViewPoses poses{.kind = "scan",
                  .name = "scan",
                  .of = table.rows,
                  .columns = std::move(table.columns),
                  .parameters = {},
                  .x = {},
                  .y = {},
                  .colour = std::move(table.colour)};
  take_up_applied(poses);
  const bool places = std::all_of(poses.parameters.begin(), poses.parameters.end(),
                                  [&](const auto& name) { return poses.column(name) != nullptr; });
  if (!places) return;
  choose_axes(poses);
  (void)poses.pose(shown - 1);
}

template <class Row>
void read_docking(const std::string& file, const Columns<Row>& columns) {
  std::string first, second;
  for (const Row& row : read_table(file, columns)) columns.append_row(first, row);
  for (std::string_view rest = first; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    const auto row = columns.read_row(line);
    require(row.has_value(), "a row that is written can be read");
    columns.append_row(second, *row);
    rest.remove_prefix(line.size() + 1);
  }
  require(first == second, "a row that is written is read as the same");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const test::MemoryFolder folder;
  const std::string text = test::text_of(bytes, size);
  const std::string file = folder.write("scan.csv", text);
  const std::string scan = folder.path("scan");
  for (const PoseColumns& columns :
       {PoseColumns{}, PoseColumns{.above_contact = true, .equivalents = true, .energy = true}})
    test::read_or_refuse([&] { read_rows(file, columns); });
  for (const bool best : {false, true}) test::read_or_refuse([&] { read_selected(scan, best); });
  const auto columns = first_columns(std::string_view(text).substr(0, text.find('\n')));
  test::read_or_refuse([&] { read_ranked(file, columns); });
  test::read_or_refuse([&] { read_shown(file); });
  test::read_or_refuse([&] { read_docking(file, columns_of_starts({})); });
  test::read_or_refuse([&] { read_docking(file, columns_of_minima({})); });
  return 0;
}
