/// What identified parameters alone do not tell.
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "dravo/identify.hpp"
#include "support/pairs.hpp"
#include "support/sample_input.hpp"

namespace dravo::test {
namespace {

struct RemarkCase {
  const char* name;
  PoseDegrees parameters;
  std::vector<std::string> remarks;
};

const std::vector<RemarkCase> kRemarkCases{
    {"ordinary values", {5, 60, 70, 80, 90, 100}, {}},
    {"beta 0",
     {5, 60, 70, 300, 0.25, 100},
     {"beta is near 0: only alpha + gamma = 40.00000000 has a meaning; to build this pair give "
      "alpha as 39.91000000",
      "qn-dravo uses 0.090 for gamma 100.00000000, so its pair differs by that"}},
    {"beta 0.75, where a build keeps gamma",
     {5, 60, 70, 300, 0.75, 100},
     {"beta is near 0: only alpha + gamma = 40.00000000 has a meaning"}},
    {"beta 0.75 and a gamma that a build moves a little",
     {5, 60, 70, 300, 0.75, 0.0625},
     {"beta is near 0: only alpha + gamma = 300.06250000 has a meaning",
      "qn-dravo uses 0.090 for gamma 0.06250000, so its pair differs by that"}},
    {"beta 1", {5, 60, 70, 300, 1, 100}, {}},
    {"beta 179.5",
     {5, 60, 70, 30, 179.5, 100},
     {"beta is near 180: only alpha - gamma = 290.00000000 has a meaning"}},
    {"beta 179", {5, 60, 70, 30, 179, 100}, {}},
    {"theta 0.75", {5, 0.75, 70, 80, 90, 100}, {"theta is near 0: phi has no meaning"}},
    {"theta 179.25", {5, 179.25, 70, 80, 90, 100}, {"theta is near 180: phi has no meaning"}},
    {"no distance",
     {0.05, 0.75, 70, 80, 90, 100},
     {"r is below 0.1 Angstrom: theta and phi have no meaning"}},
    {"nudged values",
     {5, 0.03125, 0, 0.0625, 179.9375, 0},
     {"beta is near 180: only alpha - gamma = 0.06250000 has a meaning",
      "theta is near 0: phi has no meaning",
      "qn-dravo uses 0.049 for theta 0.03125000, so its pair differs by that",
      "qn-dravo uses 0.049 for phi 0.00000000, so its pair differs by that",
      "qn-dravo uses 0.090 for alpha 0.06250000, so its pair differs by that",
      "qn-dravo uses 179.990 for beta 179.93750000, so its pair differs by that",
      "qn-dravo uses 0.090 for gamma 0.00000000, so its pair differs by that"}},
};

void PrintTo(const RemarkCase& remark, std::ostream* out) { *out << remark.name; }

class Remarks : public ::testing::TestWithParam<RemarkCase> {};

TEST_P(Remarks, TellWhatTheParametersDoNot) {
  Identification identification = identify(pair_of(sample("formamide-dimer")));
  identification.parameters = GetParam().parameters;
  EXPECT_EQ(remarks_on(identification), GetParam().remarks);
}

INSTANTIATE_TEST_SUITE_P(Cases, Remarks, ::testing::ValuesIn(kRemarkCases));

TEST(MissedAxes, AreRemarkedOnAboveAHundredthOfADegree) {
  EXPECT_EQ(remark_on_missed_axes(0.0625, "the poses"),
            "the search missed the axes by 0.062 degrees: the poses are that uncertain");
  EXPECT_EQ(remark_on_missed_axes(0.01, "the poses"), "");
}

}  // namespace
}  // namespace dravo::test
