/// Pages of pairs and trajectories that `dravo view` writes, against `dravo place` and
/// `dravo identify`.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "cli/prepared.hpp"
#include "cli/scanned.hpp"
#include "support/view_pages.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

const std::string kFormamides = DRAVO_EXAMPLES "/formamide-dimer/formamide-dimer.xyz";

class Formamides : public TemporaryFolder {
 public:
  Formamides() { write("dimer.xyz", file_text(kFormamides)); }
};

/// The atoms that a command prints.
std::vector<Vec3> printed_atoms(const TemporaryFolder& folder, const Words& words) {
  const Outcome outcome = run_command(folder, words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  return atoms_in(frames_of(outcome.screen).at(0));
}

/// The data of the page that a command writes under this name.
PageJson viewed(const TemporaryFolder& folder, const Words& words, const std::string& page) {
  const Outcome outcome = run_command(folder, Words{"view"} + words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.screen, "");
  return data_of(outcome.files.at(page));
}

/// Coordinates are printed with eight decimals.
constexpr double kPrinted = 1e-8;

TEST(PageOfAPair, PlacesItAsTheCommandPlace) {
  const std::string water = DRAVO_EXAMPLES "/water-dimer/water.xyz";
  const std::string hcn = DRAVO_EXAMPLES "/argon-hcn/hcn.xyz";
  const std::vector<Words> pairs{
      {"dimer.xyz", "--split", "6"},
      {"dimer.xyz", "--split", "auto", "--r", "here+0.5", "--gamma", "-20"},
      {"dimer.xyz", "--split", "6", "--unit", "angstrom", "--like", "dimer.xyz"},
      {DRAVO_EXAMPLES "/dimethyl-sulfoxide-ethanol/QN-input-GEOMETRY.xyz"},
      {water, hcn, "--r", "3.5", "--theta", "70", "--phi", "350", "--beta", "33"}};
  for (const Words& pair : pairs) {
    const Formamides folder;
    const PageJson data = viewed(folder, pair + Words{"-o", "page.html"}, "page.html");
    EXPECT_LT(farthest_apart(atoms_of(data, pose_in(data["pose"])),
                             printed_atoms(folder, Words{"place"} + pair)),
              kPrinted)
        << pair[0];
    for (const Words& pose : {kOnePose, Words{"--r", "0", "--theta", "180", "--phi", "7", "--alpha",
                                              "0", "--beta", "180", "--gamma", "359.5"}}) {
      Words words = pair;
      if (const auto given = std::find(words.begin(), words.end(), "--r"); given != words.end())
        words.erase(given, words.end());
      PoseDegrees asked;
      for (std::size_t k = 0; k < kParameters.size(); ++k)
        asked.*kPoseParameters[k].value = std::stod(pose.at(2 * k + 1));
      EXPECT_LT(farthest_apart(atoms_of(data, asked),
                               printed_atoms(folder, Words{"place"} + words + pose)),
                kPrinted)
          << pair[0];
    }
  }
}

TEST(PageOfAPair, HasTheCommandThatPlacesItAgain) {
  const std::vector<std::pair<Words, std::string>> commands{
      {{"dimer.xyz", "--split", "6"}, "dravo place dimer.xyz --split 6"},
      {{"dimer.xyz", "--split", "auto", "--frame", "1", "--no-check", "--like", "a b.xyz"},
       "dravo place dimer.xyz --split auto --no-check --like 'a b.xyz'"},
      {{"a b.xyz", "--split", "6", "--unit", "bohr", "--no-check", "--contact-distance", "vdw*0.8"},
       "dravo place 'a b.xyz' --split 6 --unit bohr --no-check --contact-distance 'vdw*0.8'"},
      {{"one.xyz", "a b.xyz", "--r", "4"}, "dravo place one.xyz 'a b.xyz'"},
      {{"two.xyz", "--split", "6", "--frame", "2"}, "dravo place two.xyz --split 6 --frame 2"},
      {{"--split", "6", "--", "-d.xyz"}, "dravo place ./-d.xyz --split 6"}};
  for (const auto& [words, command] : commands) {
    const Formamides folder;
    const std::string dimer = folder.read("dimer.xyz");
    folder.write("a b.xyz", dimer);
    folder.write("-d.xyz", dimer);
    folder.write("one.xyz", "1\n\nAr 0 0 0\n");
    folder.write("two.xyz", dimer + dimer);
    EXPECT_EQ(viewed(folder, Words{"-o", "page.html"} + words, "page.html")["command"], command);
  }
}

TEST(PageOfAPair, OfManyAtomsIsRefused) {
  const Formamides folder;
  std::string atoms = "20001\n\nAr 0 0 0\n";
  for (int k = 0; k < 20000; ++k)
    atoms += "C " + std::to_string(9 + k % 200) + " " + std::to_string(k / 200) + " " +
             std::to_string(k % 3) + "\n";
  folder.write("many.xyz", atoms);
  const Outcome outcome = run_command(folder, {"view", "many.xyz", "--split", "1", "--no-open"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(
      outcome.messages.find("dravo: many.xyz: a page shows pairs of at most 20000 atoms, this "
                            "one has 20001; dravo draw takes more\n"),
      std::string::npos)
      << outcome.messages;
  EXPECT_EQ(outcome.files.count("many.html"), 0U);
}

TEST(PageOfAPair, TellsWhatIsShown) {
  const Formamides folder;
  const PageJson usual = viewed(folder, {"dimer.xyz", "--split", "6", "-o", "1.html"}, "1.html");
  EXPECT_EQ(usual["title"], "dimer.xyz");
  EXPECT_EQ(usual["options"].dump(),
            R"({"frames":true,"angles":true,"contacts":true,"labels":false})");
  EXPECT_EQ(usual["criterion"]["text"], "1.9");
  EXPECT_EQ(usual["poses"], PageJson());
  const PageJson other =
      viewed(folder,
             {"dimer.xyz", "--split", "6", "--no-frames", "--no-angles", "--no-contacts",
              "--labels", "--view", "-30,12.5", "--contact-distance", "vdw*0.8", "-o", "2.html"},
             "2.html");
  EXPECT_EQ(other["options"].dump(),
            R"({"frames":false,"angles":false,"contacts":false,"labels":true})");
  EXPECT_EQ(other["view"].dump(), R"({"azimuth":-30.0,"elevation":12.5})");
  EXPECT_EQ(other["criterion"].dump(), R"({"by_radii":true,"value":0.8,"text":"vdw*0.8"})");
}

// --- names ------------------------------------------------------------------------------------

TEST(NameOfThePage, IsThatOfTheFile) {
  const Formamides folder;
  fs::create_directory(folder.path() / "sub");
  folder.write("sub/one.more.xyz", folder.read("dimer.xyz"));
  folder.write("water.xyz", file_text(DRAVO_EXAMPLES "/water-dimer/water.xyz"));
  const std::vector<std::pair<Words, std::string>> names{
      {{"dimer.xyz", "--split", "6"}, "dimer.html"},
      {{"sub/one.more.xyz", "--split", "6"}, "sub/one.more.html"},
      {{"sub/one.more.xyz", "water.xyz", "--r", "5"}, "one.more-water.html"}};
  for (const auto& [words, name] : names) {
    const Outcome outcome = run_command(folder, Words{"view", "--no-open"} + words);
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    EXPECT_NE(outcome.messages.find("dravo: wrote " + name + ": "), std::string::npos)
        << outcome.messages;
    EXPECT_TRUE(fs::exists(folder.path() / name));
  }
}

TEST(NameOfThePage, OfStandardInputIsThatOfAPair) {
  const Formamides folder;
  const std::string input = (folder.path() / "dimer.xyz").string();
  const Outcome outcome =
      run_command(folder, {"view", "-", "--split", "6", "--no-open"}, Screen::kept,
                  [&input] { redirect(STDIN_FILENO, input.c_str(), O_RDONLY); });
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(data_of(outcome.files.at("pair.html"))["title"], "standard input");
}

TEST(StreamOfAPair, IsReadOnce) {
  const Formamides folder;
  const std::string dravo = tested_dravo();
  const Outcome outcome =
      run_in(folder, {"/bin/bash", "-c", dravo + " view <(cat dimer.xyz) --split 6 -o page.html"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(data_of(outcome.files.at("page.html"))["molecules"][0]["symbols"].size(), 6U);
  const Outcome frames = run_in(folder, {"/bin/bash", "-c",
                                         "cat dimer.xyz dimer.xyz dimer.xyz | " + dravo +
                                             " view - --split 6 --frame all -o frames.html"});
  EXPECT_EQ(frames.status, 0) << frames.messages;
  EXPECT_EQ(data_of(frames.files.at("frames.html"))["poses"]["shown"], 3);
}

TEST(ExistingPage, IsReplacedOnlyWhenSomebodySaysSo) {
  const Formamides folder;
  folder.write("dimer.html", "of somebody");
  const Words words{"view", "dimer.xyz", "--split", "6", "--no-open"};
  expect_refusal(run_command(folder, words), "dimer.html: exists already; --overwrite replaces it",
                 folder.outputs());
  const Outcome outcome = run_command(folder, words + Words{"--overwrite"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_TRUE(outcome.files.at("dimer.html").starts_with("<!DOCTYPE html>"));
  expect_refusal(
      run_command(folder, {"view", "dimer.xyz", "--split", "6", "--overwrite", "-o", "dimer.xyz"}),
      "dimer.xyz: would be replaced by the results; choose another --output", folder.outputs());
  expect_refusal(run_command(folder, {"view", "dimer.xyz", "--split", "6", "-o", "no/p.html"}),
                 "no: there is no such folder", folder.outputs());
}

TEST(HostileFileName, StaysText) {
  for (const std::string name :
       {"<img src=x onerror=alert(1)>.xyz", "a\"'&b.xyz", "esc\x1b[1m\n.xyz", "no\xFFutf8.xyz"}) {
    const Formamides folder;
    folder.write(name, folder.read("dimer.xyz"));
    const Outcome outcome = run_command(folder, {"view", name, "--split", "6", "-o", "page.html"});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    const std::string page = outcome.files.at("page.html");
    EXPECT_EQ(page.find("<img"), std::string::npos);
    EXPECT_EQ(page.find('\x1b'), std::string::npos);
    EXPECT_EQ(page.find('\xFF'), std::string::npos);
    const PageJson data = data_of(page);
    // What the page offers to copy is the command that was meant.
    const std::string command = data["command"];
    const Outcome placed = run_in(folder, {"/bin/bash", "-c", tested_dravo() + command.substr(5)});
    EXPECT_EQ(placed.status, 0) << command << placed.messages;
  }
}

// --- browsers ---------------------------------------------------------------------------------

/// A program of this name that tells with what it was run, and how a command ends.
std::string opened_by(const TemporaryFolder& folder, const Words& words, const char* display) {
  const TemporaryFolder other;
  const std::string told = (other.path() / "told").string();
  folder.write("xdg-open", "#!/bin/sh\nprintf '%s' \"$*\" >" + told + ".new\nmv " + told + ".new " +
                               told + "\n");
  fs::permissions(folder.path() / "xdg-open", fs::perms::owner_all);
  const Outcome outcome = run_command(folder, words, Screen::kept, [&] {
    ::unsetenv("WAYLAND_DISPLAY");
    ::setenv("DISPLAY", display, 1);
    ::setenv("PATH", (folder.path().string() + ":/usr/bin:/bin").c_str(), 1);
  });
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  for (int k = 0; k < 500 && !fs::exists(told) && *display != '\0'; ++k) ::usleep(10000);
  return fs::exists(told) ? file_text(told) : "";
}

TEST(PageBesideTheFile, IsOpenedWhereThereIsADisplay) {
  const Formamides folder;
  const Words words{"view", "dimer.xyz", "--split", "6", "--overwrite"};
  EXPECT_EQ(opened_by(folder, words, ":7"), (folder.path() / "dimer.html").string());
  EXPECT_EQ(opened_by(folder, words, ""), "");
}

TEST(PageBesideTheFile, IsThereWhereNothingOpensIt) {
  const Formamides folder;
  const Outcome outcome =
      run_command(folder, {"view", "dimer.xyz", "--split", "6"}, Screen::kept, [] {
        ::setenv("DISPLAY", ":7", 1);
        ::setenv("PATH", "/none", 1);
      });
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages,
            "dravo: wrote dimer.html: molecule 1 has 6 atoms, molecule 2 has 6\n"
            "dravo: dimer.html: cannot open it by xdg-open: No such file or directory\n");
  EXPECT_EQ(outcome.files.count("dimer.html"), 1U);
}

// --- trajectories -----------------------------------------------------------------------------

/// Two molecules that move, turn and bend.
std::string frames_of_formamides(const TemporaryFolder& folder, int count) {
  const Lines lines = lines_of(folder.read("dimer.xyz"));
  std::string text;
  for (int k = 0; k < count; ++k) {
    text += lines[0] + "\nframe\n";
    for (std::size_t atom = 2; atom < 14; ++atom) {
      const double bent = 0.03 * std::sin(0.7 * k + static_cast<double>(atom));
      std::istringstream in(lines.at(atom));
      std::string symbol;
      Vec3 p;
      in >> symbol >> p.x >> p.y >> p.z;
      if (atom < 8) p.x += 0.05 * k;
      text += symbol + " " + std::to_string(p.x + bent) + " " + std::to_string(p.y - bent) + " " +
              std::to_string(p.z + bent) + "\n";
    }
  }
  return text;
}

double distance(const Vec3& a, const Vec3& b) {
  return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

std::vector<Vec3> atoms_in_row(const std::vector<float>& numbers, std::size_t row,
                               std::size_t atoms) {
  std::vector<Vec3> points;
  for (std::size_t k = 3 * atoms * row; k < 3 * atoms * (row + 1); k += 3)
    points.push_back({numbers.at(k), numbers.at(k + 1), numbers.at(k + 2)});
  return points;
}

TEST(PageOfATrajectory, HasTheParametersThatIdentifyTells) {
  const Formamides folder;
  folder.write("traj.xyz", frames_of_formamides(folder, 9));
  const PageJson data = viewed(folder, {"traj.xyz", "--split", "6", "--no-open"}, "traj.html");
  const PageJson& poses = data["poses"];
  EXPECT_EQ(poses["kind"], "trajectory");
  EXPECT_EQ(poses["shown"], 9);
  EXPECT_EQ(poses["of"], 9);
  EXPECT_EQ(poses["x"], "frame");
  EXPECT_TRUE(poses["y"].is_null());
  std::string table =
      run_command(folder, {"identify", "traj.xyz", "--split", "6", "--frame", "all"}).screen;
  for (std::size_t k = table.find(",\n"); k != std::string::npos; k = table.find(",\n", k))
    table.insert(k + 1, "no remark");
  const std::vector<Row> rows = rows_of(table);
  ASSERT_EQ(rows.size(), 9U);
  for (const std::string name :
       {"frame", "r", "theta", "phi", "alpha", "beta", "gamma", "shortest", "contacts"}) {
    const std::vector<PageJson> values = values_in(poses, name);
    for (std::size_t k = 0; k < rows.size(); ++k)
      EXPECT_NEAR(values[k].get<double>(), number(rows[k], name), 5.1e-7) << name;
  }
}

TEST(PageOfATrajectory, HasItsAtomsInMolecule2sFrame) {
  const Formamides folder;
  folder.write("traj.xyz", frames_of_formamides(folder, 5));
  const PageJson data = viewed(folder, {"traj.xyz", "--split", "6", "--no-open"}, "traj.html");
  const PageJson& poses = data["poses"];
  const auto numbers = numbers_in<float>(poses["positions"]);
  ASSERT_EQ(numbers.size(), 5U * 12U * 3U);
  for (std::size_t row = 0; row < 5; ++row) {
    const std::string frame = std::to_string(row + 1);
    const std::vector<Vec3> atoms = atoms_in_row(numbers, row, 12);
    // The pair of this frame as the other command places it, which has the same own axes.
    EXPECT_LT(farthest_apart(atoms, printed_atoms(folder, {"place", "traj.xyz", "--split", "6",
                                                           "--frame", frame})),
              2e-6);
    const Vec3 centre = atoms[0];
    EXPECT_GT(distance(centre, {}), 1.0) << "molecule 2 is at the origin";
  }
  EXPECT_LT(farthest_apart(atoms_of(data, pose_in(data["pose"])), atoms_in_row(numbers, 0, 12)),
            2e-6);
  EXPECT_EQ(data["command"], "dravo place traj.xyz --split 6");
}

TEST(PageOfATrajectory, HasTheFramesThatWereSelected) {
  const Formamides folder;
  folder.write("traj.xyz", frames_of_formamides(folder, 9));
  const PageJson some = viewed(
      folder, {"traj.xyz", "--split", "6", "--frame", "3:7:2", "-o", "some.html"}, "some.html");
  EXPECT_EQ(values_in(some["poses"], "frame"), (std::vector<PageJson>{3.0, 5.0, 7.0}));
  EXPECT_EQ(some["command"], "dravo place traj.xyz --split 6 --frame 3");
  const PageJson one =
      viewed(folder, {"traj.xyz", "--split", "6", "--frame", "4", "-o", "1.html"}, "1.html");
  EXPECT_TRUE(one["poses"].is_null());
  const PageJson all =
      viewed(folder, {"dimer.xyz", "--split", "6", "--frame", "all", "-o", "all.html"}, "all.html");
  EXPECT_EQ(all["poses"]["shown"], 1);
}

TEST(PageOfATrajectory, LeavesOutWhatCannotBeRead) {
  const Formamides folder;
  const std::string good = folder.read("dimer.xyz");
  std::string bad = good;
  bad.replace(bad.find("\nO "), 3, "\nQ ");
  folder.write("traj.xyz", good + bad + good);
  const Outcome outcome = run_command(folder, {"view", "traj.xyz", "--split", "6", "--no-open"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_TRUE(outcome.messages.starts_with("dravo: left out: frame 2: ")) << outcome.messages;
  EXPECT_NE(outcome.messages.find("dravo: left out 1 of 3 frames\n"), std::string::npos);
  EXPECT_NE(outcome.messages.find("dravo: wrote traj.html: 2 frames\n"), std::string::npos);
}

/// One error, however many frames there are.
TEST(PageOfATrajectory, WithoutASplitIsRefused) {
  const Formamides folder;
  const std::string dimer = folder.read("dimer.xyz");
  folder.write("traj.xyz", dimer + dimer + dimer);
  expect_refusal(
      run_command(folder, {"view", "traj.xyz"}),
      "traj.xyz: no frame has parameters; frame 1: traj.xyz: where molecule 2 begins is not "
      "known; use --split N1, the number of atoms of molecule 1, or --split auto, by bonds",
      folder.outputs());
}

TEST(PageOfATrajectory, OfOtherMoleculesIsRefused) {
  const Formamides folder;
  const std::string dimer = folder.read("dimer.xyz");
  std::string other = dimer;
  other.replace(other.find("\nO "), 3, "\nS ");
  folder.write("traj.xyz", dimer + other);
  expect_refusal(run_command(folder, {"view", "traj.xyz", "--split", "6", "--no-check"}),
                 "traj.xyz: frame 2 has other atoms than frame 1, but a page shows the same two "
                 "molecules in all frames; choose frames by --frame A:B",
                 folder.outputs());
  expect_refusal(run_command(folder, {"view", "traj.xyz", "--split", "6", "--r", "4"}),
                 "--r is for one pair, but traj.xyz has several frames; choose one by --frame K",
                 folder.outputs());
  expect_refusal(run_command(folder, {"view", "traj.xyz", "--split", "6", "--frame", "7:9"}),
                 "traj.xyz: there is no frame 7: the file holds 2 frames", folder.outputs());
  expect_refusal(
      run_command(folder, {"view", "dimer.xyz", "dimer.xyz", "--r", "9", "--frame", "all"}),
      "--frame: of two files a page shows one pair; expected one number, found all",
      folder.outputs());
}

}  // namespace
}  // namespace dravo::test
