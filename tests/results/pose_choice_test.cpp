#include "results/pose_choice.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dravo/error.hpp"
#include "support/message_of.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

class PoseChoices : public ::testing::Test {
 protected:
  PoseChoices() {
    folder_.write("scan.csv",
                  "index,shortest,contacts,e\n"
                  "1,2.5,0,-1\n"
                  "2,1.5,3,\n"
                  "4,3.5,0,-3\n"
                  "5,2.5,1,-2\n"
                  "9,0.5,2,\n");
    record_.poses = 9;
  }

  TemporaryFolder folder_;
  ScanRecord record_;

  [[nodiscard]] std::string name() const { return (folder_.path() / "scan").string(); }

  /// "1 4": the indices, in the order of the table.
  [[nodiscard]] std::string chosen(const PoseChoice& choice) const {
    SelectedRows rows = chosen_rows(name(), record_, choice);
    std::string indices, row;
    rows.rewind();
    while (rows.next(row)) indices += (indices.empty() ? "" : " ") + row.substr(0, row.find(','));
    return indices;
  }

  [[nodiscard]] std::string refusal(const PoseChoice& choice) const {
    return message_of<InvalidInput>([&] { (void)chosen(choice); });
  }
};

TEST_F(PoseChoices, AreIndicesConditionsAndTheBest) {
  EXPECT_EQ(chosen({}), "1 2 4 5 9");
  EXPECT_EQ(chosen({.poses = "2,4:9"}), "2 4 5 9");
  EXPECT_EQ(chosen({.where = "contacts == 0"}), "1 4");
  EXPECT_EQ(chosen({.poses = "2:9", .where = "shortest > 1"}), "2 4 5");
  EXPECT_EQ(chosen({.best = BestRule{2, "shortest", false}}), "2 9");
  EXPECT_EQ(chosen({.best = BestRule{1, "shortest", true}}), "4");
  EXPECT_EQ(chosen({.best = BestRule{1, "shortest", false}, .where = "contacts < 2"}), "1")
      << "of equal values the smaller index";
  EXPECT_EQ(chosen({.poses = "1:5", .best = BestRule{1, "e", true}, .where = "shortest <= 2.5"}),
            "1");
  EXPECT_EQ(chosen({.best = BestRule{100, "e", false}}), "1 4 5") << "the others have no value";
}

TEST_F(PoseChoices, AreRefusedWhereNoneIsLeft) {
  const std::string table = name() + ".csv";
  EXPECT_EQ(refusal({.where = "contacts == 7"}),
            "--where: no pose of " + table + " has contacts == 7");
  EXPECT_EQ(refusal({.poses = "2,9", .best = BestRule{1, "e", false}}),
            "--by: no pose of " + table + " has a value in e");
  EXPECT_EQ(refusal({.best = BestRule{1, "e", false}, .where = "contacts == 7"}),
            "--where: no pose of " + table + " has contacts == 7");
  EXPECT_EQ(refusal({.poses = "3"}),
            "--poses: " + table +
                " has no pose 3; the scan has 9 poses and may have left some of them out");
  EXPECT_NE(refusal({.best = BestRule{1, "no", false}}), "");
  EXPECT_NE(refusal({.where = "no == 1"}), "");
}

TEST(PoseChoiceWords, SayWhichPoses) {
  EXPECT_EQ(words_of({}), "all");
  EXPECT_EQ(words_of({.poses = "17,40:60"}), "17,40:60");
  EXPECT_EQ(words_of({.where = "contacts == 0"}), "all where contacts == 0");
  EXPECT_EQ(words_of({.best = BestRule{100, "clearance", true}}), "the best 100 by -clearance");
  EXPECT_EQ(words_of({.poses = "2:9", .where = "r < 3"}), "2:9 where r < 3");
  EXPECT_EQ(words_of({.best = BestRule{3, "e", false}, .where = "r < 3"}),
            "the best 3 by e where r < 3");
}

/// Which of them were chosen has to be told from what was written.
TEST(PoseChoiceWords, SayOfWhichPosesTheBestAre) {
  EXPECT_EQ(words_of({.poses = "1:50", .best = BestRule{3, "e", false}}),
            "the best 3 by e of 1:50");
}

}  // namespace
}  // namespace dravo::test
