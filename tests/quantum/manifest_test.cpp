#include "quantum/manifest.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

#include "common/version.hpp"
#include "dravo/error.hpp"
#include "support/message_of.hpp"

namespace dravo::test {
namespace {

Manifest sample_manifest() {
  Manifest manifest;
  QuantumJob& job = manifest.job;
  job.program = QuantumProgram::nwchem;
  job.method = "ccsd(t)";
  job.basis = "6-31g*";
  job.keywords = {"set a \"b\"", "Å"};
  job.charges = {-1, 2};
  job.multiplicities = {2, 3};
  job.treatment = Treatment::counterpoise;
  job.ghost = 2;
  manifest.ending = ".nw";
  manifest.source = "scan big";
  manifest.source_checksum = 0x0123456789abcdefU;
  manifest.selection = "the best 2 by shortest";
  manifest.n1 = 1;
  manifest.symbols = {"F", "Cl"};
  manifest.table = 0xfedcba9876543210U;
  manifest.poses = {{17, 1}, {123456789, 0xffffffffffffffffU}};
  return manifest;
}

/// The manifest as README and other programs may rely on it.
const std::string kManifestText = std::string("{\n \"dravo\": \"") + DRAVO_VERSION + R"json(",
 "program": "nwchem",
 "method": "ccsd(t)",
 "basis": "6-31g*",
 "keywords": [
  "set a \"b\"",
  "Å"
 ],
 "charges": [
  -1,
  2
 ],
 "multiplicities": [
  2,
  3
 ],
 "treatment": "counterpoise",
 "ghost": 2,
 "input_ending": ".nw",
 "source": "scan big",
 "source_xxh3": "0123456789abcdef",
 "selection": "the best 2 by shortest",
 "n1": 1,
 "symbols": [
  "F",
  "Cl"
 ],
 "poses_csv_xxh3": "fedcba9876543210",
 "poses": [
  {"index": 17, "folder": "000/000017", "geometry_xxh3": "0000000000000001"},
  {"index": 123456789, "folder": "123456/123456789", "geometry_xxh3": "ffffffffffffffff"}
 ]
}
)json";

TEST(Manifests, AreText) { EXPECT_EQ(text_of(sample_manifest()), kManifestText); }

TEST(Manifests, AreReadBack) {
  const Manifest written = sample_manifest();
  const Manifest read = parse_manifest("manifest.json", kManifestText);
  EXPECT_EQ(read.job.program, written.job.program);
  EXPECT_EQ(read.job.method, written.job.method);
  EXPECT_EQ(read.job.basis, written.job.basis);
  EXPECT_EQ(read.job.keywords, written.job.keywords);
  EXPECT_EQ(read.job.charges, written.job.charges);
  EXPECT_EQ(read.job.multiplicities, written.job.multiplicities);
  EXPECT_EQ(read.job.treatment, written.job.treatment);
  EXPECT_EQ(read.job.ghost, written.job.ghost);
  EXPECT_EQ(read.ending, written.ending);
  EXPECT_EQ(read.source, written.source);
  EXPECT_EQ(read.source_checksum, written.source_checksum);
  EXPECT_EQ(read.selection, written.selection);
  EXPECT_EQ(read.n1, written.n1);
  EXPECT_EQ(read.symbols, written.symbols);
  EXPECT_EQ(read.table, written.table);
  ASSERT_EQ(read.poses.size(), 2U);
  EXPECT_EQ(read.poses[1].index, 123456789);
  EXPECT_EQ(read.poses[1].geometry, 0xffffffffffffffffU);
  EXPECT_EQ(text_of(read), kManifestText);
}

std::string refused_manifest(const std::string& text) {
  return message_of<IoFailure>([&] { (void)parse_manifest("qc/manifest.json", text); });
}

constexpr auto kNoManifest =
    "qc/manifest.json: expected a manifest that dravo export wrote, found something else";

TEST(Manifests, ThatWereCutAreRefused) {
  // The last byte is an end of line.
  for (std::size_t end = 0; end + 1 < kManifestText.size(); ++end)
    EXPECT_EQ(refused_manifest(kManifestText.substr(0, end)), kNoManifest) << end;
}

TEST(Manifests, WithoutAKeyAreRefused) {
  for (const std::string key :
       {"program", "method", "basis", "keywords", "charges", "multiplicities", "treatment", "ghost",
        "input_ending", "source", "source_xxh3", "selection", "n1", "symbols", "poses_csv_xxh3",
        "poses", "index", "geometry_xxh3"}) {
    std::string text = kManifestText;
    text.insert(text.find("\"" + key + "\":") + 1, "x");
    EXPECT_EQ(refused_manifest(text), kNoManifest) << key;
  }
}

TEST(Manifests, WithOtherValuesAreRefused) {
  for (const auto& [old, wrong] : {
           std::pair<std::string_view, std::string_view>{"\"nwchem\"", "\"psi\""},
           {"\"counterpoise\"", "\"cp\""},
           {"\"ghost\": 2", "\"ghost\": 3"},
           {"\"ghost\": 2", "\"ghost\": -1"},
           {"\"ghost\": 2", "\"ghost\": 2.0"},
           {"\"ghost\": 2", "\"ghost\": 1e65"},
           {"\"ghost\": 2", "\"ghost\": 4294967298"},
           {"\"index\": 17", "\"index\": 18446744073709551615"},
           {"  -1,\n", "  -4294967297,\n"},
           {"  -1,\n", "  0.5,\n"},
           {"\"ccsd(t)\"", "7"},
           {"\"0123456789abcdef\"", "\"0123456789abcde\""},
           {"\"fedcba9876543210\"", "\"fedcba987654321g\""},
           {"\"0000000000000001\"", "1"},
           {"\"index\": 17", "\"index\": \"17\""},
           {"\"n1\": 1", "\"n1\": \"1\""},
           {"\"n1\": 1", "\"n1\": 0"},
           {"\"n1\": 1", "\"n1\": -1"},
           {"\"n1\": 1", "\"n1\": 2"},
           {"\"Cl\"", "17"},
           {"  -1,\n", ""},
       }) {
    std::string text = kManifestText;
    text.replace(text.find(old), old.size(), wrong);
    EXPECT_EQ(refused_manifest(text), kNoManifest) << wrong;
  }
  EXPECT_EQ(refused_manifest("[]"), kNoManifest);
  EXPECT_EQ(refused_manifest("null"), kNoManifest);
  EXPECT_EQ(refused_manifest(kManifestText), "");
}

TEST(Manifests, NameTheFoldersOfPoses) {
  for (const auto& [index, folder] : {std::pair<std::int64_t, const char*>{0, "000/000000"},
                                      {1, "000/000001"},
                                      {999, "000/000999"},
                                      {1000, "001/001000"},
                                      {999999, "999/999999"},
                                      {1000000, "1000/1000000"},
                                      {123456789012, "123456789/123456789012"}})
    EXPECT_EQ(folder_of_pose(index), folder);
}

}  // namespace
}  // namespace dravo::test
