#include "scan/scan_record.hpp"

#include <limits>
#include <nlohmann/json.hpp>

#include "common/errors.hpp"
#include "common/record_format.hpp"
#include "common/version.hpp"
#include "scan/fingerprint.hpp"

namespace dravo {
namespace {

using Json = nlohmann::ordered_json;

Json json_of(const ScanTotals& totals) {
  return {{"done", totals.poses},
          {"written", totals.written},
          {"with_contacts", totals.with_contacts},
          {"shortest", totals.shortest},
          {"shortest_index", totals.shortest_index}};
}

/// JSON has no infinity, which stands for "no pose yet".
double distance_in(const Json& json) {
  return json.is_null() ? std::numeric_limits<double>::infinity() : json.get<double>();
}

}  // namespace

std::int64_t Shard::first(std::int64_t poses) const {
  __extension__ using Wide = __int128;
  return static_cast<std::int64_t>(Wide{poses} * (number - 1) / of);
}

std::int64_t Shard::end(std::int64_t poses) const { return Shard{number + 1, of}.first(poses); }

std::string Shard::name(const std::string& scan) const {
  return of == 1 ? scan : scan + "-" + std::to_string(number) + "-of-" + std::to_string(of);
}

bool ScanRecord::with_frames() const {
  const auto files = origin.find("files");
  return files == origin.end() || files->second != "true";
}

std::map<std::string, std::string> origin_of(const Pair& pair, const ScanPlan& plan) {
  Fingerprint atoms;
  for (const Label& label : pair.labels) atoms.add(text_of(label));
  for (const Vec3& p : pair.positions)
    for (const double coordinate : {p.x, p.y, p.z}) atoms.add(coordinate);
  auto origin = plan.description();
  origin["version"] = DRAVO_VERSION;
  origin["pair"] = std::to_string(pair.split.n1) + "+" +
                   std::to_string(pair.split.N - pair.split.n1) + " atoms, " +
                   std::to_string(atoms.value());
  return origin;
}

std::string difference(const ScanRecord& earlier, const ScanRecord& now) {
  const auto value = [](const std::map<std::string, std::string>& origin, const std::string& key) {
    const auto found = origin.find(key);
    return found == origin.end() ? std::string("not given") : found->second;
  };
  std::string text;
  const auto compare = [&](const std::string& key, const std::string& was, const std::string& is) {
    if (was != is) text.append(text.empty() ? "" : "; ").append(key + " was " + was + ", is " + is);
  };
  auto keys = earlier.origin;
  keys.insert(now.origin.begin(), now.origin.end());
  for (const auto& [key, ignored] : keys)
    compare(key, value(earlier.origin, key), value(now.origin, key));
  const auto part = [](const Shard& shard) {
    return std::to_string(shard.number) + "/" + std::to_string(shard.of);
  };
  compare("shard", part(earlier.shard), part(now.shard));
  return text;
}

std::string sentence_about(const ScanTotals& totals) {
  return std::to_string(totals.poses) + " poses, " + std::to_string(totals.with_contacts) +
         " with short contacts, " + std::to_string(totals.written) + " wanted; shortest distance " +
         fixed_text(totals.shortest, 4) + " Angstrom in pose " +
         std::to_string(totals.shortest_index);
}

std::string json_text_of(const ScanTotals& totals) { return json_of(totals).dump(); }

std::string text_of(const ScanRecord& record) {
  return Json{{"origin", record.origin},          {"poses", record.poses},
              {"shard", record.shard.number},     {"shards", record.shard.of},
              {"totals", json_of(record.totals)}, {"frame_bytes", record.frame_bytes},
              {"table_bytes", record.table_bytes}}
      .dump();
}

ScanRecord parse_record(const std::string& name, const std::string& text) {
  try {
    const Json json = Json::parse(text);
    ScanRecord record;
    json.at("origin").get_to(record.origin);
    json.at("poses").get_to(record.poses);
    json.at("shard").get_to(record.shard.number);
    json.at("shards").get_to(record.shard.of);
    const Json& totals = json.at("totals");
    totals.at("done").get_to(record.totals.poses);
    totals.at("written").get_to(record.totals.written);
    totals.at("with_contacts").get_to(record.totals.with_contacts);
    record.totals.shortest = distance_in(totals.at("shortest"));
    totals.at("shortest_index").get_to(record.totals.shortest_index);
    json.at("frame_bytes").get_to(record.frame_bytes);
    json.at("table_bytes").get_to(record.table_bytes);
    return record;
  } catch (const Json::exception&) {
    throw IoFailure(name + ": expected the record of a scan by dravo, found something else");
  }
}

}  // namespace dravo
