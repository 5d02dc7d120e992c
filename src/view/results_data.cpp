#include "view/results_data.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "common/errors.hpp"
#include "results/dock_run.hpp"
#include "results/dock_tables.hpp"
#include "results/energy_text.hpp"
#include "results/poses_again.hpp"
#include "results/result_files.hpp"
#include "results/table_rows.hpp"
#include "view/first_map.hpp"
#include "view/pose_table.hpp"
#include "view/shell_word.hpp"
#include "view/thinning.hpp"

namespace dravo {
namespace {

bool has_numbers(const ViewPoses& poses, std::string_view name) {
  return std::any_of(poses.columns.begin(), poses.columns.end(), [&](const ViewColumn& column) {
    return column.name == name && std::any_of(column.numbers.begin(), column.numbers.end(),
                                              [](double n) { return std::isfinite(n); });
  });
}

ViewPoses poses_of(PoseTable table, std::string_view kind, const std::string& name) {
  ViewPoses poses{.kind = kind,
                  .name = name,
                  .of = table.rows,
                  .columns = std::move(table.columns),
                  .parameters = {},
                  .x = {},
                  .y = {},
                  .colour = std::move(table.colour)};
  take_up_applied(poses);
  if (!has_numbers(poses, poses.colour)) poses.colour = colour_among({});
  return poses;
}

std::string text_of_option(const ContactCriterion& criterion) {
  if (criterion.text() == ContactCriterion().text()) return "";
  return " --contact-distance " + shell_word(criterion.text());
}

ViewData scan_data(const std::string& name, const ScanRecord& record) {
  const PairPlacer placer = placer_of(name, record);
  const std::string file = name + ending_of(ResultFile::table);
  PoseTable table = read_pose_table(file, kMostShownPoses);
  PosesAgain again(placer, table.heading, Writing::table, file, has_energies(record));
  for (const std::string& row : table.samples) (void)again.made(row);
  const std::string sample = table.samples[0];
  ViewPoses poses = poses_of(std::move(table), "scan", name);
  choose_axes(poses);
  ViewData data = view_data(placer, poses.pose(0));
  data.criterion = criterion_of(record);
  // By axes of its own a pair is placed in another way than by those carried along.
  if (!record.molecules->like)
    data.command = fmt::format("dravo extract {} --poses {} | dravo place -{}", shell_file(name),
                               index_of_row(sample, file), text_of_option(data.criterion));
  data.poses = std::move(poses);
  return data;
}

ViewData docking_data(const std::string& name, const ScanRecord& record) {
  if (!record.docking)
    throw InvalidInput(name +
                       ": is a part of a docking; dravo merge makes the minima of all parts");
  const std::string file = name + ending_of(ResultFile::table);
  const DockPlan plan = plan_of(name + kRecordEnding, record);
  if (read_table(file, columns_of_minima(plan.options)).empty())
    throw IoFailure(file + ": the docking found no minimum, so there is nothing to show");
  ViewPoses poses = poses_of(read_pose_table(file, kMostShownPoses), "dock", name);
  poses.x = "rank";
  poses.colour = energy_column(plan.options.score);
  ViewData data =
      view_data(PairPlacer(record.molecules->pair, {.placing = Placing::exact}), poses.pose(0));
  data.command = fmt::format("dravo place {}", shell_file(name + ending_of(ResultFile::frames)));
  data.poses = std::move(poses);
  return data;
}

}  // namespace

ViewData view_of_results(const std::string& name) {
  const ScanRecord record = record_of_results(name);
  return record.is_docking() ? docking_data(name, record) : scan_data(name, record);
}

}  // namespace dravo
