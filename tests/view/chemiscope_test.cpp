/// Poses as chemiscope reads them.
#include "view/chemiscope.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "common/atom_table.hpp"

namespace dravo::test {
namespace {

using Json = nlohmann::json;

Label label_of(const std::string& symbol) {
  return {symbol[0], symbol.size() > 1 ? symbol[1] : ' '};
}

/// HCN along its own z, and an argon atom in the frame of molecule 2.
ViewData hcn_and_argon() {
  ViewData data;
  data.title = "hcn.xyz";
  data.molecules[0] = {.labels = {label_of("H"), label_of("C"), label_of("N")},
                       .positions = {{0, 0, -1.6}, {0, 0, -0.5}, {0, 0, 0.6}},
                       .shape = Shape::linear};
  data.molecules[1] = {.labels = {label_of("Ar")}, .positions = {{}}, .shape = Shape::atom};
  data.pose = {.r = 4, .theta = 90, .phi = 90, .alpha = 0, .beta = 90, .gamma = 180};
  return data;
}

ViewColumn column(const std::string& name, std::vector<double> numbers) {
  return {.name = name, .unit = "", .exact = true, .numbers = std::move(numbers)};
}

/// The same pair at three distances.
ViewData scanned(std::vector<double> energies) {
  ViewData data = hcn_and_argon();
  ViewPoses poses;
  poses.kind = "scan";
  poses.of = 3;
  poses.x = "r";
  poses.colour = "e_int_kcal_mol";
  poses.parameters = {"r", "theta", "phi", "alpha", "beta", "gamma"};
  poses.columns = {column("r", {3, 4, 5}),        column("theta", {90, 90, 90}),
                   column("phi", {90, 90, 90}),   column("alpha", {0, 0, 0}),
                   column("beta", {90, 90, 90}),  column("gamma", {180, 180, 180}),
                   column("shortest", {3, 4, 5}), column("e_int_kcal_mol", std::move(energies))};
  data.poses = std::move(poses);
  return data;
}

Json json_of(const ViewData& data) { return Json::parse(chemiscope_of(data)); }

/// Molecule 1 is on Y, and its z points along X: z goes to polar angle beta, azimuth 180 - gamma.
TEST(Chemiscope, HasThePairInTheFrameOfMolecule2) {
  const Json json = json_of(hcn_and_argon());
  const Json& structure = json["structures"].at(0);
  EXPECT_EQ(structure["size"], 4);
  EXPECT_EQ(structure["names"], Json({"H", "C", "N", "Ar"}));
  const std::vector<double> x{-1.6, -0.5, 0.6, 0}, y{4, 4, 4, 0};
  for (std::size_t k = 0; k < x.size(); ++k) {
    EXPECT_NEAR(structure["x"][k], x[k], 1e-12);
    EXPECT_NEAR(structure["y"][k], y[k], 1e-12);
    EXPECT_NEAR(structure["z"][k], 0.0, 1e-12);
  }
  EXPECT_EQ(json["properties"]["r"]["values"], Json({4.0}));
  EXPECT_EQ(json["properties"]["gamma"]["target"], "structure");
}

/// A linear molecule has no x and y.
TEST(Chemiscope, HasBothFramesAsArrows) {
  const Json json = json_of(hcn_and_argon());
  std::vector<std::string> names;
  for (const auto& [name, shape] : json["shapes"].items()) names.push_back(name);
  EXPECT_EQ(names, (std::vector<std::string>{"X", "Y", "Z", "z"}));
  const Json& z = json["shapes"]["z"];
  EXPECT_EQ(z["kind"], "arrow");
  const Json& arrow = z["parameters"]["structure"].at(0);
  EXPECT_NEAR(arrow["position"][1], 4.0, 1e-12);
  EXPECT_GT(arrow["vector"][0], 0.6);
  EXPECT_NEAR(arrow["vector"][1], 0.0, 1e-12);
}

TEST(Chemiscope, HasTheColumnsOfTheTable) {
  const Json json = json_of(scanned({-1, -2, -0.5}));
  EXPECT_EQ(json["structures"].size(), 3U);
  EXPECT_NEAR(json["structures"][2]["y"][0], 5.0, 1e-12);
  EXPECT_EQ(json["shapes"]["X"]["parameters"]["structure"].size(), 3U);
  EXPECT_EQ(json["properties"]["e_int_kcal_mol"]["values"], Json({-1.0, -2.0, -0.5}));
  EXPECT_EQ(json["settings"]["map"]["color"]["property"], "e_int_kcal_mol");
  EXPECT_EQ(json["settings"]["map"]["y"]["property"], "e_int_kcal_mol");
}

/// JSON has no number for an energy that failed, and a map of words would stay empty.
TEST(Chemiscope, HasAMapOfNumbersWhereEnergiesFailed) {
  const Json json = json_of(scanned({-1, std::numeric_limits<double>::quiet_NaN(), -0.5}));
  EXPECT_EQ(json["properties"]["e_int_kcal_mol"]["values"], Json({"-1", "", "-0.5"}));
  EXPECT_EQ(json["settings"]["map"]["x"]["property"], "r");
  EXPECT_EQ(json["settings"]["map"]["y"]["property"], "shortest");
  EXPECT_EQ(json["settings"]["map"]["color"]["property"], "shortest");
}

}  // namespace
}  // namespace dravo::test
