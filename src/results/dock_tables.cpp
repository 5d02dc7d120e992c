#include "results/dock_tables.hpp"

#include <fmt/format.h>

#include <utility>

#include "common/atom_table.hpp"
#include "common/errors.hpp"
#include "common/shown_text.hpp"
#include "dravo/contacts.hpp"
#include "results/decimals.hpp"
#include "results/energy_text.hpp"
#include "results/pose_writer.hpp"
#include "results/table_rows.hpp"
#include "scan/pair_placer.hpp"

namespace dravo {
namespace {

/// `pose(row)` is a reference to it.
template <class Row, class Pose>
void add_pose(std::vector<Column<Row>>& columns, Pose pose) {
  for (const PoseParameter& parameter : kPoseParameters)
    columns.push_back(real_column<Row>(
        parameter.name, kAllDigits,
        [ pose, value = parameter.value ](auto& row) -> auto& { return pose(row).*value; }));
}

Column<DockStart> end_column() {
  return {"end", [](auto& text, const auto& start) { text += name_of(start.end); },
          [](auto cell, auto& start) {
            const auto end = dock_end(cell);
            if (end) start.end = *end;
            return end.has_value();
          }};
}

Column<DockRow> refined_column() {
  return {"refined",
          [](auto& text, const auto& row) { text += row.minimum.refined ? "yes" : "no"; },
          [](auto cell, auto& row) {
            row.minimum.refined = cell == "yes";
            return cell == "yes" || cell == "no";
          }};
}

}  // namespace

Columns<DockStart> columns_of_starts(const DockOptions& options) {
  std::vector<Column<DockStart>> columns;
  columns.push_back(count_column<DockStart>(
      "start", [](auto& start) -> auto& { return start.number; }));
  columns.push_back(end_column());
  columns.push_back(real_column<DockStart>(
      energy_column(options.search), kAllDigits,
      [](auto& start) -> auto& { return start.energy; }));
  add_pose(
      columns, [](auto& start) -> auto& { return start.pose; });
  columns.push_back(count_column<DockStart>(
      "evaluations", [](auto& start) -> auto& { return start.evaluations; }));
  return Columns<DockStart>(std::move(columns));
}

Columns<DockRow> columns_of_minima(const DockOptions& options) {
  std::vector<Column<DockRow>> columns;
  const auto add_count = [&](const char* name, auto number) {
    columns.push_back(count_column<DockRow>(name, number));
  };
  const auto add_real = [&](const std::string& name, int decimals, auto number) {
    columns.push_back(real_column<DockRow>(name, decimals, number));
  };
  add_count(
      "rank", [](auto& row) -> auto& { return row.rank; });
  add_real(
      energy_column(options.score), decimals::kEnergy,
      [](auto& row) -> auto& { return row.minimum.score_energy; });
  if (options.search != options.score)
    add_real(
        energy_column(options.search), decimals::kEnergy,
        [](auto& row) -> auto& { return row.minimum.search_energy; });
  add_pose(
      columns, [](auto& row) -> auto& { return row.minimum.pose; });
  add_count(
      "starts", [](auto& row) -> auto& { return row.minimum.starts; });
  columns.push_back(refined_column());
  add_real(
      "shortest", decimals::kLength, [](auto& row) -> auto& { return row.shortest; });
  add_count(
      "contacts", [](auto& row) -> auto& { return row.contacts; });
  add_count(
      "hydrogen_bonds", [](auto& row) -> auto& { return row.hydrogen_bonds; });
  return Columns<DockRow>(std::move(columns));
}

Pair pair_at(const Placer& placer, const PoseDegrees& pose) {
  return {placer.n1(), Molecule(placer.labels(), placer.positions(pose))};
}

DockTexts texts_of(const Placer& placer, const DockOptions& options,
                   std::span<const DockMinimum> minima) {
  const Columns<DockRow> columns = columns_of_minima(options);
  DockTexts texts{columns.heading(), {}, {}};
  const PairPlacer& inside = placer.inside();
  OwnedTable placed(placer.size());
  DockRow row;
  for (const DockMinimum& minimum : minima) {
    ++row.rank;
    row.minimum = minimum;
    inside.place(inside.used_parameters(row.minimum.pose), placed.table());
    const ContactSurvey survey = inside.survey(placed.table(), false);
    row.shortest = survey.shortest;
    row.contacts = survey.contacts;
    row.hydrogen_bonds = std::ssize(hydrogen_bonds(pair_at(placer, row.minimum.pose)));
    columns.append_row(texts.table, row);
    texts.frames += fmt::format("{}\n{}", placer.size(), kProperties);
    columns.append_keys(texts.frames, row);
    texts.frames += " placing=exact\n";
    append_atoms(texts.frames, placer.labels(), placer.n1(), placed.table(), true);
    texts.totals.add({1, 0, 1, survey.contacts > 0 ? 1 : 0, survey.shortest, row.rank});
  }
  return texts;
}

template <class Row>
std::vector<Row> read_table(const std::string& table, const Columns<Row>& columns) {
  TableRows rows(table);
  if (rows.heading() + "\n" != columns.heading())
    throw IoFailure(fmt::format("{}:1: expected the columns of a docking by this program, found {}",
                                table, dravo::quoted(rows.heading())));
  std::vector<Row> read;
  for (std::string text; rows.next(text);) {
    const auto row = columns.read_row(text);
    if (!row)
      throw IoFailure(fmt::format("{}:{}: expected a row of the docking, found {}", table,
                                  read.size() + 2, dravo::quoted(text)));
    read.push_back(*row);
  }
  return read;
}

template std::vector<DockStart> read_table(const std::string&, const Columns<DockStart>&);
template std::vector<DockRow> read_table(const std::string&, const Columns<DockRow>&);

}  // namespace dravo
