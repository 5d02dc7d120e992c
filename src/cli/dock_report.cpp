#include "cli/dock_report.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iostream>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "cli/contact_report.hpp"
#include "cli/pair_options.hpp"
#include "common/number_format.hpp"
#include "dravo/contacts.hpp"
#include "results/dock_run.hpp"
#include "results/energy_text.hpp"
#include "results/result_files.hpp"

namespace dravo {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kShown = 5;  ///< minima

/// A finished docking as its files tell it.
struct FinishedDocking {
  std::string name;
  ScanRecord record;
  DockOptions options;
  std::vector<DockRow> best;
  Placer placer;
};

FinishedDocking read_docking(const std::string& name, const ScanRecord& record) {
  DockOptions options = plan_of(name + kRecordEnding, record).options;
  auto rows = read_table(name + ending_of(ResultFile::table), columns_of_minima(options));
  rows.resize(std::min(rows.size(), kShown));
  return {name, record, options, std::move(rows), Placer(record.molecules->pair, {Placing::exact})};
}

/// The methods whose energies a table has.
std::vector<EnergyMethod> methods_of(const DockOptions& options) {
  if (options.search == options.score) return {options.score};
  return {options.score, options.search};
}

double energy_of(const DockRow& row, EnergyMethod method, const DockOptions& options) {
  return method == options.score ? row.minimum.score_energy : row.minimum.search_energy;
}

std::string energy_text(double energy) {
  constexpr int kDecimals = 3;
  return std::isfinite(energy) ? fixed_text(energy, kDecimals) : "-";
}

std::string names_of(const std::vector<HydrogenBond>& bonds, const Pair& pair) {
  std::vector<std::string> names;
  names.reserve(bonds.size());
  for (const HydrogenBond& bond : bonds) names.push_back(name_of(bond, pair));
  return names.empty() ? "-" : fmt::format("{}", fmt::join(names, ", "));
}

///     rank    e_gfn2   e_gfnff         r  starts  hydrogen bonds
///           kcal/mol  kcal/mol  Angstrom
///        1    -4.936    -5.123    2.9134      87  O1-H2...O4
std::string text_of(const FinishedDocking& docking) {
  constexpr int kDistance = 4;
  std::string names = "rank", units = "    ", rows;
  for (const EnergyMethod method : methods_of(docking.options)) {
    names += fmt::format("{:>10}", fmt::format("e_{}", name_of(method)));
    units += fmt::format("{:>10}", "kcal/mol");
  }
  for (const DockRow& row : docking.best) {
    const Pair pair = pair_at(docking.placer, row.minimum.pose);
    rows += fmt::format("{:>4}", row.rank);
    for (const EnergyMethod method : methods_of(docking.options))
      rows += fmt::format("{:>10}", energy_text(energy_of(row, method, docking.options)));
    rows += fmt::format("{:>10}{:>8}  {}\n", fixed_text(row.minimum.pose.r, kDistance),
                        row.minimum.starts, names_of(hydrogen_bonds(pair), pair));
  }
  return fmt::format("{}{:>10}{:>8}  hydrogen bonds\n{}{:>10}\n{}", names, "r", "starts", units,
                     "Angstrom", rows);
}

Json json_of(const FinishedDocking& docking) {
  const ScanRecord& record = docking.record;
  Json best = Json::array();
  for (const DockRow& row : docking.best) {
    const Pair pair = pair_at(docking.placer, row.minimum.pose);
    Json json{{"rank", row.rank}};
    for (const EnergyMethod method : methods_of(docking.options))
      json[energy_column(method)] = energy_of(row, method, docking.options);
    for (const auto& [name, value] : kPoseParameters) json[name] = row.minimum.pose.*value;
    json.update({{"starts", row.minimum.starts},
                 {"refined", row.minimum.refined},
                 {"shortest", row.shortest},
                 {"contacts", row.contacts},
                 {"hydrogen_bonds", json_of(hydrogen_bonds(pair))}});
    best.push_back(std::move(json));
  }
  return {{"starts", record.totals.poses},
          {"ended", record.docking->ended},
          {"minima", record.docking->minima},
          {"written", record.totals.written},
          {"best", std::move(best)}};
}

/// Why it ended, where that is news.
std::string words_of_end(const ScanRecord& record) {
  const std::string& ended = record.docking->ended;
  const std::int64_t starts = record.totals.poses;
  if (ended == kEndedByNothingNew)
    return fmt::format("; the last {} found nothing new among the {} lowest",
                       DockSearch::kIdleStarts, DockSearch::kLowest);
  if (ended == kEndedByMostStarts)
    return "; new ones were still found, and --starts N goes on longer";
  if (ended == kEndedByTime)
    return fmt::format("; the time was over, and --starts {} makes the same on any machine",
                       starts);
  return "";
}

/// " (2 drifted apart, 1 failed)"; empty where all led to minima.
std::string words_of_lost_starts(const DockSummary& docking) {
  struct Lost {
    DockEnd end;
    const char* words;
  };
  constexpr std::array<Lost, 3> kLost{{{DockEnd::drifted_apart, "drifted apart"},
                                       {DockEnd::not_converged, "did not converge"},
                                       {DockEnd::failed, "had no energy"}}};
  std::string words;
  for (const auto& [end, what] : kLost)
    if (docking.starts_of(end) > 0)
      words += fmt::format("{}{} {}", words.empty() ? "" : ", ", docking.starts_of(end), what);
  return words.empty() ? "" : fmt::format(" ({})", words);
}

void report_part(const std::string& name, const ScanRecord& record, const DockTelling& telling) {
  const Shard& part = record.shard;
  if (telling.json)
    std::cout << Json{{"starts", record.totals.poses}, {"shard", part.number}, {"shards", part.of}}
              << '\n';
  else if (!telling.quiet)
    tell({fmt::format("made {} of {} starts", record.totals.poses, record.poses),
          fmt::format("wrote {}{} and {}; `dravo merge` finds the minima when all parts are there",
                      name, ending_of(ResultFile::starts), kRecordEnding)});
}

}  // namespace

void report_docking(const std::string& name, const DockTelling& telling) {
  const ScanRecord record = finished_record(name);
  if (!record.docking) return report_part(name, record, telling);
  const FinishedDocking docking = read_docking(name, record);
  if (telling.json) {
    std::cout << json_of(docking) << '\n';
    return;
  }
  if (telling.quiet) return;
  if (!docking.best.empty()) std::cout << text_of(docking) << std::flush;
  const std::int64_t minima = record.docking->minima;
  tell({fmt::format("{} starts found {} {}{}{}", record.totals.poses, minima,
                    minima == 1 ? "minimum" : "minima", words_of_lost_starts(*record.docking),
                    words_of_end(record)),
        fmt::format("wrote {}.xyz, .csv and .json: {} {}", name, record.totals.written,
                    record.totals.written == 1 ? "minimum" : "minima")});
}

}  // namespace dravo
