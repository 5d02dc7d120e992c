/// `dravo identify --frame`: tables of trajectories.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "cli/command.hpp"
#include "common/text.hpp"
#include "dravo/place.hpp"
#include "support/molecule_sets.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

/// Two molecules of formamide, as an xyz frame placed at each of some poses.
std::string trajectory(const std::vector<PoseDegrees>& poses) {
  const NamedPair dimer = s22("Formamide_dimer");
  const Placer placer(Pair(dimer.n1, dimer.atoms), {Placing::exact});
  std::string text;
  for (const PoseDegrees& pose : poses) {
    text += std::to_string(placer.size()) + "\nstep\n";
    const std::vector<Vec3> atoms = placer.positions(pose);
    for (std::int32_t i = 0; i < placer.size(); ++i) {
      const Vec3& p = atoms[static_cast<std::size_t>(i)];
      std::array<char, 100> line{};
      std::snprintf(line.data(), line.size(), "%s %.10f %.10f %.10f\n",
                    std::string(dimer.atoms.symbol(i)).c_str(), p.x, p.y, p.z);
      text += line.data();
    }
  }
  return text;
}

/// A dimer that goes round and comes nearer.
std::vector<PoseDegrees> round_trip() {
  std::vector<PoseDegrees> poses;
  for (int k = 0; k < 20; ++k)
    poses.push_back({8.0 - 0.05 * k, 60.0 + k, std::fmod(300.0 + 10.0 * k, 360.0),
                     std::fmod(340.0 + 7.0 * k, 360.0), 50.0 + 2.0 * k,
                     std::fmod(380.0 - 5.0 * k, 360.0)});
  return poses;
}

class IdentifyFramesCommand : public ::testing::Test {
 protected:
  TemporaryFolder folder_;

  Outcome run(const Words& words) { return run_command(folder_, Words{"identify"} + words); }
};

std::vector<std::vector<std::string>> cells_of(const std::string& table) {
  std::vector<std::vector<std::string>> rows;
  for (const std::string& line : lines_of(table)) {
    rows.emplace_back();
    for (const std::string_view cell : parts_between(line, ',')) rows.back().emplace_back(cell);
  }
  return rows;
}

const std::string kHeading = "frame,r,theta,phi,alpha,beta,gamma,shortest,contacts,remark";

