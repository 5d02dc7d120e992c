#include "quantum/manifest.hpp"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "common/json_number.hpp"
#include "common/version.hpp"
#include "dravo/error.hpp"
#include "results/checksum.hpp"

namespace dravo {
namespace {

using Json = nlohmann::ordered_json;

std::uint64_t checksum_in(const Json& json) {
  const auto checksum = checksum_of_text(json.get<std::string>());
  if (!checksum) throw std::out_of_range("checksum");
  return *checksum;
}

void read_two(const Json& json, std::array<int, 2>& numbers) {
  for (std::size_t k = 0; k < numbers.size(); ++k) numbers[k] = whole_number<int>(json.at(k));
}

void require_possible(const Manifest& manifest) {
  const bool two_molecules = manifest.n1 >= 1 && manifest.n1 < std::ssize(manifest.symbols);
  if (!two_molecules) throw std::out_of_range("n1");
  if (manifest.job.ghost < 0 || manifest.job.ghost > 2) throw std::out_of_range("ghost");
  for (const ManifestPose& pose : manifest.poses)
    if (pose.index < 1) throw std::out_of_range("index");
}

Json head_of(const Manifest& manifest) {
  const QuantumJob& job = manifest.job;
  return {{"dravo", DRAVO_VERSION},
          {"program", name_of(job.program)},
          {"method", job.method},
          {"basis", job.basis},
          {"keywords", job.keywords},
          {"charges", job.charges},
          {"multiplicities", job.multiplicities},
          {"treatment", name_of(job.treatment)},
          {"ghost", job.ghost},
          {"input_ending", manifest.ending},
          {"source", manifest.source},
          {"source_xxh3", text_of_checksum(manifest.source_checksum)},
          {"selection", manifest.selection},
          {"n1", manifest.n1},
          {"symbols", manifest.symbols},
          {"poses_csv_xxh3", text_of_checksum(manifest.table)}};
}

}  // namespace

std::string folder_of_pose(std::int64_t index) {
  constexpr std::int64_t kThousand = 1000;
  return fmt::format("{:03}/{:06}", index / kThousand, index);
}

/// Each pose on a line of its own.
std::string text_of(const Manifest& manifest) {
  std::string text = head_of(manifest).dump(1);
  text.resize(text.size() - 2);
  text += ",\n \"poses\": [";
  const char* separator = "\n";
  for (const ManifestPose& pose : manifest.poses) {
    text += fmt::format(R"({}  {{"index": {}, "folder": "{}", "geometry_xxh3": "{}"}})", separator,
                        pose.index, folder_of_pose(pose.index), text_of_checksum(pose.geometry));
    separator = ",\n";
  }
  return text + "\n ]\n}\n";
}

Manifest parse_manifest(const std::string& name, const std::string& text) {
  try {
    const Json json = Json::parse(text);
    Manifest manifest;
    QuantumJob& job = manifest.job;
    job.program = quantum_program(json.at("program").get<std::string>());
    json.at("method").get_to(job.method);
    json.at("basis").get_to(job.basis);
    json.at("keywords").get_to(job.keywords);
    read_two(json.at("charges"), job.charges);
    read_two(json.at("multiplicities"), job.multiplicities);
    job.treatment = treatment_of(json.at("treatment").get<std::string>());
    job.ghost = whole_number<int>(json.at("ghost"));
    json.at("input_ending").get_to(manifest.ending);
    json.at("source").get_to(manifest.source);
    manifest.source_checksum = checksum_in(json.at("source_xxh3"));
    json.at("selection").get_to(manifest.selection);
    manifest.n1 = whole_number<std::int32_t>(json.at("n1"));
    json.at("symbols").get_to(manifest.symbols);
    manifest.table = checksum_in(json.at("poses_csv_xxh3"));
    for (const Json& pose : json.at("poses"))
      manifest.poses.push_back(
          {whole_number<std::int64_t>(pose.at("index")), checksum_in(pose.at("geometry_xxh3"))});
    require_possible(manifest);
    return manifest;
  } catch (const std::exception&) {
    throw IoFailure(name + ": expected a manifest that dravo export wrote, found something else");
  }
}

}  // namespace dravo
