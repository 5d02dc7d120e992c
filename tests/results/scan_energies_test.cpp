/// Energies in the totals of a scan, in its record and in its text.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "results/scan_record.hpp"
#include "results/text_chunk.hpp"
#include "scan/plans.hpp"
#include "support/message_of.hpp"
#include "support/not_finite.hpp"
#include "support/shell_energies.hpp"

namespace dravo::test {
namespace {

// Totals.

ScannedPose pose_with(std::int64_t index, EnergyStatus status, double interaction = std::nan("")) {
  ScannedPose pose;
  pose.index = index;
  pose.asked = {0.5 * static_cast<double>(index), 10, 20, 30, 40, 50};
  pose.above_contact = 0.125;
  pose.energy_status = status;
  pose.interaction = interaction;
  return pose;
}

TEST(EnergyTotals, CountStatusesAndKeepTheFirstOfTheLowest) {
  EnergyTotals totals;
  EXPECT_EQ(totals.lowest, kInfinity);
  totals.add(pose_with(3, EnergyStatus::clash));
  EXPECT_EQ(totals.lowest_index, 0);
  for (const auto& [index, energy] : {std::pair(4, 2.0), {6, -3.5}, {7, -3.5}, {8, -3.0}})
    totals.add(pose_with(index, EnergyStatus::ok, energy));
  totals.add(pose_with(9, EnergyStatus::engine_died));
  totals.add(pose_with(10, EnergyStatus::clash));
  EXPECT_EQ(totals.of(EnergyStatus::ok), 4);
  EXPECT_EQ(totals.of(EnergyStatus::clash), 2);
  EXPECT_EQ(totals.of(EnergyStatus::engine_died), 1);
  EXPECT_EQ(totals.of(EnergyStatus::scf_fail), 0);
  EXPECT_EQ(totals.lowest, -3.5);
  EXPECT_EQ(totals.lowest_index, 6);
  EXPECT_EQ(totals.lowest_pose.r, 3.0);
  EXPECT_EQ(totals.above_contact, 0.125);
}

TEST(EnergyTotals, AddUpInTheOrderOfThePoses) {
  ScanTotals totals;
  totals.add({.poses = 3});
  EXPECT_FALSE(totals.energies) << "of a scan without";
  ScanTotals first, second, third;
  first.energies.emplace().add(pose_with(2, EnergyStatus::ok, -1.0));
  second.energies.emplace().add(pose_with(5, EnergyStatus::ok, -2.0));
  second.energies->add(pose_with(6, EnergyStatus::scf_fail));
  third.energies.emplace().add(pose_with(7, EnergyStatus::ok, -2.0));
  for (const ScanTotals& later : {first, second, third}) totals.add(later);
  EXPECT_EQ(totals.energies->of(EnergyStatus::ok), 3);
  EXPECT_EQ(totals.energies->of(EnergyStatus::scf_fail), 1);
  EXPECT_EQ(totals.energies->lowest, -2.0);
  EXPECT_EQ(totals.energies->lowest_index, 5);
  EXPECT_EQ(totals.energies->lowest_pose.r, 2.5);
}

// Record.

ScanRecord record_with_energies() {
  ScanRecord scan{{{"energy", "gfn2"}}, 10, {}, {7, 0, 7, 1, 1.5, 2}, {}};
  scan.files = {{ResultFile::frames, {1, 2}}, {ResultFile::table, {3, 4}}};
  scan.reference_energies = {{"gfn2", {-5.070544, -0.1 - 0.2}}};
  scan.totals.energies = EnergyTotals{{4, 2, 1, 0, 0}, -16.64172, 3, {4.1, 90, 0, 1e-7, 5, 6}, 0.2};
  return scan;
}

const std::string kEnergiesInJson =
    "\"energies\":{\"ok\":4,\"clash\":2,\"scf_fail\":1,\"nonphysical\":0,\"engine_died\":0,"
    "\"lowest\":-16.64172,\"lowest_index\":3,\"lowest_pose\":{\"above_contact\":0.2,\"r\":4.1,"
    "\"theta\":90.0,\"phi\":0.0,\"alpha\":1e-07,\"beta\":5.0,\"gamma\":6.0}}";

TEST(RecordOfEnergies, IsReadBackFromItsText) {
  const std::string text = text_of(record_with_energies());
  EXPECT_NE(text.find(kEnergiesInJson), std::string::npos) << text;
  EXPECT_NE(text.find("\"reference_energies_hartree\":{\"gfn2\":[-5.070544,-0.30000000000000004]}"),
            std::string::npos)
      << text;
  const ScanRecord read = parse_record("a.json", text);
  EXPECT_EQ(text_of(read), text);
  EXPECT_EQ(read.reference_energies, record_with_energies().reference_energies);
  EXPECT_TRUE(has_energies(read));
  EXPECT_NE(json_text_of(read.totals, true).find(kEnergiesInJson), std::string::npos);
}

TEST(RecordOfEnergies, KnowsOfNoLowestOne) {
  ScanRecord scan = record_with_energies();
  scan.totals.energies = EnergyTotals{};
  const std::string text = text_of(scan);
  EXPECT_NE(text.find("\"lowest\":null,\"lowest_index\":0}"), std::string::npos) << text;
  EXPECT_EQ(text_of(parse_record("a.json", text)), text);
}

TEST(RecordOfEnergies, TellsWhereRCountsFromTheContactOnly) {
  ScanRecord scan = record_with_energies();
  scan.totals.energies->above_contact = 4.1;
  const std::string text = text_of(scan);
  EXPECT_EQ(text.find("above_contact"), std::string::npos);
  EXPECT_EQ(parse_record("a.json", text).totals.energies->above_contact, 4.1);
}

TEST(RecordOfEnergies, IsNothingInAScanWithout) {
  ScanRecord scan = record_with_energies();
  scan.totals.energies.reset();
  scan.reference_energies.clear();
  scan.origin.clear();
  EXPECT_EQ(text_of(scan).find("energ"), std::string::npos);
  EXPECT_FALSE(parse_record("a.json", text_of(scan)).totals.energies);
  EXPECT_FALSE(has_energies(scan));
}

TEST(RecordOfEnergies, ThatIsNoneIsRefused) {
  const std::string whole = text_of(record_with_energies());
  for (const auto& [from, to] : {std::pair("\"ok\":4", "\"ok\":-4"),
                                 {"\"clash\":2", "\"cl\":2"},
                                 {"\"lowest\":-16.64172", "\"lowest\":\"low\""},
                                 {"\"lowest_index\":3", "\"lowest_index\":3.5"},
                                 {"\"theta\":90.0", "\"theta\":null"},
                                 {"[-5.070544,", "[\"x\","}}) {
    std::string text = whole;
    ASSERT_NE(text.find(from), std::string::npos) << from;
    text.replace(text.find(from), std::string(from).size(), to);
    EXPECT_EQ(message_of([&] { (void)parse_record("a.json", text); }),
              "a.json: expected the record of a scan by dravo, found something else")
        << to;
  }
}

TEST(RecordOfEnergies, OfAnotherEngineIsAnotherScan) {
  const ScanRecord earlier = record_with_energies();
  ScanRecord now = earlier;
  now.reference_energies["gfn2"][0] += 0.9e-6;
  EXPECT_EQ(message_of([&] { require_same_origin("a.json", earlier, now); }), "")
      << "another machine";
  now.reference_energies["gfn2"][0] = -5.070546;
  EXPECT_EQ(
      message_of([&] { require_same_origin("a.json", earlier, now); }),
      "a.json: the energy that interactions are counted from was -5.070544 and "
      "-0.30000000000000004 Hartree, is -5.070546 and -0.30000000000000004: the engine or its "
      "parameters have changed, so make it again");
  now = earlier;
  now.origin["energy"] = "gfn1";
  EXPECT_EQ(message_of([&] { require_same_origin("a.json", earlier, now); }),
            "a.json: is of another scan: energy was gfn2, is gfn1");
}

// Origin.

TEST(Origin, TellsHowEnergiesAreComputed) {
  EnergyOptions options = one_over_r();
  options.charges = {0, -2};
  options.command.run += " # {charge}";
  options.command.unit = EnergyUnit::kj_mol;
  std::map<std::string, std::string> origin;
  add_to_origin(origin, EnergyModel(two_argons(), options), std::nullopt);
  EXPECT_EQ(origin, (std::map<std::string, std::string>{{"energy", "command"},
                                                        {"engine", "command"},
                                                        {"charges", "0,-2"},
                                                        {"unpaired", "0,0"},
                                                        {"run", options.command.run},
                                                        {"read", "energy (\\S+)"},
                                                        {"read-unit", "kj/mol"}}));
  add_to_origin(origin, EnergyModel(two_argons(), options), -1.5);
  EXPECT_EQ(origin.at("keep-below"), "-1.5");
}

// Text.

TEST(TextOfEnergies, HasThemInRowsFramesAndTotals) {
  const Pair pair = two_argons();
  const PairPlacer placer(pair);
  const EnergyModel model(pair, one_over_r());
  const ScanPlan plan = plan_of({{"r", "1,2.7,4,5"},
                                 {"theta", "90"},
                                 {"phi", "0"},
                                 {"alpha", "0"},
                                 {"beta", "0"},
                                 {"gamma", "0"}});
  ScanOutput output{.writing = Writing::frames, .energy = &model};
  TextChunk chunk;
  TextMaker(placer, plan, output, nullptr).make(0, 4, chunk);
  const auto lines = [](const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
      ++count;
    return count;
  };
  for (const char* end : {",,clash\n", ",,scf_fail\n", ",156.877369,ok\n", ",125.501895,ok\n"})
    EXPECT_EQ(lines(chunk.table, end), 1U) << end;
  for (const char* end :
       {"2 status=clash ", "2 status=scf_fail ", " e_int_kcal_mol=156.877369 status=ok "})
    EXPECT_EQ(lines(chunk.frames, end), 1U) << end;
  EXPECT_EQ(chunk.totals.written, 4);
  EXPECT_EQ(chunk.totals.energies->of(EnergyStatus::ok), 2);
  EXPECT_EQ(chunk.totals.energies->of(EnergyStatus::clash), 1);
  EXPECT_EQ(chunk.totals.energies->of(EnergyStatus::scf_fail), 1);
  EXPECT_EQ(chunk.totals.energies->lowest, 125.501895);
  EXPECT_EQ(chunk.totals.energies->lowest_index, 4);

  output.keep_below = 130.0;
  TextMaker(placer, plan, output, nullptr).make(0, 4, chunk);
  EXPECT_EQ(chunk.totals.written, 1);
  EXPECT_EQ(lines(chunk.table, "\n"), 1U);
  EXPECT_EQ(chunk.totals.energies->of(EnergyStatus::ok), 2) << "computed, but not written";
  EXPECT_EQ(chunk.totals.energies->lowest_index, 4);

  const ScanOutput counting{.energy = &model};
  TextMaker(placer, plan, counting, nullptr).make(0, 4, chunk);
  EXPECT_EQ(chunk.table, "");
  EXPECT_EQ(chunk.totals.energies->lowest, 125.501895);
  EXPECT_EQ(chunk.totals.energies->of(EnergyStatus::clash), 1);
}

}  // namespace
}  // namespace dravo::test
