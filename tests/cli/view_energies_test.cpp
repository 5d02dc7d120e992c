/// Pages of scans with energies and of dockings.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/docked.hpp"
#include "support/view_pages.hpp"

namespace dravo::test {
namespace {

PageJson viewed(const TemporaryFolder& folder, const std::string& name) {
  const Outcome outcome =
      run_command(folder, {"view", name, "-o", "page.html", "--overwrite", "--no-open"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  return data_of(outcome.files.at("page.html"));
}

TEST(PageOfAScanWithEnergies, IsColouredByThem) {
  const Waters folder;
  (void)folder.made({"--r", "1:5:0.25", "--theta", "90", "--phi", "0", "--alpha", "0", "--beta",
                     "90", "--gamma", "0", "--exact", "--energy", "gfnff"});
  const PageJson poses = viewed(folder, "scan")["poses"];
  EXPECT_EQ(poses["colour"], kEnergy);
  EXPECT_EQ(column_named(poses, kEnergy)["unit"], "kcal/mol");
  const std::vector<Row> rows = rows_of(folder.read("scan.csv"));
  const std::vector<PageJson> energies = values_in(poses, kEnergy);
  const std::vector<PageJson> statuses = values_in(poses, "status");
  ASSERT_EQ(energies.size(), rows.size());
  EXPECT_GT(count_of(rows, "clash"), 0U);
  EXPECT_GT(count_of(rows, "ok"), 0U);
  for (std::size_t k = 0; k < rows.size(); ++k) {
    EXPECT_EQ(statuses[k], rows[k].at("status"));
    EXPECT_EQ(energies[k].is_null(), rows[k].at(kEnergy).empty());
    if (!energies[k].is_null()) {
      EXPECT_EQ(energies[k].get<float>(), std::stof(rows[k].at(kEnergy)));
    }
  }
  const Outcome again = run_with_engines(
      folder, {"energy", "scan", "--energy", "gfn2", "--poses", "9:17", "--quiet"});
  ASSERT_EQ(again.status, 0) << again.messages;
  EXPECT_EQ(viewed(folder, "scan-gfn2")["poses"]["colour"], "e_int_gfn2_kcal_mol");
}

TEST(PageOfAScanWithEnergies, IsColouredByDistanceWhereAllPosesClash) {
  const Waters folder;
  (void)folder.made({"--r", "0.5,1", "--theta", "90", "--phi", "0", "--alpha", "0", "--beta", "90",
                     "--gamma", "0", "--exact", "--energy", "gfnff"});
  EXPECT_EQ(viewed(folder, "scan")["poses"]["colour"], "shortest");
}

TEST(PageOfADocking, ListsItsMinimaByRank) {
  const WaterMolecules folder;
  ASSERT_EQ(run_dock(folder, kSomeStarts + Words{"--quiet"}).status, 0);
  const PageJson data = viewed(folder, "dock");
  const PageJson& poses = data["poses"];
  EXPECT_EQ(poses["kind"], "dock");
  EXPECT_EQ(poses["x"], "rank");
  EXPECT_TRUE(poses["y"].is_null());
  EXPECT_EQ(poses["colour"], "e_int_gfn2_kcal_mol");
  const std::vector<Row> rows = rows_of(folder.read("dock.csv"));
  const std::vector<Frame> frames = frames_of(folder.read("dock.xyz"));
  ASSERT_EQ(poses["shown"].get<std::size_t>(), rows.size());
  std::vector<PoseDegrees> places(rows.size());
  for (const PoseParameter& parameter : kPoseParameters) {
    const std::vector<PageJson> values = values_in(poses, parameter.name);
    for (std::size_t k = 0; k < rows.size(); ++k) {
      EXPECT_EQ(values[k], std::stod(rows[k].at(parameter.name)));
      places[k].*parameter.value = values[k];
    }
  }
  for (std::size_t k = 0; k < rows.size(); ++k)
    EXPECT_LT(farthest_apart(atoms_of(data, places[k]), atoms_in(frames[k])), 1e-8);
  EXPECT_EQ(values_in(poses, "refined")[0], rows[0].at("refined"));
  EXPECT_EQ(data["command"], "dravo place dock.xyz");
}

/// By a command that draws one of them: poses of a docking are in its frames.
TEST(PictureOfADocking, IsRefused) {
  const WaterMolecules folder;
  ASSERT_EQ(run_dock(folder, kSomeStarts + Words{"--quiet"}).status, 0);
  expect_refusal(
      run_command(folder, {"draw", "dock", "-o", "dock.svg"}),
      "dock is a docking, and a picture shows one pose: dravo draw dock.xyz --frame K ...; "
      "or all poses in a .json for chemiscope",
      folder.outputs());
  EXPECT_EQ(run_command(folder, {"draw", "dock.xyz", "--frame", "1", "-o", "dock.svg"}).status, 0);
}

TEST(PartOfADocking, IsRefused) {
  const WaterMolecules folder;
  ASSERT_EQ(run_dock(folder, kSomeStarts + Words{"--quiet", "--shard", "1/2"}).status, 0);
  expect_refusal(run_command(folder, {"view", "dock-1-of-2"}),
                 "dock-1-of-2: is a part of a docking; dravo merge makes the minima of all parts",
                 folder.outputs());
}

}  // namespace
}  // namespace dravo::test
