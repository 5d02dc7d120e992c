#include "results/scan_size.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "results/text_chunk.hpp"
#include "scan/plans.hpp"
#include "support/shell_energies.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

struct Size {
  double bytes;
  const char* text;
};

TEST(SizeText, HasThreeDigitsAndAUnit) {
  for (const auto& [bytes, text] :
       {Size{0.0, "0 bytes"}, Size{999.0, "999 bytes"}, Size{1000.0, "1.00 kB"},
        Size{9994.0, "9.99 kB"}, Size{9996.0, "10.0 kB"}, Size{99960.0, "100 kB"},
        Size{999400.0, "999 kB"}, Size{999600.0, "1.00 MB"}, Size{103.4e9, "103 GB"},
        Size{1.2345e12, "1.23 TB"}, Size{5e15, "5.00 PB"}, Size{7.7e18, "7.70 EB"},
        Size{7.7e21, "7700 EB"}})
    EXPECT_EQ(size_text(bytes), text);
}

struct Decision {
  const char* what;
  ScanSize size;
  Writing writing;
  double free;
  const char* announcement;  ///< empty for none
  const char* refusal;       ///< behind the announcement's sentence; empty for none
};

constexpr double kGB = 1e9;

TEST(SizeOfAScan, IsToldAboveAGigabyteAndRefusedWhereThereIsLessRoom) {
  const std::string alone = "; --table writes the table alone";
  const std::vector<Decision> decisions{
      {"a gigabyte", {0.5 * kGB, 0.5 * kGB, false}, Writing::frames, 0.0, "", ""},
      {"more, with room",
       {100.0 * kGB, 3.0 * kGB, false},
       Writing::frames,
       103.0 * kGB,
       "the results will take about 103 GB, 100 GB of them frames; --table writes the table alone, "
       "--moving molecule 1 alone",
       ""},
      {"a byte too much",
       {100.0 * kGB, 3.0 * kGB, false},
       Writing::frames,
       103.0 * kGB - 1.0,
       "the results will take about 103 GB, 100 GB of them frames; --table writes the table alone, "
       "--moving molecule 1 alone",
       "s: the results will take about 103 GB, 100 GB of them frames, and 103 GB are free there; "
       "--table writes the table alone, --moving molecule 1 alone; --force starts the scan nevertheless"},
      {"a table",
       {0.0, 2.0 * kGB, true},
       Writing::table,
       1.0 * kGB,
       "the results will take at most 2.00 GB",
       "s: the results will take at most 2.00 GB, and 1.00 GB are free there; --force starts the scan "
       "nevertheless"},
      {"molecule 1",
       {2.0 * kGB, 1.0 * kGB, false},
       Writing::moving,
       std::numeric_limits<double>::infinity(),
       "the results will take about 3.00 GB, 2.00 GB of them frames; --table writes the table alone",
       ""},
      {"files",
       {2.0 * kGB, 1.0 * kGB, false},
       Writing::files,
       9.0 * kGB,
       "the results will take about 3.00 GB, 2.00 GB of them files of the poses; --table writes the "
       "table alone",
       ""}};
  for (const Decision& decision : decisions) {
    EXPECT_EQ(announcement_of(decision.size, decision.writing).value_or(""), decision.announcement)
        << decision.what;
    EXPECT_EQ(
        message_of([&] { require_room("s", decision.size, decision.writing, decision.free); }),
        decision.refusal)
        << decision.what;
  }
}

TextChunk made(const PairPlacer& placer, const ScanPlan& plan, Writing writing) {
  const ScanOutput output{writing, ""};
  TextChunk chunk;
  TextMaker(placer, plan, output, nullptr).make(0, plan.poses().size(), chunk);
  return chunk;
}

TEST(ExpectedSize, OfFewPosesIsThatOfTheirRowsAndFrames) {
  const PairPlacer placer(pair_of(sample("formamide-dimer")));
  const ScanPlan plan = plan_of({{"r", "contact + 0,1"}, {"random", "12"}});
  for (const Writing writing : {Writing::frames, Writing::moving, Writing::table}) {
    const TextChunk chunk = made(placer, plan, writing);
    const ScanSize size = expected_size(placer, plan, {writing}, 0, 24);
    EXPECT_EQ(size.frames, static_cast<double>(chunk.frames.size()));
    EXPECT_EQ(size.table, static_cast<double>(chunk.table.size()));
    EXPECT_FALSE(size.at_most);
  }
  EXPECT_EQ(expected_size(placer, plan, {Writing::frames}, 7, 7).total(), 0.0) << "nothing is left";
}

