#include "results/energy_report.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "scan/plans.hpp"

namespace dravo::test {
namespace {

EnergyTotals lowest_at(const PoseDegrees& pose, std::optional<double> above_contact = {}) {
  return {{7, 0, 0, 0, 0}, -3.14159, 42, pose, above_contact.value_or(pose.r)};
}

/// Behind the one about statuses.
std::vector<std::string> told(const EnergyTotals& totals, const Options& plan) {
  const ScanPlan read = plan_of(plan);
  std::vector<std::string> sentences = sentences_about(totals, "gfn2", &read.poses());
  EXPECT_EQ(sentences.at(0), "energies by gfn2: 7 ok");
  sentences.erase(sentences.begin());
  return sentences;
}

using Sentences = std::vector<std::string>;

TEST(ReportOfEnergies, CountsTheStatusesThatThereAre) {
  EXPECT_EQ(sentences_about({{5, 0, 2, 0, 1}, 1.0, 3, {}, 0.0}, "gfnff").at(0),
            "energies by gfnff: 5 ok, 2 scf_fail, 1 engine_died");
  EXPECT_EQ(sentences_about({{0, 9, 0, 3, 0}}, "command"),
            Sentences{"energies by command: 0 ok, 9 clash, 3 nonphysical"})
      << "no lowest one";
}

TEST(ReportOfEnergies, TellsWhatVariesFirst) {
  EXPECT_EQ(told(lowest_at({4, 90, 45, 10, 20, 30}), one_pose({{"r", "3:5:0.5"}})),
            Sentences{"lowest energy -3.142 kcal/mol in pose 42: r 4 (theta 90, phi 45, alpha 10, "
                      "beta 20, gamma 30)"});
  EXPECT_EQ(told(lowest_at({5, 90, 45, 10, 60, 30}), one_pose({{"beta", "0:180:30"}})),
            Sentences{"lowest energy -3.142 kcal/mol in pose 42: beta 60 (r 5, theta 90, phi 45, "
                      "alpha 10, gamma 30)"});
  const Sentences all{
      "lowest energy -3.142 kcal/mol in pose 42: r 5, theta 90, phi 45, alpha 10, "
      "beta 20, gamma 30"};
  const EnergyTotals totals = lowest_at({5, 90, 45, 10, 20, 30});
  EXPECT_EQ(told(totals, one_pose()), all) << "nothing varies";
  EXPECT_EQ(told(totals, {{"r", "5,6,7"}, {"random", "9"}}), all) << "everything varies";
  EXPECT_EQ(sentences_about(totals, "gfn2").at(1), all[0]) << "nobody knows";
}

TEST(ReportOfEnergies, RoundsToSixDecimalsAndTellsTheContact) {
  EXPECT_EQ(told(lowest_at({4.123456789012, -1e-9, 0.1 + 0.2, 10, 20, 30}, 0.1 + 0.2),
                 {{"r", "contact + 0,1"}, {"random", "9"}}),
            Sentences{"lowest energy -3.142 kcal/mol in pose 42: r 4.123457 = contact + 0.3, theta "
                      "0, phi 0.3, alpha 10, beta 20, gamma 30"});
}

std::string end_of(const PoseDegrees& pose, const Options& changes,
                   std::optional<double> above_contact = {}) {
  const Sentences sentences = told(lowest_at(pose, above_contact), one_pose(changes));
  return sentences.size() > 1 ? sentences[1] : "";
}

TEST(ReportOfEnergies, TellsWhenTheLowestIsAtTheEndOfAnAxis) {
  const auto lies = [](const std::string& where) {
    return "the lowest is at the end of " + where + ": a lower one may lie beyond";
  };
  const PoseDegrees pose{5, 90, 45, 10, 20, 30};
  EXPECT_EQ(end_of(pose, {{"r", "4:6:0.5"}}), "");
  EXPECT_EQ(end_of(pose, {{"r", "3:5:0.5"}}), lies("r (3 to 5)"));
  EXPECT_EQ(end_of(pose, {{"r", "5:7:0.5"}}), lies("r (5 to 7)"));
  EXPECT_EQ(end_of(pose, {{"r", "5,4,6"}}), "") << "first, but not the smallest";
  EXPECT_EQ(end_of(pose, {{"r", "4,4.5,6,5"}}), "") << "last, but not the largest";
  EXPECT_EQ(end_of(pose, {{"r", "4,5"}}), "") << "of two values each is at an end";
  EXPECT_EQ(end_of(pose, {{"r", "contact + 0:2:0.5"}}, 0.0), lies("r (contact + 0 to 2)"));
  EXPECT_EQ(end_of(pose, {{"r", "contact + 0:2:0.5"}}, 0.5), "");
  EXPECT_EQ(end_of(pose, {{"theta", "90:120:10"}, {"gamma", "10:30:5"}}),
            lies("theta (90 to 120) and of gamma (10 to 30)"));
}

TEST(ReportOfEnergies, KnowsThatDirectionsEndAndTurnsDoNot) {
  EXPECT_EQ(end_of({5, 0, 45, 10, 180, 30}, {{"theta", "0:90:10"}, {"beta", "0:180:10"}}), "");
  EXPECT_EQ(end_of({5, 90, 0, 10, 20, 350}, {{"phi", "0:350:10"}, {"gamma", "0:350:10"}}), "");
  EXPECT_EQ(end_of({5, 90, -180, 10, 20, 30}, {{"phi", "-180:180:30"}}), "") << "twice the same";
  EXPECT_EQ(end_of({5, 90, 340, 10, 20, 30}, {{"phi", "0:340:10"}}),
            "the lowest is at the end of phi (0 to 340): a lower one may lie beyond");
}

}  // namespace
}  // namespace dravo::test
