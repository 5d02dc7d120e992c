#include "results/frame_table.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace dravo::test {
namespace {

IdentifiedFrame frame_at(const PoseDegrees& pose, const std::string& remark = "") {
  IdentifiedFrame frame;
  frame.number = 17;
  frame.parameters = pose;
  frame.survey.shortest = 1.75;
  frame.survey.contacts = 2;
  frame.remark = remark;
  return frame;
}

std::string row_of(const IdentifiedFrame& frame) {
  std::string row;
  FrameTable(false).append_row(row, frame);
  return row;
}

TEST(FrameTable, HasARowForEachFrame) {
  EXPECT_EQ(FrameTable::heading(), "frame,r,theta,phi,alpha,beta,gamma,shortest,contacts,remark\n");
  EXPECT_EQ(row_of(frame_at({4.5, 90.0, 0.25, 359.5, 180.0, 12.0})),
            "17,4.50000000,90.000000,0.250000,359.500000,180.000000,12.000000,1.75000000,2,\n");
}

TEST(FrameTable, HasNoAngleOf360) {
  EXPECT_EQ(row_of(frame_at({4.5, 90.0, 359.9999996, 359.9999994, 180.0, 360.0 - 1e-12})),
            "17,4.50000000,90.000000,0.000000,359.999999,180.000000,0.000000,1.75000000,2,\n");
}

TEST(FrameTable, QuotesRemarks) {
  EXPECT_TRUE(row_of(frame_at({}, "nearly symmetric, by 0.01"))
                  .ends_with(",2,\"nearly symmetric, by 0.01\"\n"));
  EXPECT_TRUE(row_of(frame_at({}, "a \"b\"")).ends_with(",\"a \"\"b\"\"\"\n"));
}

/// Phi, alpha and gamma of some rows, in turn.
std::vector<double> unwrapped(double PoseDegrees::*angle, const std::vector<double>& given) {
  FrameTable table(true);
  std::vector<double> found;
  for (const double degrees : given) {
    PoseDegrees pose;
    pose.*angle = degrees;
    std::string row;
    table.append_row(row, frame_at(pose));
    std::vector<std::string> cells(1);
    for (const char c : row)
      if (c == ',')
        cells.emplace_back();
      else
        cells.back() += c;
    for (std::size_t k = 0; k < kPoseParameters.size(); ++k)
      if (kPoseParameters[k].value == angle) found.push_back(std::stod(cells[k + 1]));
  }
  return found;
}

TEST(FrameTable, UnwrapsAnglesThatHaveNoBounds) {
  const std::vector<double> leaping{350, 10, 30, 350, 340, 170, 20, 200, 19};
  // 170 follows 340 by -170, not by 190; 200 follows 20 by 180 either way.
  const std::vector<double> steady{350, 370, 390, 350, 340, 170, 20};
  for (const auto angle : {&PoseDegrees::phi, &PoseDegrees::alpha, &PoseDegrees::gamma}) {
    const auto found = unwrapped(angle, leaping);
    ASSERT_EQ(found.size(), leaping.size());
    for (std::size_t k = 0; k < found.size(); ++k) {
      EXPECT_NEAR(std::remainder(found[k] - leaping[k], 360.0), 0.0, 1e-9) << "the same angle";
      if (k > 0) {
        EXPECT_LE(std::abs(found[k] - found[k - 1]), 180.0) << "no leap";
      }
    }
    EXPECT_EQ(std::vector<double>(found.begin(), found.begin() + 7), steady);
  }
}

TEST(FrameTable, LeavesBoundedAnglesAlone) {
  const std::vector<double> given{170, 10, 175};
  EXPECT_EQ(unwrapped(&PoseDegrees::theta, given), given);
  EXPECT_EQ(unwrapped(&PoseDegrees::beta, given), given);
}

}  // namespace
}  // namespace dravo::test