TEST(ExpectedSize, OfManyPosesIsNearThatOfTheirRowsAndFrames) {
  const PairPlacer placer(pair_of(sample("formamide-dimer")));
  const ScanPlan plan = plan_of(one_pose({{"r", "3:7:0.01"}, {"phi", "0:350:50"}}));
  const TextChunk chunk = made(placer, plan, Writing::frames);
  const ScanSize size = expected_size(placer, plan, {Writing::frames}, 0, plan.poses().size());
  const auto frames = static_cast<double>(chunk.frames.size());
  const auto table = static_cast<double>(chunk.table.size());
  EXPECT_NEAR(size.frames, frames, 0.01 * frames);
  EXPECT_NEAR(size.table, table, 0.03 * table);
  const ScanSize half =
      expected_size(placer, plan, {Writing::frames}, plan.poses().size() / 2, plan.poses().size());
  EXPECT_NEAR(half.frames, 0.5 * frames, 0.01 * frames);
}

TEST(ExpectedSize, IsABoundWhereSomePosesAreLeftOut) {
  const PairPlacer placer(pair_of(sample("formamide-dimer")));
  for (const char* rule : {"drop", "only"}) {
    const ScanPlan plan = plan_of({{"r", "3"}, {"random", "20"}, {"contacts", rule}});
    const ScanSize size = expected_size(placer, plan, {Writing::frames}, 0, 20);
    EXPECT_TRUE(size.at_most);
    const TextChunk all = made(placer, plan_of({{"r", "3"}, {"random", "20"}}), Writing::frames);
    EXPECT_EQ(size.frames, static_cast<double>(all.frames.size()));
  }
}

/// What an energy takes: ",-1.000000,ok" in a row, " e_int_kcal_mol=-1.000000 status=ok" in a
/// frame.
TEST(ExpectedSize, HasRoomForEnergiesAndComputesNone) {
  const TemporaryFolder folder;
  const std::string calls = (folder.path() / "calls").string();
  const Pair pair = two_argons();
  const PairPlacer placer(pair);
  const EnergyModel model(pair, one_over_r("echo call >> " + calls + "; "));
  const ScanPlan plan = plan_of({{"r", "4"}, {"random", "10"}});
  const ScanSize without = expected_size(placer, plan, {Writing::frames}, 0, 10);
  ScanOutput output{.writing = Writing::frames, .energy = &model};
  const ScanSize with = expected_size(placer, plan, output, 0, 10);
  EXPECT_EQ(with.table, without.table + 10.0 * 13.0);
  EXPECT_EQ(with.frames, without.frames + 10.0 * 35.0);
  EXPECT_FALSE(with.at_most);
  EXPECT_EQ(folder.read("calls"), "call\ncall\n") << "the atoms alone";
  output.keep_below = -1.0;
  EXPECT_TRUE(expected_size(placer, plan, output, 0, 10).at_most);
}

/// Frames and table of those kept, and their rows twice more while the scan runs.
TEST(ExpectedSize, OfTheBestPosesIsThatOfTheirShare) {
  const ScanSize all{1000.0, 200.0, true};
  const ScanSize some = size_of_best(all, 25, 100);
  EXPECT_EQ(some.frames, 250.0);
  EXPECT_EQ(some.table, 150.0);
  EXPECT_TRUE(some.at_most);
  const ScanSize every = size_of_best(all, 101, 100);
  EXPECT_EQ(every.frames, 1000.0);
  EXPECT_EQ(every.table, 600.0);
}

/// Two small files and their folder.
TEST(ExpectedSize, OfFilesIsInBlocks) {
  const PairPlacer placer(pair_of(sample("formamide-dimer")));
  const ScanPlan plan = plan_of({{"r", "6"}, {"random", "10"}, {"files", "true"}});
  EXPECT_EQ(expected_size(placer, plan, {Writing::files}, 0, 10).frames, 10.0 * 3.0 * 4096.0);
}

}  // namespace
}  // namespace dravo::test
