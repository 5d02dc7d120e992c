#include "results/scan_record.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

#include "common/atom_table.hpp"
#include "common/errors.hpp"
#include "common/number_format.hpp"
#include "common/shown_text.hpp"
#include "common/version.hpp"
#include "results/pose_writer.hpp"
#include "results/record_keys.hpp"
#include "scan/fingerprint.hpp"

namespace dravo {
namespace {

/// Not in the record of a scan that writes frames of both molecules, or files.
constexpr auto kWritingKey = "writing";
constexpr auto kTableAlone = "table";
constexpr auto kMovingAlone = "moving";
constexpr auto kFilesKey = "files";  // of a plan
constexpr auto kBestKey = "best";
constexpr auto kByKey = "by";
constexpr auto kChargesKey = "charges";
constexpr auto kUnpairedKey = "unpaired";

/// Another machine may compute the molecules alone with other last digits; so much, in Hartree,
/// only another engine.
constexpr double kMostOfRounding = 1e-6;

}  // namespace

BestRule best_rule(std::int64_t count, std::string by, bool energies) {
  if (by.empty()) by = energies ? kEnergyColumn : kShortestColumn;
  const bool largest = by.starts_with('-');
  return {count, by.substr(largest ? 1 : 0), largest};
}

namespace {

/// Of all poses, where each of `of` parts has as many: those before the end of part `number`.
std::int64_t poses_up_to(std::int64_t number, std::int64_t of, std::int64_t poses) {
  __extension__ using Wide = __int128;
  return static_cast<std::int64_t>(Wide{poses} * number / of);
}

}  // namespace

std::int64_t Shard::first(std::int64_t poses) const { return poses_up_to(number - 1, of, poses); }

std::int64_t Shard::end(std::int64_t poses) const { return poses_up_to(number, of, poses); }

std::string Shard::name(const std::string& scan) const {
  return fmt::format("{}-{}-of-{}", scan, number, of);
}

bool ScanRecord::is_docking() const { return origin.find(kSearchKey) != origin.end(); }

Writing ScanRecord::writing() const {
  const auto has = [&](const char* key, const char* text) {
    const auto found = origin.find(key);
    return found != origin.end() && found->second == text;
  };
  if (has(kFilesKey, "true")) return Writing::files;
  if (has(kWritingKey, kTableAlone)) return Writing::table;
  return has(kWritingKey, kMovingAlone) ? Writing::moving : Writing::frames;
}

std::optional<BestRule> ScanRecord::best() const {
  const auto count = origin.find(kBestKey);
  if (count == origin.end()) return std::nullopt;
  BestRule rule = best_rule(std::stoll(count->second), origin.at(kByKey), false);
  if (rule.count < 1) throw std::out_of_range(kBestKey);
  return rule;
}

std::vector<ResultFile> ScanRecord::results() const {
  switch (writing()) {
    case Writing::frames:
      return {ResultFile::frames, ResultFile::table};
    case Writing::moving:
      return {ResultFile::frames, ResultFile::table, ResultFile::molecule2};
    default:
      return {ResultFile::table};
  }
}

std::string fingerprint_of(const Pair& pair) {
  Fingerprint atoms;
  for (const Label& label : pair.labels()) atoms.add(text_of(label));
  for (const Vec3& p : pair.positions())
    for (const double coordinate : {p.x, p.y, p.z}) atoms.add(coordinate);
  return fmt::format("{}+{} atoms, {}", pair.n1(), pair.size() - pair.n1(), atoms.value());
}

std::map<std::string, std::string> origin_of(const PairPlacer& placer, const ScannedPair& molecules,
                                             const ScanPlan& plan) {
  auto origin = plan.description();
  origin[kVersionKey] = DRAVO_VERSION;
  origin["pair"] = fingerprint_of(molecules.pair);
  origin[kFrameRuleKey] = std::to_string(kFrameRule);
  origin[kPlacingKey] = words_of_placing(placer.exact());
  if (molecules.like) origin["like"] = fingerprint_of(*molecules.like);
  return origin;
}

void add_to_origin(std::map<std::string, std::string>& origin, Writing writing,
                   const std::optional<BestRule>& best) {
  if (writing == Writing::table) origin[kWritingKey] = kTableAlone;
  if (writing == Writing::moving) origin[kWritingKey] = kMovingAlone;
  if (!best) return;
  origin[kBestKey] = std::to_string(best->count);
  origin[kByKey] = (best->largest ? "-" : "") + best->column;
}

std::map<std::string, std::string> description_of(const EnergyModel& energy) {
  const auto of_both = [](const std::array<int, 2>& numbers) {
    return fmt::format("{},{}", numbers[0], numbers[1]);
  };
  const EnergyOptions& options = energy.options();
  std::map<std::string, std::string> description{{"engine", energy.engine()},
                                                 {kChargesKey, of_both(options.charges)},
                                                 {kUnpairedKey, of_both(options.unpaired)}};
  if (options.method != EnergyMethod::command) return description;
  description["run"] = options.command.run;
  description["read"] = options.command.read;
  description["read-unit"] = name_of(options.command.unit);
  return description;
}

namespace {

/// The text of a key, or of one with the name of a method before it.
std::optional<std::string> told(const ScanRecord& record, const std::string& key) {
  const auto own = record.origin.find(key);
  if (own != record.origin.end()) return own->second;
  for (const auto& [name, text] : record.origin)
    if (name.ends_with("-" + key)) return text;
  return std::nullopt;
}

}  // namespace

void add_references(ScanRecord& record, const EnergyModel& energy) {
  record.reference_energies[std::string(name_of(energy.options().method))] = energy.references();
}

void add_to_origin(std::map<std::string, std::string>& origin, const EnergyModel& energy,
                   const std::optional<double>& keep_below) {
  origin.merge(description_of(energy));
  origin[kEnergyKey] = name_of(energy.options().method);
  if (keep_below) origin["keep-below"] = shortest_text(*keep_below);
}

void add_again_to_origin(std::map<std::string, std::string>& origin, const EnergyModel& energy,
                         Writing writing) {
  origin.erase(kWritingKey);
  origin.insert_or_assign(kFilesKey, "false");
  add_to_origin(origin, writing, std::nullopt);
  for (const auto& [key, text] : description_of(energy))
    origin[fmt::format("{}-{}", name_of(energy.options().method), key)] = text;
}

std::optional<std::string> told_charges(const ScanRecord& record) {
  return told(record, kChargesKey);
}

std::optional<std::string> told_unpaired(const ScanRecord& record) {
  return told(record, kUnpairedKey);
}

bool has_energies(const ScanRecord& record) { return record.origin.contains(kEnergyKey); }

const char* words_of_placing(bool exact) { return exact ? "exact" : "as qn-dravo"; }

bool is_exact(const ScanRecord& record) {
  const auto placing = record.origin.find(kPlacingKey);
  return placing != record.origin.end() && placing->second == words_of_placing(true);
}

namespace {

/// Whatever stands in a record, on one line.
std::string shown(std::string_view text) {
  constexpr std::size_t kMostColumns = 200;
  const ColumnText line = printable(text, kMostColumns);
  return line.whole ? line.text : line.text + "...";
}

}  // namespace

std::string difference(const ScanRecord& earlier, const ScanRecord& now) {
  const auto value = [](const std::map<std::string, std::string>& origin, const std::string& key) {
    const auto found = origin.find(key);
    return found == origin.end() ? std::string("not given") : found->second;
  };
  std::string text;
  const auto compare = [&](const std::string& key, const std::string& was, const std::string& is) {
    if (was != is)
      text += fmt::format("{}{} was {}, is {}", text.empty() ? "" : "; ", shown(key), shown(was),
                          shown(is));
  };
  auto keys = earlier.origin;
  keys.insert(now.origin.begin(), now.origin.end());
  for (const auto& [key, ignored] : keys)
    compare(key, value(earlier.origin, key), value(now.origin, key));
  const auto part = [](const Shard& shard) { return fmt::format("{}/{}", shard.number, shard.of); };
  compare("shard", part(earlier.shard), part(now.shard));
  return text;
}

/// "-1.5 and -2.25"
std::string listed(const std::vector<double>& energies) {
  std::string text;
  for (const double energy : energies)
    text.append(text.empty() ? "" : " and ").append(shortest_text(energy));
  return text;
}

/// Records of one origin have the same methods.
void require_same_references(const std::string& name, const ScanRecord& earlier,
                             const ScanRecord& now) {
  for (const auto& [method, are] : now.reference_energies) {
    const auto found = earlier.reference_energies.find(method);
    if (found == earlier.reference_energies.end()) continue;
    const std::vector<double>& were = found->second;
    const bool same =
        std::equal(were.begin(), were.end(), are.begin(), are.end(),
                   [](double was, double is) { return std::abs(was - is) <= kMostOfRounding; });
    if (!same)
      throw IoFailure(fmt::format(
          "{}: the energy that interactions are counted from was {} Hartree, is {}: the engine or "
          "its parameters have changed, so make it again",
          name, listed(were), listed(are)));
  }
}

void require_same_origin(const std::string& name, const ScanRecord& earlier,
                         const ScanRecord& now) {
  if (earlier.is_docking() != now.is_docking())
    throw IoFailure(fmt::format("{}: is of a {}, not of a {}; choose another --output", name,
                                earlier.kind(), now.kind()));
  const std::string differs = difference(earlier, now);
  if (!differs.empty())
    throw IoFailure(fmt::format("{}: is of another {}: {}", name, now.kind(), differs));
  require_same_references(name, earlier, now);
}

std::string sentence_about(const ScanTotals& totals, bool written) {
  if (totals.poses == 0) return "no poses";
  const std::string equal =
      totals.left_out > 0 ? fmt::format("{} equal to earlier ones, ", totals.left_out) : "";
  const std::string which = totals.kept
                                ? fmt::format("the best {} of {}", *totals.kept, totals.written)
                                : std::to_string(totals.written);
  return fmt::format(
      "{} {}, {}{} with short contacts, {} {}; shortest distance {} Angstrom in pose {}",
      totals.poses, totals.poses == 1 ? "pose" : "poses", equal, totals.with_contacts, which,
      written ? "written" : "to be written", fixed_text(totals.shortest, 4), totals.shortest_index);
}

}  // namespace dravo
