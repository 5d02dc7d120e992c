#include "results/pose_writer.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/atoms.hpp"
#include "support/not_finite.hpp"

namespace dravo::test {
namespace {

const std::vector<Label> kLabels{{'O', ' '}, {'C', 'l'}};

ScannedPose hand_made() {
  ScannedPose pose{};
  pose.index = 42;
  pose.above_contact = 0.25;
  pose.asked = {3.5, 90.0, 45.0, 0.1, 1e-7, 359.99};
  pose.applied = {3.4999999951, 89.9999996, 45.0, 0.09, 179.99, 359.9899999};
  pose.shortest = 1.8999999762;
  pose.contacts = 3;
  pose.clearance = 0.71428571;
  pose.clearance_atom1 = 0;
  pose.clearance_atom2 = 1;
  pose.equivalents = 12;
  return pose;
}

constexpr PoseColumns kAboveContact{.above_contact = true};
constexpr PoseColumns kUnique{.equivalents = true};
constexpr PoseColumns kExact{.exact = true};

/// Rows do not show atoms.
PoseWriter table_writer(const PoseColumns& columns) { return {{}, columns}; }

std::string row_of(const ScannedPose& pose, const PoseColumns& columns = {}) {
  PoseRow row;
  table_writer(columns).fill(row, pose);
  return std::string(row.line());
}

TEST(PoseTable, HasAHeading) {
  EXPECT_EQ(table_writer({}).table_heading(),
            "index,r,theta,phi,alpha,beta,gamma,r_applied,theta_applied,phi_applied,"
            "alpha_applied,beta_applied,gamma_applied,shortest,contacts,clearance,"
            "clearance_atom1,clearance_atom2\n");
  EXPECT_EQ(table_writer(kAboveContact).table_heading(),
            "index,above_contact,r,theta,phi,alpha,beta,gamma,r_applied,theta_applied,"
            "phi_applied,alpha_applied,beta_applied,gamma_applied,shortest,contacts,clearance,"
            "clearance_atom1,clearance_atom2\n");
}

TEST(PoseTable, HasARowForAPose) {
  EXPECT_EQ(row_of(hand_made()),
            "42,3.5,90,45,0.1,1e-07,359.99,3.50000000,90.000000,45.000000,0.090000,179.990000,"
            "359.990000,1.89999998,3,0.714286,1,2\n");
  EXPECT_EQ(row_of(hand_made(), kAboveContact),
            "42,0.25,3.5,90,45,0.1,1e-07,359.99,3.50000000,90.000000,45.000000,0.090000,"
            "179.990000,359.990000,1.89999998,3,0.714286,1,2\n");
}

TEST(PoseTable, ShowsDirectionsThatHaveNoMeaning) {
  ScannedPose pose = hand_made();
  pose.applied.theta = std::numeric_limits<double>::quiet_NaN();
  pose.shortest = kInfinity;
  pose.contacts = 0;
  EXPECT_EQ(row_of(pose),
            "42,3.5,90,45,0.1,1e-07,359.99,3.50000000,nan,45.000000,0.090000,179.990000,"
            "359.990000,inf,0,0.714286,1,2\n");
}

/// No element of one molecule has a radius.
ScannedPose without_clearance() {
  ScannedPose pose = hand_made();
  pose.clearance = kInfinity;
  pose.clearance_atom1 = pose.clearance_atom2 = -1;
  return pose;
}

TEST(PoseTable, LeavesTheCellsOfNoClearanceEmpty) {
  EXPECT_EQ(row_of(without_clearance()),
            "42,3.5,90,45,0.1,1e-07,359.99,3.50000000,90.000000,45.000000,0.090000,179.990000,"
            "359.990000,1.89999998,3,,,\n");
}

TEST(PoseTable, TellsAtItsEndHowManyPosesARowStandsFor) {
  const std::string heading = table_writer({}).table_heading();
  EXPECT_EQ(table_writer(kUnique).table_heading(),
            heading.substr(0, heading.size() - 1) + ",equivalents\n");
  const std::string row = row_of(hand_made());
  EXPECT_EQ(row_of(hand_made(), kUnique), row.substr(0, row.size() - 1) + ",12\n");
}

TEST(PoseTable, IsTheSameForExactPoses) {
  EXPECT_EQ(table_writer(kExact).table_heading(), table_writer({}).table_heading());
  EXPECT_EQ(row_of(hand_made(), kExact), row_of(hand_made()));
}

// Energies.

constexpr PoseColumns kEnergies{.energy = true};

ScannedPose with_energy(EnergyStatus status, double interaction) {
  ScannedPose pose = hand_made();
  pose.energy_status = status;
  pose.interaction = interaction;
  return pose;
}

const std::string kPlainRow = row_of(hand_made()).substr(0, row_of(hand_made()).size() - 1);
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

TEST(PoseTable, EndsWithEnergyAndStatus) {
  const std::string heading = table_writer({}).table_heading();
  EXPECT_EQ(table_writer({.equivalents = true, .energy = true}).table_heading(),
            heading.substr(0, heading.size() - 1) + ",equivalents,e_int_kcal_mol,status\n");
  EXPECT_EQ(row_of(with_energy(EnergyStatus::ok, -16.64172), kEnergies),
            kPlainRow + ",-16.641720,ok\n");
  EXPECT_EQ(
      row_of(with_energy(EnergyStatus::ok, 4999.9999996), {.equivalents = true, .energy = true}),
      kPlainRow + ",12,5000.000000,ok\n");
  EXPECT_EQ(row_of(with_energy(EnergyStatus::ok, -16.64172)), kPlainRow + "\n")
      << "only where the scan has energies";
}

TEST(PoseTable, HasTheStatusOfAPoseWithoutEnergy) {
  for (const auto& [status, name] :
       {std::pair(EnergyStatus::clash, "clash"), std::pair(EnergyStatus::scf_fail, "scf_fail"),
        std::pair(EnergyStatus::nonphysical, "nonphysical"),
        std::pair(EnergyStatus::engine_died, "engine_died")})
    EXPECT_EQ(row_of(with_energy(status, kNoNumber), kEnergies), kPlainRow + ",," + name + "\n");
}

TEST(PoseTable, HasNothingOfTheRowBefore) {
  const PoseWriter writer = table_writer(kAboveContact);
  PoseRow row;
  writer.fill(row, with_energy(EnergyStatus::ok, -123456789.0));
  writer.fill(row, without_clearance());
  EXPECT_EQ(row.line(), row_of(without_clearance(), kAboveContact));
  EXPECT_EQ(std::string(row.without_line_end()) + "\n", row.line());
}

TEST(PoseTable, ReadsBackWhatPlacingAPoseDoesNotFind) {
  const PoseWriter writer =
      table_writer({.above_contact = true, .equivalents = true, .energy = true});
  for (const ScannedPose& pose :
       {with_energy(EnergyStatus::ok, -0.000001), with_energy(EnergyStatus::clash, kNoNumber)}) {
    PoseRow row;
    writer.fill(row, pose);
    const auto read = writer.read_row(row.without_line_end());
    ASSERT_TRUE(read) << row.line();
    EXPECT_EQ(read->index, 42);
    EXPECT_EQ(read->above_contact, 0.25);
    EXPECT_EQ(read->asked.gamma, 359.99);
    EXPECT_EQ(read->equivalents, 12);
    EXPECT_EQ(read->energy_status, pose.energy_status);
    if (pose.energy_status == EnergyStatus::ok) {
      EXPECT_EQ(read->interaction, -0.000001);
    } else {
      EXPECT_TRUE(std::isnan(read->interaction));
    }
  }
}

TEST(PoseTable, ReadsNoRowWithAnotherStatus) {
  const PoseWriter writer = table_writer(kEnergies);
  EXPECT_TRUE(writer.read_row(kPlainRow + ",-1.000000,ok"));
  EXPECT_TRUE(writer.read_row(kPlainRow + ",-1.000000,ok,more")) << "of the user";
  for (const char* cells :
       {",-1.000000,fine", ",-1.000000,", ",-1.000000", "", ",low,ok", ",-1 ,ok"})
    EXPECT_FALSE(writer.read_row(kPlainRow + cells)) << cells;
}

/// The parts of a row.
std::vector<std::string> parts(const std::string& row) {
  std::vector<std::string> all;
  std::istringstream in(row.substr(0, row.size() - 1));
  for (std::string part; std::getline(in, part, ',');) all.push_back(part);
  return all;
}

TEST(PoseTable, WhatWasAskedReadsBackAsTheSameNumber) {
  for (const double value : {0.1 + 0.2, 1.0 / 3.0, std::nextafter(180.0, 0.0), 9999.9, 1e-300,
                             5e-324, 123456789.123456789, 0.0}) {
    ScannedPose pose = hand_made();
    pose.above_contact = value;
    pose.asked = {value, value, value, value, value, value};
    const std::vector<std::string> columns = parts(row_of(pose, kAboveContact));
    ASSERT_EQ(columns.size(), 19U);
    for (std::size_t k = 1; k < 8; ++k)
      EXPECT_EQ(std::strtod(columns[k].c_str(), nullptr), value) << columns[k];
  }
}

TEST(PoseTable, CountsFarPoses) {
  ScannedPose pose = hand_made();
  pose.index = 999'999'999'999'999;
  EXPECT_EQ(parts(row_of(pose))[0], "999999999999999");
}

/// Behind what `frames` holds.
void append_frame(std::string& frames, const ScannedPose& pose, const std::vector<Label>& labels,
                  std::int32_t n1, SmallTable& placed, const PoseColumns& columns = {}) {
  const PoseWriter writer(frame_atoms(labels, n1, placed.table(), columns.exact), columns);
  PoseRow row;
  writer.fill(row, pose);
  writer.append_frame(frames, row, placed.table());
}

std::string frame_of(const ScannedPose& pose, const std::vector<Atom>& atoms,
                     const PoseColumns& columns = {}) {
  SmallTable placed(atoms);
  std::string frames;
  append_frame(frames, pose, kLabels, 1, placed, columns);
  return frames;
}

const std::string kComment =
    "r=3.5 theta=90 phi=45 alpha=0.1 beta=1e-07 gamma=359.99 r_applied=3.50000000 "
    "theta_applied=90.000000 phi_applied=45.000000 alpha_applied=0.090000 "
    "beta_applied=179.990000 gamma_applied=359.990000 shortest=1.89999998 contacts=3 "
    "clearance=0.714286 clearance_atom1=1 clearance_atom2=2\n";

TEST(PoseFrame, HasCountParametersAndAtoms) {
  const std::vector<Atom> atoms{{"O", {1.0, -2.5, 0.0}}, {"Cl", {12345.678, -0.1, 1e-9}}};
  const std::string lines =
      "O       1.00000000     -2.50000000      0.00000000 1\n"
      "Cl  12345.67800000     -0.10000000      0.00000000 2\n";
  EXPECT_EQ(frame_of(hand_made(), atoms),
            "2\nProperties=species:S:1:pos:R:3:molecule:I:1 index=42 " + kComment + lines);
  EXPECT_EQ(frame_of(hand_made(), atoms, kAboveContact),
            "2\nProperties=species:S:1:pos:R:3:molecule:I:1 index=42 above_contact=0.25 " +
                kComment + lines);
}

/// A key without a value would end the line for readers of extended xyz.
TEST(PoseFrame, LacksTheKeysOfNoClearance) {
  const std::vector<Atom> atoms{{"O", {1.0, -2.5, 0.0}}, {"Cl", {4.0, 5.0, 6.0}}};
  const std::string frame = frame_of(without_clearance(), atoms);
  EXPECT_EQ(frame.substr(0, frame.find("O ")),
            "2\nProperties=species:S:1:pos:R:3:molecule:I:1 index=42 " +
                kComment.substr(0, kComment.find(" clearance=")) + "\n");
}

TEST(PoseFrame, EndsItsCommentWithWhatNotEveryScanHas) {
  const std::vector<Atom> atoms{{"O", {1.0, -2.5, 0.0}}, {"Cl", {4.0, 5.0, 6.0}}};
  const auto comment_of = [&](const PoseColumns& columns) {
    const std::string frame = frame_of(hand_made(), atoms, columns);
    return frame.substr(2, frame.find('\n', 2) - 1);
  };
  const std::string plain = comment_of({});
  ASSERT_EQ(plain, "Properties=species:S:1:pos:R:3:molecule:I:1 index=42 " + kComment);
  const std::string words = plain.substr(0, plain.size() - 1);
  EXPECT_EQ(comment_of(kUnique), words + " equivalents=12\n");
  EXPECT_EQ(comment_of(kExact), words + " placing=exact\n");
  EXPECT_EQ(comment_of({.equivalents = true, .exact = true}),
            words + " equivalents=12 placing=exact\n");
}

TEST(PoseFrame, HasEnergyAndStatus) {
  const std::vector<Atom> atoms{{"O", {1.0, -2.5, 0.0}}, {"Cl", {4.0, 5.0, 6.0}}};
  const auto end_of_comment = [&](const ScannedPose& pose) {
    const std::string frame =
        frame_of(pose, atoms, {.equivalents = true, .exact = true, .energy = true});
    const std::size_t begin = frame.find(" equivalents=");
    return frame.substr(begin, frame.find('\n', begin) - begin);
  };
  EXPECT_EQ(end_of_comment(with_energy(EnergyStatus::ok, 0.5)),
            " equivalents=12 e_int_kcal_mol=0.500000 status=ok placing=exact");
  EXPECT_EQ(end_of_comment(with_energy(EnergyStatus::clash, kNoNumber)),
            " equivalents=12 status=clash placing=exact")
      << "a key without a value would end the line for readers of extended xyz";
}

TEST(PoseFrame, KeepsItsColumnsToTheLargestNumbers) {
  const std::string frame =
      frame_of(hand_made(), {{"O", {999999.99999999, -99999.99999999, 9.9999999951}},
                             {"Cl", {1000000.0, -100000.0, -1000000.0}}});
  const std::string atoms = frame.substr(frame.find("\nO ") + 1);
  EXPECT_EQ(atoms,
            "O  999999.99999999 -99999.99999999     10.00000000 1\n"
            "Cl ***************" +
                std::string(" ***************") + " *************** 2\n");
}

TEST(PoseFrame, TellsTheMoleculeOfEachAtom) {
  const std::vector<Label> labels{{'H', ' '}, {'O', ' '}, {'C', 'l'}};
  SmallTable placed(std::vector<Atom>{{"H", {1.0, 2.0, 3.0}}, {"O", {}}, {"Cl", {}}});
  for (const std::int32_t n1 : {1, 2}) {
    std::string frame;
    append_frame(frame, hand_made(), labels, n1, placed);
    std::istringstream lines(frame);
    std::string molecules;
    for (std::string line; std::getline(lines, line);)
      if (line.starts_with("H ") || line.starts_with("O ") || line.starts_with("Cl"))
        molecules += line.substr(50);
    EXPECT_EQ(molecules, n1 == 1 ? " 1 2 2" : " 1 1 2");
  }
}

TEST(PoseFrame, HasNumbersOfAnyLength) {
  ScannedPose pose = hand_made();
  pose.asked.r = -1.2345678901234568e-300;
  pose.applied.r = 1e300;
  const std::string frame = frame_of(pose, {{"O", {1.0, -2.5, 0.0}}, {"Cl", {4.0, 5.0, 6.0}}});
  EXPECT_NE(frame.find(" r=-1.2345678901234568e-300 theta=90 "), std::string::npos) << frame;
  const std::string six_decimals = std::to_string(1e300);
  EXPECT_NE(frame.find(" r_applied=" + six_decimals + "00 theta_applied="), std::string::npos)
      << frame;
}

TEST(PoseFrame, OfMolecule1AloneCountsItsAtoms) {
  SmallTable placed(std::vector<Atom>{{"O", {1.0, -2.5, 0.0}}, {"Cl", {4.0, 5.0, 6.0}}});
  const FrameAtoms both = frame_atoms(kLabels, 1, placed.table(), false);
  std::string frame;
  const PoseWriter writer({both.molecule1}, {});
  PoseRow row;
  writer.fill(row, hand_made());
  writer.append_frame(frame, row, placed.table());
  EXPECT_EQ(frame, "1\nProperties=species:S:1:pos:R:3:molecule:I:1 index=42 " + kComment +
                       "O       1.00000000     -2.50000000      0.00000000 1\n");
  EXPECT_EQ(molecule2_frame(both),
            "1\nProperties=species:S:1:pos:R:3:molecule:I:1\n"
            "Cl      4.00000000      5.00000000      6.00000000 2\n");
}

TEST(PoseFrame, FollowsTheFrameBefore) {
  const std::vector<Atom> atoms{{"O", {1.0, 2.0, 3.0}}, {"Cl", {4.0, 5.0, 6.0}}};
  SmallTable placed(atoms);
  std::string frames;
  append_frame(frames, hand_made(), kLabels, 1, placed);
  append_frame(frames, hand_made(), kLabels, 1, placed);
  EXPECT_EQ(frames, frame_of(hand_made(), atoms) + frame_of(hand_made(), atoms));
}

}  // namespace
}  // namespace dravo::test
