#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "driver/user_parameters.hpp"

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

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr auto kAlphaRange = "ALPHA Euler angle out of range! Allowed: 0<ALPHA<360 degrees";
constexpr auto kGammaRange = "GAMMA Euler angle out of range! Allowed: 0<GAMMA<360 degrees";
constexpr auto kTooLong = "distance too long for the names of files. Allowed: r<9999.9";

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
                      Complaint{"r", &P::r, kInfinity, kTooLong},
                      Complaint{"r", &P::r, -5e-324, "negative r not allowed! Allowed: r>0"}));

// Upper ends look at whole degrees, halves rounded up.
INSTANTIATE_TEST_SUITE_P(
    Angles, ComplaintAbout,
    ::testing::Values(
        Complaint{"theta", &P::theta, 0.0, ""}, Complaint{"theta", &P::theta, 180.49, ""},
        Complaint{"theta", &P::theta, -1e-9, "polar angle out of range! Allowed: 0<theta<180"},
        Complaint{"theta", &P::theta, 180.5,
                  "polar angle out of range. Allowed: 0<theta<180 degrees"},
        Complaint{"phi", &P::phi, 0.0, ""}, Complaint{"phi", &P::phi, 360.49, ""},
        Complaint{"phi", &P::phi, -1e-9, "azimuth angle out of range! Allowed: 0<phi<360"},
        Complaint{"phi", &P::phi, 360.5, "azimuth angle out of range. Allowed: 0<phi<360 degrees"},
        Complaint{"alpha", &P::alpha, 0.0, ""}, Complaint{"alpha", &P::alpha, 360.49, ""},
        Complaint{"alpha", &P::alpha, -1e-9, kAlphaRange},
        Complaint{"alpha", &P::alpha, 360.5, kAlphaRange},  //
        Complaint{"beta", &P::beta, 0.0, ""}, Complaint{"beta", &P::beta, 180.49, ""},
        Complaint{"beta", &P::beta, -1e-9,
                  "BETA Euler angle out of range! Allowed: 0<BETA<180 degrees"},
        Complaint{"beta", &P::beta, 180.5,
                  "Beta Euler angle out of range! Allowed: 0<beta<180 degrees"},
        Complaint{"gamma", &P::gamma, 0.0, ""}, Complaint{"gamma", &P::gamma, 360.49, ""},
        Complaint{"gamma", &P::gamma, -1e-9, kGammaRange},
        Complaint{"gamma", &P::gamma, 360.5, kGammaRange}));

TEST(ComplaintAbout, SeveralFaultsIsAboutTheFirstOfARun) {
  // A run checks r, phi, theta, alpha, beta, gamma in this order, and the length of r last.
  const std::vector<const char*> order{"r", "phi", "theta", "alpha", "beta", "gamma"};
  PoseDegrees parameters{-1.0, -1.0, -1.0, -1.0, -1.0, -1.0};
  for (const char* name : order) {
    const auto complaint = complaint_about(parameters);
    ASSERT_TRUE(complaint.has_value());
    EXPECT_STREQ(complaint->name().c_str(), name);
    parameters.*kPoseParameters[pose_parameter(name)].value = std::string(name) == "r" ? 1e5 : 1.0;
  }
  ASSERT_TRUE(complaint_about(parameters).has_value());
  EXPECT_EQ(std::string(complaint_about(parameters)->what()), kTooLong);
}

}  // namespace
}  // namespace dravo::test
