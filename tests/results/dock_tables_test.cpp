#include "results/dock_tables.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dravo/identify.hpp"
#include "results/scan_record.hpp"
#include "support/message_of.hpp"
#include "support/scan_results.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

const double kNone = std::numeric_limits<double>::quiet_NaN();

DockStart start(std::int64_t number, DockEnd end, double energy) {
  return {number, end, energy, {2.83287009, 155.76339605, 1.0 / 3.0, 5e-324, 180.0, 0.1 + 0.2}, 41};
}

void expect_same(const DockStart& a, const DockStart& b) {
  EXPECT_EQ(a.number, b.number);
  EXPECT_EQ(a.end, b.end);
  EXPECT_TRUE(a.energy == b.energy || (std::isnan(a.energy) && std::isnan(b.energy)));
  for (const PoseParameter& parameter : kPoseParameters)
    EXPECT_EQ(a.pose.*parameter.value, b.pose.*parameter.value) << parameter.name;
  EXPECT_EQ(a.evaluations, b.evaluations);
}

TEST(TableOfStarts, IsReadBackWithEveryBit) {
  const auto columns = columns_of_starts({});
  const std::vector<DockStart> starts{
      start(1, DockEnd::minimum, -6.1787287288287), start(2, DockEnd::drifted_apart, -0.0),
      start(3, DockEnd::not_converged, 1.0 / 7.0), start(500, DockEnd::failed, kNone)};
  std::string table = columns.heading();
  for (const DockStart& each : starts) columns.append_row(table, each);
  const TemporaryFolder folder;
  folder.write("starts.csv", table);
  const auto read = read_table((folder.path() / "starts.csv").string(), columns);
  ASSERT_EQ(read.size(), starts.size());
  for (std::size_t k = 0; k < read.size(); ++k) expect_same(read[k], starts[k]);
}

TEST(TableOfStarts, NamesTheMethodAndTheEnds) {
  DockOptions options;
  options.search = EnergyMethod::gfn1;
  const auto columns = columns_of_starts(options);
  EXPECT_EQ(columns.heading(),
            "start,end,e_int_gfn1_kcal_mol,r,theta,phi,alpha,beta,gamma,evaluations\n");
  std::string row;
  columns.append_row(row, {7, DockEnd::failed, kNone, {3.5, 90.0, 0.0, 1.25, 2.0, 3.0}, 0});
  EXPECT_EQ(row, "7,failed,,3.5,90,0,1.25,2,3,0\n");
}

TEST(Row, ThatIsNoneIsToldWithItsLine) {
  const auto columns = columns_of_starts({});
  const std::string whole = "2,minimum,-1,3,90,0,0,0,0,9";
  for (const std::string& spoilt :
       {std::string("2,minimum,-1,3,90,0,0,0,0"), whole + ",", whole + ",1",
        std::string("2,lost,-1,3,90,0,0,0,0,9"), std::string("two,minimum,-1,3,90,0,0,0,0,9"),
        std::string("2,minimum,-1 ,3,90,0,0,0,0,9"), std::string("2,minimum,-1,3,90,0,0,0,0,9.5"),
        std::string()}) {
    EXPECT_FALSE(columns.read_row(spoilt).has_value()) << spoilt;
    const TemporaryFolder folder;
    folder.write("starts.csv", columns.heading() + whole + "\n" + spoilt + "\n");
    const std::string name = (folder.path() / "starts.csv").string();
    EXPECT_EQ(message_of([&] { (void)read_table(name, columns); }),
              name + ":3: expected a row of the docking, found \"" + spoilt + "\"");
  }
  EXPECT_TRUE(columns.read_row(whole).has_value());
}

TEST(Table, OfOtherColumnsIsRefused) {
  const TemporaryFolder folder;
  folder.write("dock.csv", "rank,r\n1,3\n");
  const std::string name = (folder.path() / "dock.csv").string();
  EXPECT_EQ(message_of([&] { (void)read_table(name, columns_of_minima({})); }),
            name + ":1: expected the columns of a docking by this program, found \"rank,r\"");
}

