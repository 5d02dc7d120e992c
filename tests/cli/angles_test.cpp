/// Angles that leave their ranges: periodic ones are folded, the others refused with the angles
/// that make the same pose.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include "cli/prepared.hpp"
#include "cli/scanned.hpp"

namespace dravo::test {
namespace {

/// Values of a column, as they stand in the table.
Lines column(const std::vector<Row>& rows, const std::string& name) {
  Lines values;
  for (const Row& row : rows) values.push_back(row.at(name));
  return values;
}

const Words kElsewhere{"--r", "6.5", "--theta", "84", "--alpha", "214", "--beta", "152"};
const Words kGamma{"--gamma", "306"};

struct Poses {
  std::vector<Row> rows;
  std::vector<Lines> atoms;  ///< of every frame
};

Poses poses_of(const TemporaryFolder& folder, const Words& words) {
  const Outcome outcome = run_scan(folder, words + Words{"--quiet", "--overwrite"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  if (outcome.status != 0) return {};
  Poses poses{rows_of(outcome.files.at("scan.csv")), {}};
  for (const Frame& frame : frames_of(outcome.files.at("scan.xyz")))
    poses.atoms.push_back(frame.atoms);
  return poses;
}

TEST(FoldedAngles, AreInTheTableAsAskedAndInThePlacementFolded) {
  for (const char* placing : {"--exact", "--as-qn-dravo"}) {
    const Dimer folder;
    const Words plan = kElsewhere + kGamma + Words{placing};
    const Poses asked = poses_of(folder, plan + Words{"--phi", "-30:30:15"});
    const Poses folded = poses_of(folder, plan + Words{"--phi", "330,345,0,15,30"});
    EXPECT_EQ(column(asked.rows, "phi"), (Lines{"-30", "-15", "0", "15", "30"}));
    EXPECT_EQ(asked.atoms, folded.atoms);
    for (const char* applied : {"phi_applied", "theta_applied", "gamma_applied", "shortest"})
      EXPECT_EQ(column(asked.rows, applied), column(folded.rows, applied)) << applied;
    EXPECT_EQ(std::round(number(asked.rows.at(0), "phi_applied")), 330.0);
  }
}

TEST(FoldedAngles, GoOnBeyondAFullTurn) {
  const Dimer folder;
  const Poses asked =
      poses_of(folder, kElsewhere + kGamma + Words{"--phi", "330:390:30", "--exact"});
  const Poses folded =
      poses_of(folder, kElsewhere + kGamma + Words{"--phi", "330,360,30", "--exact"});
  EXPECT_EQ(column(asked.rows, "phi"), (Lines{"330", "360", "390"}));
  EXPECT_EQ(column(asked.rows, "phi_applied"), (Lines{"330.000000", "360.000000", "30.000000"}));
  EXPECT_EQ(asked.atoms, folded.atoms);
}

TEST(FoldedAngles, MayStandInAListOfPosesAndInAPlan) {
  const Dimer folder;
  folder.write("poses.csv", "r,theta,phi,alpha,beta,gamma\n6.5,84,-349,574,152,-54\n");
  const Poses listed = poses_of(folder, {"--zip", "poses.csv"});
  const Poses plain = poses_of(folder, kOnePose);
  EXPECT_EQ(asked_in(listed.rows[0]), (PoseText{"6.5", "84", "-349", "574", "152", "-54"}));
  EXPECT_EQ(listed.atoms, plain.atoms);
  folder.write("plan.toml",
               "r = 6.5\ntheta = 84\nphi = \"-349:-349:1\"\nalpha = 574\nbeta = 152\n"
               "gamma = [-54]\n");
  EXPECT_EQ(poses_of(folder, {"--plan", "plan.toml"}).atoms, plain.atoms);
}

TEST(FoldedAngles, MayBeginWithAMinusOnTheCommandLine) {
  const Dimer folder;
  for (const Words& phi : {Words{"--phi", "-30"}, Words{"--phi=-30"}, Words{"--phi", "-3e1"},
                           Words{"--phi", "-.3e2"}}) {
    const Poses scan = poses_of(folder, kElsewhere + kGamma + phi);
    EXPECT_EQ(column(scan.rows, "phi"), Lines{"-30"}) << phi.back();
  }
  const Poses scan = poses_of(folder, {"--alpha", "-1e2", "--phi", "-.5:.5:.5"});
  EXPECT_EQ(column(scan.rows, "alpha"), (Lines{"-100", "-100", "-100"}));
  EXPECT_EQ(column(scan.rows, "phi"), (Lines{"-0.5", "0", "0.5"}));
}

TEST(FoldedAngles, AreWrittenByPrepareWithARemark) {
  const XyzDimer folder;
  const Words words{"prepare", "pair.xyz", "--split", "6",   "--r",    "6.5", "--theta", "84",
                    "--phi",   "-349",     "--alpha", "574", "--beta", "152", "--gamma", "306"};
  const Outcome outcome = run_command(folder, words);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages,
            "dravo: phi -349 is written as 11, the same angle\n"
            "dravo: alpha 574 is written as 214, the same angle\n" +
                kWritten);
  EXPECT_EQ(parse_sample(input_in(folder)).parameters,
            (std::array<std::string, 6>{"6.5", "84", "11", "214", "152", "306"}));
}

TEST(FoldedAngles, OfAlmostNothingAreNotRefused) {
  const Dimer folder;
  const Poses tiny = poses_of(folder, kElsewhere + Words{"--phi", "-1e-20", "--gamma", "-1e-20"});
  EXPECT_EQ(column(tiny.rows, "phi"), Lines{"-1e-20"});
  EXPECT_EQ(tiny.atoms, poses_of(folder, kElsewhere + Words{"--phi", "0", "--gamma", "0"}).atoms);
}

using Triple = std::array<double, 3>;
using Matrix = std::array<Triple, 3>;

constexpr double kPi = 3.14159265358979323846;
// Coordinates are written with eight decimals.
constexpr double kPrinted = 2e-8;

/// Atoms of molecule 1, placed by the six parameters.
std::vector<Triple> placed(const TemporaryFolder& folder, const PoseText& pose) {
  Words words{"place", "pair.xyz", "--split", "6"};
  for (std::size_t k = 0; k < pose.size(); ++k)
    words = words + Words{std::string("--") + kParameters.at(k), pose.at(k)};
  const Outcome outcome = run_command(folder, words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  const Lines lines = lines_of(outcome.screen);
  std::vector<Triple> atoms(6);
  for (std::size_t i = 0; i < atoms.size(); ++i) {
    std::istringstream in(lines.at(i + 2));
    std::string symbol;
    in >> symbol >> atoms[i][0] >> atoms[i][1] >> atoms[i][2];
  }
  return atoms;
}

/// Rz(gamma) Ry(beta) Rz(alpha), multiplied out.
Matrix euler_matrix_of(double alpha, double beta, double gamma) {
  const double a = alpha * kPi / 180.0, b = beta * kPi / 180.0, g = gamma * kPi / 180.0;
  const double ca = std::cos(a), sa = std::sin(a), cb = std::cos(b), sb = std::sin(b),
               cg = std::cos(g), sg = std::sin(g);
  return {{{ca * cb * cg - sa * sg, sa * cb * cg + ca * sg, -sb * cg},
           {-ca * cb * sg - sa * cg, ca * cg - sa * cb * sg, sb * sg},
           {ca * sb, sa * sb, cb}}};
}

/// The angles that the refusal offers are placed; where the atoms stand is computed from those that
/// were refused.
TEST(RefusedTheta, IsNamedWithTheDirectionThatItMeans) {
  const XyzDimer folder;
  expect_refusal(
      run_command(folder, {"place", "pair.xyz", "--split", "6", "--theta", "190", "--phi", "20"}),
      "--theta 190: 0 <= theta <= 180; theta 170 with phi 200 is the same direction",
      folder.outputs());
  const auto there = placed(folder, {"6.5", "170", "200", "10", "40", "70"});
  const auto at_origin = placed(folder, {"0", "0", "0", "10", "40", "70"});
  const double t = 190.0 * kPi / 180.0, p = 20.0 * kPi / 180.0;
  const Triple centre{6.5 * std::sin(t) * std::cos(p), 6.5 * std::sin(t) * std::sin(p),
                      6.5 * std::cos(t)};
  for (std::size_t i = 0; i < there.size(); ++i)
    for (std::size_t k = 0; k < 3; ++k)
      EXPECT_NEAR(there[i].at(k) - at_origin[i].at(k), centre.at(k), kPrinted);
}

TEST(RefusedBeta, IsNamedWithTheOrientationThatItMeans) {
  const XyzDimer folder;
  expect_refusal(run_command(folder, {"place", "pair.xyz", "--split", "6", "--alpha", "10",
                                      "--beta", "-30", "--gamma", "-250"}),
                 "--beta -30: 0 <= beta <= 180; beta 30 with alpha 190 and gamma 290 is the same "
                 "orientation",
                 folder.outputs());
  const auto there = placed(folder, {"0", "0", "0", "190", "30", "290"});
  const auto unturned = placed(folder, {"0", "0", "0", "0", "0", "0"});
  const Matrix turn = euler_matrix_of(10.0, -30.0, -250.0);
  for (std::size_t i = 0; i < there.size(); ++i)
    for (std::size_t k = 0; k < 3; ++k) {
      double expected = 0.0;
      for (std::size_t j = 0; j < 3; ++j) expected += turn.at(k).at(j) * unturned[i].at(j);
      EXPECT_NEAR(there[i].at(k), expected, kPrinted);
    }
}

TEST(RefusedAxis, IsNamedInGeneralWords) {
  const Dimer folder;
  expect_refusal(run_scan(folder, {"--theta", "150:190:20"}),
                 "--theta: 0 <= theta <= 180; theta 170 with phi + 180 is the same direction\n"
                 "150:190:20\n^^^^^^^^^^",
                 folder.outputs());
}

TEST(StatedAngles, OfAnInputFileAreReadAsTheyMayBeUsed) {
  const TemporaryFolder folder;
  SampleInput input = sample("formamide-dimer");
  input.parameters[2] = "371";
  folder.write("turned.xyz", input.text());
  input.parameters[2] = "11";
  folder.write("plain.xyz", input.text());
  const auto atoms = [&](const std::string& file) {
    const Outcome outcome = run_command(folder, {"place", file});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    const Lines lines = lines_of(outcome.screen);
    return Lines(lines.begin() + 2, lines.end());
  };
  EXPECT_EQ(atoms("turned.xyz"), atoms("plain.xyz"));
  input.parameters[1] = "180.4";  // qn-dravo looks at whole degrees
  folder.write("plain.xyz", input.text());
  expect_refusal(run_command(folder, {"place", "plain.xyz"}),
                 "plain.xyz: theta 180.4: 0 <= theta <= 180; theta 179.6 with phi 191 is the same "
                 "direction",
                 folder.outputs());
  EXPECT_EQ(run_command(folder, {"identify", "plain.xyz"}).status, 0) << "it needs no theta";
}

}  // namespace
}  // namespace dravo::test
