/// The record of a scan as JSON.
#include <fmt/format.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <utility>

#include "common/errors.hpp"
#include "common/json_number.hpp"
#include "common/number_text.hpp"
#include "results/checksum.hpp"
#include "results/record_keys.hpp"
#include "results/scan_record.hpp"

namespace dravo {
namespace {

using Json = nlohmann::ordered_json;
using ReadJson = nlohmann::json;  // finds a key at once among however many a file has

// --- values -----------------------------------------------------------------------------------

/// A count of a record.
std::int64_t whole(const ReadJson& json, const std::string& key, std::int64_t lowest = 0) {
  const auto count = whole_number<std::int64_t>(json.at(key));
  if (count < lowest) throw std::out_of_range(key);
  return count;
}

/// JSON has no infinity, which stands for "no pose yet".
double lowest_in(const ReadJson& json) {
  return json.is_null() ? std::numeric_limits<double>::infinity() : json.get<double>();
}

/// Empty without the key.
std::optional<std::uint64_t> checksum_in(const ReadJson& json, const std::string& key) {
  const auto found = json.find(key);
  if (found == json.end()) return std::nullopt;
  const auto checksum = checksum_of_text(found->get<std::string>());
  if (!checksum) throw std::out_of_range(key);
  return checksum;
}

// --- origin -----------------------------------------------------------------------------------

/// Numbers and truths as such, where the same text comes back from them. A version is a text.
Json json_of(const std::string& key, const std::string& text) {
  if (key.ends_with(kVersionKey)) return text;
  Json value = Json::parse(text, nullptr, false);
  const bool plain = value.is_number() || value.is_boolean();
  return plain && value.dump() == text ? value : Json(text);
}

Json json_of(const std::map<std::string, std::string>& origin) {
  std::map<std::string, Json> values;  // all at once, as each that is added is compared with all
  for (const auto& [key, text] : origin) values.emplace_hint(values.end(), key, json_of(key, text));
  return values;
}

/// In records of earlier versions all values are texts.
std::map<std::string, std::string> origin_in(const ReadJson& json) {
  if (!json.is_object()) throw std::out_of_range("origin");
  std::map<std::string, std::string> origin;
  for (const auto& [key, value] : json.items()) {
    if (value.is_structured() || value.is_null()) throw std::out_of_range(key);
    origin[key] = value.is_string() ? value.get<std::string>() : value.dump();
  }
  return origin;
}

// --- molecules --------------------------------------------------------------------------------

Json json_of(const Pair& pair) {
  const Molecule atoms(pair.labels(), pair.positions());
  Json symbols = Json::array(), positions = Json::array();
  for (std::int32_t i = 0; i < atoms.size(); ++i) symbols.push_back(atoms.symbol(i));
  for (const Vec3& p : pair.positions()) positions.push_back(Json::array({p.x, p.y, p.z}));
  return {{"n1", pair.n1()}, {"symbols", std::move(symbols)}, {"positions", std::move(positions)}};
}

Pair pair_in(const ReadJson& json) {
  std::vector<Vec3> positions;
  for (const ReadJson& p : json.at("positions")) {
    if (p.size() != 3) throw std::out_of_range("positions");
    positions.push_back({p[0].get<double>(), p[1].get<double>(), p[2].get<double>()});
  }
  const auto n1 = static_cast<std::int32_t>(
      std::min<std::int64_t>(whole(json, "n1", 1), std::numeric_limits<std::int32_t>::max()));
  return {n1, Molecule(json.at("symbols").get<std::vector<std::string>>(), std::move(positions))};
}

constexpr auto kDocking = "docking";
constexpr auto kGeometry = "geometry";
constexpr auto kReference = "reference";

std::shared_ptr<const ScannedPair> molecules_in(const ReadJson& json) {
  if (!json.contains(kGeometry)) return nullptr;
  ScannedPair molecules{pair_in(json.at(kGeometry)), std::nullopt};
  if (json.contains(kReference)) molecules.like = pair_in(json.at(kReference));
  return std::make_shared<const ScannedPair>(std::move(molecules));
}

// --- energies ---------------------------------------------------------------------------------

constexpr auto kEnergies = "energies";
constexpr auto kAboveContact = "above_contact";
constexpr auto kReferenceEnergies = "reference_energies_hartree";

Json json_of(const EnergyTotals& totals) {
  Json json = Json::object();
  for (const EnergyStatus status : kEnergyStatuses) json[name_of(status)] = totals.of(status);
  json["lowest"] = totals.lowest;
  json["lowest_index"] = totals.lowest_index;
  if (totals.lowest_index == 0) return json;
  Json& pose = json["lowest_pose"];
  if (totals.above_contact != totals.lowest_pose.r) pose[kAboveContact] = totals.above_contact;
  for (const PoseParameter& parameter : kPoseParameters)
    pose[parameter.name] = totals.lowest_pose.*parameter.value;
  return json;
}

EnergyTotals energies_in(const ReadJson& json) {
  EnergyTotals totals;
  for (std::size_t k = 0; k < kEnergyStatuses.size(); ++k)
    totals.poses[k] = whole(json, std::string(name_of(kEnergyStatuses[k])));
  totals.lowest = lowest_in(json.at("lowest"));
  totals.lowest_index = whole(json, "lowest_index");
  if (totals.lowest_index == 0) return totals;
  const ReadJson& pose = json.at("lowest_pose");
  for (const PoseParameter& parameter : kPoseParameters)
    totals.lowest_pose.*parameter.value = pose.at(parameter.name).get<double>();
  totals.above_contact = pose.value(kAboveContact, totals.lowest_pose.r);
  return totals;
}

// --- totals and files -------------------------------------------------------------------------

Json json_of(const ScanTotals& totals) {
  Json json{{"done", totals.poses},        {"left_out", totals.left_out},
            {"written", totals.written},   {"with_contacts", totals.with_contacts},
            {"shortest", totals.shortest}, {"shortest_index", totals.shortest_index}};
  if (totals.kept) json["kept"] = *totals.kept;
  if (totals.energies) json[kEnergies] = json_of(*totals.energies);
  return json;
}

ScanTotals totals_in(const ReadJson& json) {
  return {whole(json, "done"),
          json.contains("left_out") ? whole(json, "left_out") : 0,
          whole(json, "written"),
          whole(json, "with_contacts"),
          lowest_in(json.at("shortest")),
          whole(json, "shortest_index"),
          json.contains("kept") ? std::optional(whole(json, "kept")) : std::nullopt,
          json.contains(kEnergies) ? std::optional(energies_in(json.at(kEnergies))) : std::nullopt};
}

constexpr auto kStartsThatEnded = "starts";

Json json_of(const DockSummary& docking) {
  Json starts = Json::object();
  for (const DockEnd end : kDockEnds) starts[name_of(end)] = docking.starts_of(end);
  return {{"ended", docking.ended},
          {"depends_on_machine", docking.ended == kEndedByTime},
          {"minima", docking.minima},
          {kStartsThatEnded, std::move(starts)}};
}

DockSummary docking_in(const ReadJson& json) {
  DockSummary docking{json.at("ended").get<std::string>(), whole(json, "minima"), {}};
  for (std::size_t k = 0; k < kDockEnds.size(); ++k)
    docking.starts[k] = whole(json.at(kStartsThatEnded), std::string(name_of(kDockEnds[k])));
  return docking;
}

std::string bytes_key(ResultFile file) {
  return fmt::format("{}_bytes", kResultNames.at(static_cast<std::size_t>(file)).key);
}

std::string checksum_key(ResultFile file) {
  return fmt::format("{}_xxh3", kResultNames.at(static_cast<std::size_t>(file)).key);
}

/// Those that a record has to tell of.
std::vector<ResultFile> files_in(const ReadJson& json, const ScanRecord& record) {
  if (json.contains(bytes_key(ResultFile::starts))) return {ResultFile::starts};
  if (record.best())
    for (const ResultFile file : {ResultFile::best1, ResultFile::best2})
      if (json.contains(bytes_key(file))) return {file};
  return record.results();
}

}  // namespace

std::string json_text_of(const ScanTotals& totals, bool exact) {
  Json json = json_of(totals);
  json[kPlacingKey] = words_of_placing(exact);
  json[kFrameRuleKey] = kFrameRule;
  return json.dump();
}

std::string json_text_of(const ScanRecord& record) {
  Json json = json_of(record.totals);
  const auto placing = record.origin.find(kPlacingKey);
  if (placing != record.origin.end()) json[kPlacingKey] = placing->second;
  const auto rule = record.origin.find(kFrameRuleKey);
  if (rule == record.origin.end()) return json.dump();
  if (const auto number = parse_integer(rule->second)) json[kFrameRuleKey] = *number;
  return json.dump();
}

std::string text_of(const ScanRecord& record) {
  Json json{{"origin", json_of(record.origin)},
            {"poses", record.poses},
            {"shard", record.shard.number},
            {"shards", record.shard.of},
            {"totals", json_of(record.totals)}};
  if (!record.reference_energies.empty()) json[kReferenceEnergies] = record.reference_energies;
  if (record.docking) json[kDocking] = json_of(*record.docking);
  for (const auto& [file, state] : record.files) json[bytes_key(file)] = state.bytes;
  for (const auto& [file, state] : record.files)
    if (state.checksum) json[checksum_key(file)] = text_of_checksum(*state.checksum);
  if (record.molecules) {
    json[kGeometry] = json_of(record.molecules->pair);
    if (record.molecules->like) json[kReference] = json_of(*record.molecules->like);
  }
  return json.dump();
}

ScanRecord parse_record(const std::string& name, const std::string& text) {
  try {
    const ReadJson json = ReadJson::parse(text);
    ScanRecord record;
    record.origin = origin_in(json.at("origin"));
    record.poses = whole(json, "poses");
    record.shard = {whole(json, "shard", 1), whole(json, "shards", 1)};
    record.totals = totals_in(json.at("totals"));
    for (const ResultFile file : files_in(json, record))
      record.files[file] = {whole(json, bytes_key(file)), checksum_in(json, checksum_key(file))};
    record.molecules = molecules_in(json);
    if (json.contains(kReferenceEnergies))
      record.reference_energies = json.at(kReferenceEnergies).get<ReferenceEnergies>();
    if (json.contains(kDocking)) record.docking = docking_in(json.at(kDocking));
    if (record.shard.number > record.shard.of) throw std::out_of_range("shard");
    return record;
  } catch (const std::exception&) {
    throw IoFailure(name + ": expected the record of a scan by dravo, found something else");
  }
}

}  // namespace dravo