/// Two molecules of hydrogen fluoride in a row, F-H...F-H, with 1.8 Angstrom between H and F.
TEST(TextsOfMinima, SurveyThePairAtItsPose) {
  const Pair pair(2, Molecule({std::string("F"), "H", "F", "H"},
                              {{0, 0, 0}, {0, 0, 0.92}, {0, 0, 2.72}, {0, 0, 3.64}}));
  const Placer placer(pair, {.placing = Placing::exact});
  const DockMinimum in_a_row{identify(pair).parameters, -4.5, kNone, 12, true};
  DockMinimum apart = in_a_row;
  apart.pose.r = 5.0;
  apart.refined = false;
  const DockTexts texts = texts_of(placer, {}, std::vector{in_a_row, apart});
  const std::vector<Row> rows = rows_of(texts.table);
  const std::vector<Frame> frames = frames_of(texts.frames);
  ASSERT_EQ(rows.size(), 2U);
  ASSERT_EQ(frames.size(), 2U);
  EXPECT_EQ(rows[0].at("e_int_gfn2_kcal_mol"), "-4.500000");
  EXPECT_EQ(rows[0].at("e_int_gfnff_kcal_mol"), "");
  EXPECT_EQ(frames[0].values.count("e_int_gfnff_kcal_mol"), 0U) << "no value, no key";
  EXPECT_EQ(rows[0].at("shortest"), "1.80000000");
  EXPECT_EQ(rows[1].at("shortest"), "4.08000000");
  const std::vector<std::array<std::string, 4>> expected{{"1", "yes", "1", "1"},
                                                         {"2", "no", "0", "0"}};
  for (std::size_t k = 0; k < 2; ++k)
    EXPECT_EQ((std::array{rows[k].at("rank"), rows[k].at("refined"), rows[k].at("contacts"),
                          rows[k].at("hydrogen_bonds")}),
              expected[k]);
  EXPECT_EQ(texts.totals.written, 2);
  EXPECT_EQ(texts.totals.with_contacts, 1);
  EXPECT_EQ(texts.totals.shortest_index, 1);
}

// The record of a docking.

ScanRecord docking() {
  ScanRecord record;
  record.origin = {{"search", "gfnff"}, {"version", "1.2"}};
  record.poses = 500;
  record.totals = {180, 0, 3, 1, 1.75, 1};
  record.files = {{ResultFile::frames, {10, 1}}, {ResultFile::table, {20, 2}}};
  record.docking = DockSummary{"nothing new", 7, {171, 5, 3, 1}};
  record.reference_energies = {{"gfnff", {-0.1}}, {"gfn2", {-5.0, -1.0 / 3.0}}};
  return record;
}

TEST(RecordOfADocking, IsReadBackFromItsText) {
  const ScanRecord read = parse_record("a.json", text_of(docking()));
  EXPECT_TRUE(read.is_docking());
  ASSERT_TRUE(read.docking);
  EXPECT_EQ(read.docking->ended, "nothing new");
  EXPECT_EQ(read.docking->minima, 7);
  EXPECT_EQ(read.docking->starts, docking().docking->starts);
  EXPECT_EQ(read.docking->starts_of(DockEnd::not_converged), 3);
  EXPECT_EQ(read.reference_energies, docking().reference_energies);
  EXPECT_EQ(read.files.size(), 2U);
}

TEST(RecordOfADocking, SaysWhetherItDependsOnTheMachine) {
  ScanRecord record = docking();
  EXPECT_NE(text_of(record).find("\"depends_on_machine\":false"), std::string::npos);
  record.docking->ended = kEndedByTime;
  EXPECT_NE(text_of(record).find("\"depends_on_machine\":true"), std::string::npos);
}

TEST(RecordOfADocking, ThatIsUnfinishedOrAPartTellsOfItsStarts) {
  ScanRecord record = docking();
  record.docking.reset();
  record.shard = {2, 3};
  record.files = {{ResultFile::starts, {1234, 99}}};
  const ScanRecord read = parse_record("a.json", text_of(record));
  EXPECT_FALSE(read.docking);
  ASSERT_EQ(read.files.size(), 1U);
  EXPECT_EQ(read.files.at(ResultFile::starts).bytes, 1234);
  EXPECT_EQ(read.files.at(ResultFile::starts).checksum, 99U);
}

TEST(RecordOfADocking, IsNotThatOfAScan) {
  ScanRecord scan = docking();
  scan.origin.erase("search");
  EXPECT_EQ(message_of([&] { require_same_origin("a.json", scan, docking()); }),
            "a.json: is of a scan, not of a docking; choose another --output");
  EXPECT_EQ(message_of([&] { require_same_origin("a.json", docking(), scan); }),
            "a.json: is of a docking, not of a scan; choose another --output");
  ScanRecord other = docking();
  other.origin["search"] = "gfn1";
  EXPECT_EQ(message_of([&] { require_same_origin("a.json", docking(), other); }),
            "a.json: is of another docking: search was gfnff, is gfn1");
}

}  // namespace
}  // namespace dravo::test
