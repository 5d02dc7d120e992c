#include "results/scan_record.hpp"

#include <fmt/format.h>

#include <charconv>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "common/atom_table.hpp"
#include "common/errors.hpp"
#include "common/number_format.hpp"
#include "common/number_text.hpp"
#include "common/version.hpp"
#include "scan/fingerprint.hpp"

namespace dravo {
namespace {

using Json = nlohmann::ordered_json;

Json json_of(const ScanTotals& totals) {
  return {{"done", totals.poses},        {"left_out", totals.left_out},
          {"written", totals.written},   {"with_contacts", totals.with_contacts},
          {"shortest", totals.shortest}, {"shortest_index", totals.shortest_index}};
}

/// A count of a record.
std::int64_t whole(const Json& json, const char* key, std::int64_t lowest = 0) {
  const Json& value = json.at(key);
  const auto count = value.is_number_integer() ? value.get<std::int64_t>() : lowest - 1;
  if (count < lowest) throw std::out_of_range(key);
  return count;
}

/// JSON has no infinity, which stands for "no pose yet".
double distance_in(const Json& json) {
  return json.is_null() ? std::numeric_limits<double>::infinity() : json.get<double>();
}

constexpr auto kFrameChecksum = "frame_xxh3";
constexpr auto kTableChecksum = "table_xxh3";

/// As checksums are written everywhere: sixteen digits.
std::string hexadecimal(std::uint64_t number) { return fmt::format("{:016x}", number); }

/// Empty without the key.
std::optional<std::uint64_t> checksum_in(const Json& json, const char* key) {
  const auto found = json.find(key);
  if (found == json.end()) return std::nullopt;
  const auto text = found->get<std::string>();
  std::uint64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number, 16);
  if (hexadecimal(number) != text) throw std::out_of_range(key);
  return number;
}

constexpr auto kPlacing = "placing";
constexpr auto kFrameRuleKey = "frame_rule";

const char* words_of_placing(bool exact) { return exact ? "exact" : "as qn-dravo"; }

}  // namespace

std::int64_t Shard::first(std::int64_t poses) const {
  __extension__ using Wide = __int128;
  return static_cast<std::int64_t>(Wide{poses} * (number - 1) / of);
}

std::int64_t Shard::end(std::int64_t poses) const { return Shard{number + 1, of}.first(poses); }

std::string Shard::name(const std::string& scan) const {
  return fmt::format("{}-{}-of-{}", scan, number, of);
}

bool ScanRecord::with_frames() const {
  const auto files = origin.find("files");
  return files == origin.end() || files->second != "true";
}

std::string fingerprint_of(const Pair& pair) {
  Fingerprint atoms;
  for (const Label& label : pair.labels()) atoms.add(text_of(label));
  for (const Vec3& p : pair.positions())
    for (const double coordinate : {p.x, p.y, p.z}) atoms.add(coordinate);
  return fmt::format("{}+{} atoms, {}", pair.n1(), pair.size() - pair.n1(), atoms.value());
}

std::map<std::string, std::string> origin_of(const PairPlacer& placer, const Pair& pair,
                                             const ScanPlan& plan) {
  auto origin = plan.description();
  origin["version"] = DRAVO_VERSION;
  origin["pair"] = fingerprint_of(pair);
  origin[kFrameRuleKey] = std::to_string(kFrameRule);
  origin[kPlacing] = words_of_placing(placer.exact());
  return origin;
}

std::string difference(const ScanRecord& earlier, const ScanRecord& now) {
  const auto value = [](const std::map<std::string, std::string>& origin, const std::string& key) {
    const auto found = origin.find(key);
    return found == origin.end() ? std::string("not given") : found->second;
  };
  std::string text;
  const auto compare = [&](const std::string& key, const std::string& was, const std::string& is) {
    if (was != is)
      text += fmt::format("{}{} was {}, is {}", text.empty() ? "" : "; ", key, was, is);
  };
  auto keys = earlier.origin;
  keys.insert(now.origin.begin(), now.origin.end());
  for (const auto& [key, ignored] : keys)
    compare(key, value(earlier.origin, key), value(now.origin, key));
  const auto part = [](const Shard& shard) { return fmt::format("{}/{}", shard.number, shard.of); };
  compare("shard", part(earlier.shard), part(now.shard));
  return text;
}

void require_same_origin(const std::string& name, const ScanRecord& earlier,
                         const ScanRecord& now) {
  const std::string differs = difference(earlier, now);
  if (!differs.empty()) throw IoFailure(fmt::format("{}: is of another scan: {}", name, differs));
}

std::string sentence_about(const ScanTotals& totals, bool written) {
  if (totals.poses == 0) return "no poses";
  const std::string equal =
      totals.left_out > 0 ? fmt::format("{} equal to earlier ones, ", totals.left_out) : "";
  return fmt::format(
      "{} {}, {}{} with short contacts, {} {}; shortest distance {} Angstrom in pose {}",
      totals.poses, totals.poses == 1 ? "pose" : "poses", equal, totals.with_contacts,
      totals.written, written ? "written" : "to be written", fixed_text(totals.shortest, 4),
      totals.shortest_index);
}

std::string json_text_of(const ScanTotals& totals, bool exact) {
  Json json = json_of(totals);
  json[kPlacing] = words_of_placing(exact);
  json[kFrameRuleKey] = kFrameRule;
  return json.dump();
}

std::string json_text_of(const ScanRecord& record) {
  Json json = json_of(record.totals);
  const auto placing = record.origin.find(kPlacing);
  if (placing != record.origin.end()) json[kPlacing] = placing->second;
  const auto rule = record.origin.find(kFrameRuleKey);
  if (rule == record.origin.end()) return json.dump();
  if (const auto number = parse_integer(rule->second)) json[kFrameRuleKey] = *number;
  return json.dump();
}

std::string text_of(const ScanRecord& record) {
  Json json{{"origin", record.origin},          {"poses", record.poses},
            {"shard", record.shard.number},     {"shards", record.shard.of},
            {"totals", json_of(record.totals)}, {"frame_bytes", record.frame_bytes},
            {"table_bytes", record.table_bytes}};
  if (record.frame_checksum) json[kFrameChecksum] = hexadecimal(*record.frame_checksum);
  if (record.table_checksum) json[kTableChecksum] = hexadecimal(*record.table_checksum);
  return json.dump();
}

ScanRecord parse_record(const std::string& name, const std::string& text) {
  try {
    const Json json = Json::parse(text);
    ScanRecord record;
    json.at("origin").get_to(record.origin);
    record.poses = whole(json, "poses");
    record.shard = {whole(json, "shard", 1), whole(json, "shards", 1)};
    const Json& totals = json.at("totals");
    record.totals = {whole(totals, "done"),
                     totals.contains("left_out") ? whole(totals, "left_out") : 0,
                     whole(totals, "written"),
                     whole(totals, "with_contacts"),
                     distance_in(totals.at("shortest")),
                     whole(totals, "shortest_index")};
    record.frame_bytes = whole(json, "frame_bytes");
    record.table_bytes = whole(json, "table_bytes");
    record.frame_checksum = checksum_in(json, kFrameChecksum);
    record.table_checksum = checksum_in(json, kTableChecksum);
    if (record.shard.number > record.shard.of) throw std::out_of_range("shard");
    return record;
  } catch (const std::exception&) {
    throw IoFailure(name + ": expected the record of a scan by dravo, found something else");
  }
}

}  // namespace dravo
