#include "molecules/pose_range.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "support/not_finite.hpp"

namespace dravo::test {
namespace {

constexpr PoseDegrees kInRange{3.5, 90.0, 45.0, 10.0, 20.0, 30.0};

TEST(ParameterNames, StandInTheOrderOfTheInputFile) {
  const std::array<std::string, 6> names{"r", "theta", "phi", "alpha", "beta", "gamma"};
  const std::array<double, 6> values{3.5, 90.0, 45.0, 10.0, 20.0, 30.0};
  for (std::size_t k = 0; k < names.size(); ++k) {
    EXPECT_EQ(kPoseParameters[k].name, names[k]);
    EXPECT_EQ(kInRange.*kPoseParameters[k].value, values[k]);
  }
}

struct Complaint {
  const char* name;
  double PoseDegrees::*value;
  double degrees;
  const char* sentence;  ///< empty for a value in range
};

void PrintTo(const Complaint& complaint, std::ostream* out) {
  *out << complaint.name << " = " << complaint.degrees;
}

constexpr auto kNegative = "0 <= r <= 9999.9; a distance is not negative";
constexpr auto kTooLong = "0 <= r <= 9999.9; the names of files have no room for longer distances";
constexpr auto kNotFinite = "expected a finite number";

class ComplaintAbout : public ::testing::TestWithParam<Complaint> {};

TEST_P(ComplaintAbout, NamesTheParameterAndItsRange) {
  const auto& [name, value, degrees, sentence] = GetParam();
  PoseDegrees parameters = kInRange;
  parameters.*value = degrees;
  const auto complaint = complaint_about(parameters);
  ASSERT_EQ(complaint.has_value(), *sentence != '\0');
  if (!complaint) return;
  EXPECT_STREQ(complaint->name().c_str(), name);
  EXPECT_EQ(complaint->value(), degrees);
  EXPECT_TRUE(degrees < complaint->lowest() || degrees > complaint->highest());
  EXPECT_STREQ(complaint->what(), sentence);
}

using P = PoseDegrees;

// The longest distance is 9999.9 in single precision, 9999.900390625.
INSTANTIATE_TEST_SUITE_P(
    Distances, ComplaintAbout,
    ::testing::Values(Complaint{"r", &P::r, 0.0, ""}, Complaint{"r", &P::r, -0.0, ""},
                      Complaint{"r", &P::r, 9999.900390625, ""},
                      Complaint{"r", &P::r, std::nextafter(9999.900390625, kInfinity), kTooLong},
                      Complaint{"r", &P::r, kInfinity, kNotFinite},
                      Complaint{"r", &P::r, -5e-324, kNegative}));

// The other angles are 45 (phi), 10 (alpha) and 30 (gamma).
INSTANTIATE_TEST_SUITE_P(
    PolarAngles, ComplaintAbout,
    ::testing::Values(
        Complaint{"theta", &P::theta, 0.0, ""}, Complaint{"theta", &P::theta, 180.0, ""},
        Complaint{"theta", &P::theta, 190.0,
                  "0 <= theta <= 180; theta 170 with phi 225 is the same direction"},
        Complaint{"theta", &P::theta, -20.0,
                  "0 <= theta <= 180; theta 20 with phi 225 is the same direction"},
        Complaint{"theta", &P::theta, 180.1,
                  "0 <= theta <= 180; theta 179.9 with phi 225 is the same direction"},
        Complaint{"theta", &P::theta, 370.0, "0 <= theta <= 180; theta 10 is the same direction"},
        Complaint{"beta", &P::beta, 0.0, ""}, Complaint{"beta", &P::beta, 180.0, ""},
        Complaint{"beta", &P::beta, -30.0,
                  "0 <= beta <= 180; beta 30 with alpha 190 and gamma 210 is the same orientation"},
        Complaint{"beta", &P::beta, 550.0,
                  "0 <= beta <= 180; beta 170 with alpha 190 and gamma 210 is the same "
                  "orientation"}));

INSTANTIATE_TEST_SUITE_P(Azimuths, ComplaintAbout,
                         ::testing::Values(Complaint{"phi", &P::phi, -30.0, ""},
                                           Complaint{"phi", &P::phi, -1e-20, ""},
                                           Complaint{"phi", &P::phi, 1e9, ""},
                                           Complaint{"alpha", &P::alpha, 361.0, ""},
                                           Complaint{"gamma", &P::gamma, -361.0, ""},
                                           Complaint{"phi", &P::phi, -kInfinity, kNotFinite},
                                           Complaint{"gamma", &P::gamma, kInfinity, kNotFinite}));

TEST(ComplaintAbout, WhatIsNoNumberIsMadeOfEveryParameter) {
  for (const PoseParameter& parameter : kPoseParameters) {
    PoseDegrees pose = kInRange;
    pose.*parameter.value = std::nan("");
    const auto complaint = complaint_about(pose);
    ASSERT_TRUE(complaint.has_value()) << parameter.name;
    EXPECT_EQ(complaint->name(), parameter.name);
    EXPECT_STREQ(complaint->what(), kNotFinite);
  }
}

TEST(ComplaintAbout, AValueAloneNamesTheOthersInGeneral) {
  const auto of = [](std::size_t k, double value) {
    const auto complaint = complaint_about(kPoseParameters[k], value);
    return complaint ? std::string(complaint->what()) : "";
  };
  EXPECT_EQ(of(1, 190.0), "0 <= theta <= 180; theta 170 with phi + 180 is the same direction");
  EXPECT_EQ(of(4, -30.0),
            "0 <= beta <= 180; beta 30 with alpha + 180 and gamma + 180 is the same orientation");
  EXPECT_EQ(of(2, -30.0), "");
}

TEST(ComplaintAbout, SeveralFaultsIsAboutTheFirst) {
  PoseDegrees parameters{-1.0, -1.0, -1.0, -1.0, -1.0, -1.0};
  for (const char* name : {"r", "theta", "beta"}) {
    const auto complaint = complaint_about(parameters);
    ASSERT_TRUE(complaint.has_value());
    EXPECT_STREQ(complaint->name().c_str(), name);
    parameters.*kPoseParameters[pose_parameter(name)].value = 1.0;
  }
  EXPECT_FALSE(complaint_about(parameters));
}

TEST(FoldedAzimuths, LieBetweenZeroAndAFullTurn) {
  const PoseDegrees folded = with_folded_azimuths({5.0, 190.0, -30.0, 390.0, -40.0, -720.0});
  EXPECT_EQ(folded.r, 5.0);
  EXPECT_EQ(folded.theta, 190.0) << "not periodic";
  EXPECT_EQ(folded.phi, 330.0);
  EXPECT_EQ(folded.alpha, 30.0);
  EXPECT_EQ(folded.beta, -40.0) << "not periodic";
  EXPECT_EQ(folded.gamma, 0.0);
}

TEST(FoldedAzimuths, AreAsGivenWithinATurn) {
  const PoseDegrees folded = with_folded_azimuths({5.0, 9.0, 360.0, 0.1, 0.0, -1e-20});
  EXPECT_EQ(folded.phi, 360.0);
  EXPECT_EQ(folded.alpha, 0.1);
  EXPECT_EQ(folded.gamma, 0.0) << "below 360, where -1e-20 + 360 is 360";
}

}  // namespace
}  // namespace dravo::test
