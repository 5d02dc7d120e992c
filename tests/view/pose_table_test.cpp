#include "view/pose_table.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/message_of.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

const std::string kHeading = "index,r,theta,phi,alpha,beta,gamma,shortest,status\n";

class Tables : public TemporaryFolder {
 public:
  [[nodiscard]] PoseTable read(const std::string& text, std::int64_t most = 100) const {
    write("scan.csv", text);
    return read_pose_table(file(), most);
  }
  [[nodiscard]] std::string file() const { return (path() / "scan.csv").string(); }
};

std::vector<std::string> names_of(const std::vector<ViewColumn>& columns) {
  std::vector<std::string> names;
  for (const ViewColumn& column : columns) names.push_back(column.name);
  return names;
}

TEST(PoseTable, HasNumbersWordsAndEmptyCells) {
  const PoseTable table =
      Tables().read(kHeading + "1,4.5,0,10,0,0,1e-3,,ok\n2,5,0,20,0,0,0,2.25,\n");
  EXPECT_EQ(table.rows, 2);
  EXPECT_EQ(table.columns[1].numbers, (std::vector<double>{4.5, 5.0}));
  EXPECT_EQ(table.columns[6].numbers, (std::vector<double>{0.001, 0.0}));
  EXPECT_TRUE(std::isnan(table.columns[7].numbers[0]));
  EXPECT_EQ(table.columns[7].numbers[1], 2.25);
  EXPECT_EQ(table.columns[8].words, (std::vector<std::string>{"ok", ""}));
  EXPECT_EQ(table.columns[1].unit, "Angstrom");
  EXPECT_EQ(table.columns[2].unit, "degrees");
  EXPECT_EQ(table.columns[0].unit, "");
}

TEST(PoseTable, BecomesWordsWhereAWordComesLate) {
  const PoseTable table = Tables().read(
      "r,theta,phi,alpha,beta,gamma,shortest,note\n4,0,0,0,0,0,1,\n4,0,0,0,0,0,1,2.5\n"
      "4,0,0,0,0,0,1,so\n");
  EXPECT_EQ(table.columns[7].words, (std::vector<std::string>{"", "2.5", "so"}));
}

TEST(PoseTable, OfManyRowsHasEvenlyChosenOnesWithTheBest) {
  std::string text = kHeading;
  for (int k = 0; k < 1000; ++k)
    text += std::to_string(k + 1) + ",4,0,0,0,0,0," + (k == 777 ? "0.5" : "2") + ",ok\n";
  const PoseTable table = Tables().read(text, 10);
  EXPECT_EQ(table.rows, 1000);
  EXPECT_EQ(table.columns[0].numbers,
            (std::vector<double>{1, 101, 201, 301, 401, 501, 601, 778, 801, 901}));
  EXPECT_EQ(table.samples,
            (std::vector<std::string>{"1,4,0,0,0,0,0,2,ok", "778,4,0,0,0,0,0,0.5,ok"}));
}

TEST(PoseTable, ThatCannotBeReadIsRefused) {
  const Tables folder;
  const auto refusal = [&](const std::string& text) {
    const std::string message = message_of([&] { (void)folder.read(text); });
    EXPECT_TRUE(message.starts_with(folder.file())) << message;
    return message.substr(folder.file().size());
  };
  EXPECT_EQ(refusal(kHeading), ": holds no pose that could be shown");
  EXPECT_EQ(refusal(kHeading + "1,4,0,0,0,0,0,2,ok\n2,4,0,0,0\n"),
            ":3: expected 9 values as in the heading, found 5");
  EXPECT_EQ(refusal(kHeading + "1,4,0,north,0,0,0,2,ok\n"),
            ":2: expected a number for phi, found \"north\"");
  EXPECT_EQ(refusal(kHeading + "1,4,0,,0,0,0,2,ok\n"), ":2: expected a number for phi, found \"\"");
  EXPECT_EQ(refusal(kHeading + "1,inf,0,0,0,0,0,2,ok\n"),
            ":2: expected a number for r, found \"inf\"");
}

/// The columns that are left and those that place the poses, of two rows.
std::vector<std::string> taken_up(const std::string& rows) {
  ViewPoses poses{};
  poses.columns = Tables()
                      .read(
                          "r,theta,phi,alpha,beta,gamma,r_applied,theta_applied,phi_applied,"
                          "alpha_applied,beta_applied,gamma_applied,shortest\n" +
                          rows)
                      .columns;
  take_up_applied(poses);
  std::vector<std::string> names(poses.parameters.begin(), poses.parameters.end());
  for (const std::string& name : names_of(poses.columns))
    if (name.ends_with("_applied")) names.push_back("+" + name);
  return names;
}

TEST(WhatWasApplied, IsLeftOutWhereItIsTheSame) {
  EXPECT_EQ(
      taken_up("4,90,360,-30,90,5,4.00000000,90.000000,0.000000,330.000000,90.000000,5.000000,2\n"
               "4,90,1.23456789,0,90,5,4.00000000,90.000000,1.234568,360.000000,90.000000,"
               "5.000000,2\n"),
      (std::vector<std::string>{"r", "theta", "phi", "alpha", "beta", "gamma"}));
}

TEST(WhatWasApplied, PlacesThePosesWhereItDiffers) {
  EXPECT_EQ(taken_up("4,90,10,0,90,5,4.00000000,90.000000,10.000000,0.000000,90.000000,5.000000,2\n"
                     "4,0,10,0,90,5,4.00000000,0.049000,10.000000,0.090000,90.000000,5.000000,2\n"),
            (std::vector<std::string>{"r", "theta_applied", "phi", "alpha_applied", "beta", "gamma",
                                      "+theta_applied", "+alpha_applied"}));
}

TEST(WhatWasApplied, IsLeftOutWhereItIsNoNumber) {
  EXPECT_EQ(taken_up("0,0,10,0,90,5,0.00000000,nan,10.000000,0.000000,90.000000,5.000000,2\n"),
            (std::vector<std::string>{"r", "theta", "phi", "alpha", "beta", "gamma"}));
}

}  // namespace
}  // namespace dravo::test
