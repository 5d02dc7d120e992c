/// The description of a plan: the same for the same poses, another one for others.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "scan/plans.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

TEST(PlanDescription, IsWhatDecidesAboutThePoses) {
  using Description = std::map<std::string, std::string>;
  EXPECT_EQ(plan_of(one_pose({{"r", " contact + 1 "}, {"phi", "0:90:30"}})).description(),
            (Description{{"r", "contact + 1"},
                         {"theta", "90"},
                         {"phi", "0:90:30"},
                         {"alpha", "10"},
                         {"beta", "20"},
                         {"gamma", "30"},
                         {"contacts", "keep"},
                         {"files", "false"}}));
  EXPECT_EQ(
      plan_of({{"r", "3"}, {"random", "5"}, {"contacts", "drop"}}).description(),
      (Description{
          {"r", "3"}, {"random", "5"}, {"seed", "0"}, {"contacts", "drop"}, {"files", "false"}}));
  EXPECT_EQ(plan_of({{"r", "3"}, {"random", "5"}, {"contact-distance", "vdw * .80"}}).description(),
            (Description{{"r", "3"},
                         {"random", "5"},
                         {"seed", "0"},
                         {"contacts", "keep"},
                         {"contact-distance", "vdw*0.8"},
                         {"files", "false"}}));
}

std::string described_distances(const std::string& r) {
  return plan_of(one_pose({{"r", r}})).description().at("r");
}

/// As the values of a file of a plan.
std::string described_distances_of_file(const std::string& r) {
  const TemporaryFolder folder;
  folder.write("plan.toml", "r = " + r + "\nrandom = 1\n");
  return ScanPlan(read_plan_keys((folder.path() / "plan.toml").string())).description().at("r");
}

TEST(PlanDescription, IsTheSameForTheSameValuesHoweverWritten) {
  const std::map<std::string, std::vector<std::string>> ways{
      {"6", {"6.0", " 6", "+6", "60e-1", "6d0", "6:6:1", "6:6.5:1"}},
      {"5, 6", {"5,6", "5.0,6.00", "5 ,6:6:2"}},
      {"0:0.3:0.1", {"0:0.3:0.1", "0.0:.3:0.10", "0:0.39:0.1"}},
      {"3:1:-1", {"3:1:-1", "3:0.5:-1.0"}},
      {"contact + 1", {"contact+1", "contact + 1.0", " contact\t+ 1 "}},
      {"contact + 1, 2", {"contact + 1,2"}}};
  for (const auto& [description, texts] : ways)
    for (const std::string& text : texts) EXPECT_EQ(described_distances(text), description) << text;
  EXPECT_EQ(described_distances_of_file("[5, 6]"), "5, 6");
  EXPECT_EQ(described_distances_of_file("[\"5.0,6\"]"), "5, 6");
  EXPECT_EQ(described_distances_of_file("6.0"), "6");
  EXPECT_EQ(described_distances_of_file("[\"contact + 1\", 2]"), "contact + 1, 2");
}

TEST(PlanDescription, TellsOtherValuesApart) {
  const std::vector<std::string> texts{
      "5",       "5.000000001", "5,6",           "6,5",
      "5,6,6",   "0:1:0.1",     "0:1.1:0.1",     "0:1:0.05",
      "1:0:-.1", "contact + 5", "contact + 5,6", "0:1e0:1e-1"};  // has 0.30000000000000004
  std::set<std::string> different;
  for (const std::string& text : texts) different.insert(described_distances(text));
  EXPECT_EQ(different.size(), texts.size());
}

TEST(PlanDescription, TellsLongListsApart) {
  std::string list = "1";
  for (int i = 0; i < 150; ++i) list += ",1";
  const auto description = [&](const std::string& phi) {
    return plan_of(one_pose({{"phi", phi}})).description().at("phi");
  };
  EXPECT_EQ(description(list), description(list));
  EXPECT_LT(description(list).size(), 60U);
  EXPECT_NE(description(list), description("2" + list.substr(1)));
  EXPECT_NE(description(list), description(list.substr(0, list.size() - 1) + "3"));
}

TEST(PlanDescription, TellsZippedListsApart) {
  const TemporaryFolder folder;
  folder.write("a.csv", "1,2,3,4,5,6\n");
  folder.write("same.csv", "1.0,2.0,3,4,5,6");
  folder.write("b.csv", "1,2,3,4,5,7\n");
  const auto description = [&](const char* name) {
    return plan_of({{"zip", (folder.path() / name).string()}}).description();
  };
  EXPECT_EQ(description("a.csv"), description("same.csv"));
  EXPECT_NE(description("a.csv"), description("b.csv"));
}

}  // namespace
}  // namespace dravo::test