TEST_F(IdentifyFramesCommand, WritesARowForEachFrame) {
  const auto poses = round_trip();
  folder_.write("t.xyz", trajectory(poses));
  const Outcome outcome = run({"t.xyz", "--split", "6", "--frame", "all"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.messages, "");
  const auto rows = cells_of(outcome.screen);
  ASSERT_EQ(rows.size(), poses.size() + 1);
  EXPECT_EQ(lines_of(outcome.screen)[0], kHeading);
  for (std::size_t k = 0; k < poses.size(); ++k) {
    ASSERT_GE(rows[k + 1].size(), 10U) << "a remark may have commas of its own";
    EXPECT_EQ(rows[k + 1][0], std::to_string(k + 1));
    for (std::size_t p = 0; p < kPoseParameters.size(); ++p)
      EXPECT_NEAR(std::stod(rows[k + 1][p + 1]), poses[k].*kPoseParameters[p].value, 2e-6)
          << kPoseParameters[p].name << " of frame " << k + 1;
    EXPECT_EQ(rows[k + 1][8], "0") << "contacts";
  }
}

TEST_F(IdentifyFramesCommand, TakesTheFramesThatAreWanted) {
  folder_.write("t.xyz", trajectory(round_trip()));
  const auto numbers = [&](const char* frames) {
    const Outcome outcome = run({"t.xyz", "--split", "6", "--frame", frames});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    std::string text;
    for (const auto& row : cells_of(outcome.screen)) text += row[0] + " ";
    return text;
  };
  EXPECT_EQ(numbers("18:20"), "frame 18 19 20 ");
  EXPECT_EQ(numbers("4:4"), "frame 4 ");
  EXPECT_EQ(numbers("1:20:9"), "frame 1 10 19 ");
  EXPECT_EQ(numbers("2,5:6"), "frame 2 5 6 ");
  EXPECT_EQ(numbers("19:30"), "frame 19 20 ");
  const Outcome beyond = run({"t.xyz", "--split", "6", "--frame", "19:30"});
  EXPECT_EQ(beyond.messages, "dravo: t.xyz: the file ends with frame 20\n");
}

TEST_F(IdentifyFramesCommand, ShowsOneFrameAsBefore) {
  folder_.write("t.xyz", trajectory(round_trip()));
  const Outcome outcome = run({"t.xyz", "--split", "6", "--frame", "3"});
  EXPECT_TRUE(outcome.screen.starts_with("position\n    7.90000000  r, Angstrom\n"))
      << outcome.screen;
  EXPECT_EQ(outcome.messages, "dravo: t.xyz: frame 3 of 20 is used\n");
}

TEST_F(IdentifyFramesCommand, UnwrapsAngles) {
  const auto poses = round_trip();
  folder_.write("t.xyz", trajectory(poses));
  const auto rows = cells_of(run({"t.xyz", "--split", "6", "--frame", "all", "--unwrap"}).screen);
  ASSERT_EQ(rows.size(), poses.size() + 1);
  for (std::size_t k = 0; k < poses.size(); ++k) {
    EXPECT_NEAR(std::stod(rows[k + 1][3]), 300.0 + 10.0 * static_cast<double>(k), 2e-6);
    EXPECT_NEAR(std::stod(rows[k + 1][4]), 340.0 + 7.0 * static_cast<double>(k), 2e-6);
    EXPECT_NEAR(std::stod(rows[k + 1][6]), 20.0 - 5.0 * static_cast<double>(k), 2e-6);
  }
}

/// Water's hydrogens are equal, so by itself a pair has one set of parameters; with the axes of the
/// first frame carried along a molecule that turns by 180 degrees has turned.
TEST_F(IdentifyFramesCommand, CarriesTheAxesOfAReferenceAlong) {
  const NamedPair dimer = s22("Water_dimer");
  const Placer placer(Pair(dimer.n1, dimer.atoms), {Placing::exact});
  std::string text;
  for (int k = 0; k <= 6; ++k) {
    text += "6\n\n";
    const auto atoms = placer.positions({4.0, 70.0, 20.0, 10.0, 60.0, 30.0 * k});
    for (std::int32_t i = 0; i < placer.size(); ++i) {
      const Vec3& p = atoms[static_cast<std::size_t>(i)];
      text += std::string(dimer.atoms.symbol(i)) + " " + std::to_string(p.x) + " " +
              std::to_string(p.y) + " " + std::to_string(p.z) + "\n";
    }
  }
  folder_.write("t.xyz", text);
  const Words all{"t.xyz", "--split", "3", "--frame", "all"};
  const auto rows = cells_of(run(all + Words{"--like", "t.xyz", "--unwrap"}).screen);
  ASSERT_EQ(rows.size(), 8U);
  for (std::size_t k = 1; k < 7; ++k)
    EXPECT_NEAR(std::stod(rows[k + 1][6]) - std::stod(rows[k][6]), 30.0, 1e-3) << "frame " << k + 1;
}

TEST_F(IdentifyFramesCommand, WritesAFileWhenItIsComplete) {
  folder_.write("t.xyz", trajectory(round_trip()));
  const Words words{"t.xyz", "--split", "6", "--frame", "all"};
  const Outcome to_screen = run(words);
  const Outcome to_file = run(words + Words{"-o", "t.csv"});
  EXPECT_EQ(to_file.screen, "");
  EXPECT_EQ(to_file.messages, "dravo: wrote t.csv: 20 frames\n");
  EXPECT_EQ(to_file.files.at("t.csv"), to_screen.screen);
  EXPECT_EQ(to_file.files.size(), 2U);
  const Outcome again = run(words + Words{"-o", "t.csv"});
  EXPECT_EQ(again.status, 2);
  EXPECT_EQ(again.messages, "dravo: t.csv: exists already; --overwrite replaces it\n");
  EXPECT_EQ(run(words + Words{"-o", "t.csv", "--overwrite", "--quiet"}).messages, "");
}

/// The sixth atom of frame 2 has no z.
std::string with_broken_frame() {
  std::vector<std::string> lines = lines_of(trajectory(round_trip()));
  lines[14 + 7] = "H 1.0 2.0";
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

TEST_F(IdentifyFramesCommand, EndsAtABrokenFrameWithItsPlace) {
  folder_.write("t.xyz", with_broken_frame());
  const Outcome outcome = run({"t.xyz", "--split", "6", "--frame", "all", "-o", "t.csv"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages,
            "dravo: frame 2: t.xyz:22: expected the z coordinate (a number) of atom 6, found the "
            "end of the line\nH 1.0 2.0\n         ^\n--skip-bad leaves such frames out\n");
  EXPECT_EQ(outcome.files.count("t.csv"), 0U);
  EXPECT_EQ(outcome.files.size(), 1U) << "no part of it is left";
}

TEST_F(IdentifyFramesCommand, LeavesBrokenFramesOutAndCountsThem) {
  folder_.write("t.xyz", with_broken_frame());
  const Outcome outcome = run({"t.xyz", "--split", "6", "--frame", "all", "--skip-bad"});
  EXPECT_EQ(outcome.status, 0);
  const auto rows = cells_of(outcome.screen);
  ASSERT_EQ(rows.size(), 20U);
  EXPECT_EQ(rows[1][0], "1");
  EXPECT_EQ(rows[2][0], "3");
  EXPECT_TRUE(outcome.messages.starts_with("dravo: left out: frame 2: t.xyz:22: "))
      << outcome.messages;
  EXPECT_TRUE(outcome.messages.ends_with("dravo: left out 1 of 20 frames\n")) << outcome.messages;
}

TEST_F(IdentifyFramesCommand, NeverReplacesWhatItReads) {
  const std::string text = trajectory(round_trip());
  folder_.write("t.xyz", text);
  folder_.write("l.xyz", text);
  const Words all{"t.xyz", "--split", "6", "--frame", "all", "--like", "l.xyz", "--overwrite"};
  for (const char* input : {"t.xyz", "./t.xyz", "l.xyz"}) {
    const Outcome outcome = run(all + Words{"-o", input});
    EXPECT_EQ(outcome.status, 2) << input;
    EXPECT_TRUE(
        outcome.messages.ends_with(": would be replaced by the results; choose another "
                                   "--output\n"))
        << outcome.messages;
    EXPECT_EQ(outcome.files.at("t.xyz"), text);
    EXPECT_EQ(outcome.files.at("l.xyz"), text);
  }
}

/// What is wrong with the first frame is wrong with all, so leaving frames out is no advice.
TEST_F(IdentifyFramesCommand, AdvisesNothingThatDoesNotHelp) {
  folder_.write("t.xyz", trajectory(round_trip()));
  EXPECT_EQ(
      run({"t.xyz", "--frame", "all"}).messages,
      "dravo: frame 1: t.xyz: where molecule 2 begins is not known; use --split N1, the number "
      "of atoms of molecule 1, or --split auto, by bonds\n");
}

TEST_F(IdentifyFramesCommand, HasOneFrameOfAnInputOfQnDravo) {
  folder_.write("t.xyz", file_text(sample_path("formamide-dimer")));
  EXPECT_EQ(cells_of(run({"t.xyz", "--frame", "all"}).screen).size(), 2U);
  const Outcome second = run({"t.xyz", "--frame", "2:3"});
  EXPECT_EQ(second.status, 2);
  EXPECT_EQ(second.screen, "");
  EXPECT_EQ(second.messages, "dravo: t.xyz: there is no frame 2: the file holds one pair\n");
}

/// A molfile may begin with a blank line.
TEST_F(IdentifyFramesCommand, NamesAForeignFormat) {
  folder_.write("b.mol",
                "\n  made by hand\n\n  1  0  0  0  0  0  0  0  0  0999 V2000\n"
                "    0.0000    0.0000    0.0000 O   0  0\nM  END\n");
  const Outcome outcome = run({"b.mol", "--split", "1", "--frame", "all"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, run({"b.mol", "--split", "1"}).messages);
  EXPECT_NE(outcome.messages.find("obabel"), std::string::npos) << outcome.messages;
}

TEST_F(IdentifyFramesCommand, RefusesOptionsThatDoNotGoTogether) {
  folder_.write("t.xyz", trajectory(round_trip()));
  const auto refusal = [&](const Words& words) {
    const Outcome outcome = run(Words{"t.xyz", "--split", "6"} + words);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.screen, "");
    return outcome.messages;
  };
  EXPECT_EQ(refusal({"--frame", "all", "--json"}), "dravo: --json is for one frame, --frame K\n");
  EXPECT_EQ(refusal({"--unwrap"}),
            "dravo: --unwrap is for the table of several frames: --frame all, A:B or A:B:STEP\n");
  EXPECT_EQ(refusal({"--frame", "5:3"}).substr(0, 15), "dravo: --frame:");
  EXPECT_EQ(refusal({"--frame", "21:30"}),
            "dravo: t.xyz: there is no frame 21: the file holds 20 frames\n");
}

}  // namespace
}  // namespace dravo::test
