/// `param` as a whole, in memory: what it builds it identifies again, and the result does not
/// depend on how the molecules were given.
#include "driver/param.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>
#include <ostream>
#include <random>
#include <tuple>
#include <vector>

#include "common/errors.hpp"
#include "driver/run_stop.hpp"
#include "driver/user_parameters.hpp"
#include "orientation/rotations.hpp"
#include "output/placement.hpp"
#include "support/memory_units.hpp"
#include "support/sample_input.hpp"

namespace dravo {
namespace {

using test::kPlaceable;
using test::MemoryUnits;
using test::parse_geometry;
using test::sample;
using test::SampleInput;
using test::WrittenGeometry;

constexpr double kDegree = 3.14159265358979323846 / 180.0;

/// A call of `param` with tables of its own.
struct ParamCall {
  AtomTable& table() { return table_; }

  void run(const SampleInput& pair, const PoseRadians& user, char mode) {
    run(pair, user, mode, out.units);
  }

  void run(const SampleInput& pair, const PoseRadians& user, char mode, RunUnits& units) {
    parameters = user;
    const auto N = static_cast<std::int32_t>(pair.atoms.size());
    const auto n1 = static_cast<std::int32_t>(pair.n1);
    std::vector<Label> labels;
    for (const auto& atom : pair.atoms) {
      const auto row = static_cast<std::int32_t>(labels.size());
      labels.push_back({atom.label[0], atom.label.size() > 1 ? atom.label[1] : ' '});
      table_.set_position(row, atom.position);
      table_.set_element(row, 0.0, 0.0);
    }
    WorkText work_text{};
    param(work_text, N, n1, labels, table_, r, alpha, beta, gamma, mode, theta, phi,
          parameters.theta, parameters.phi, parameters.alpha, parameters.beta, parameters.gamma,
          parameters.r, units);
    units.finish();
  }

  /// The assembled pair, under whichever of its two names.
  [[nodiscard]] WrittenGeometry pair() const {
    for (const auto& [name, text] : out.folder.files)
      if (name.front() == '[' && name.ends_with(".xyz")) return parse_geometry(text);
    ADD_FAILURE() << "no pair was written";
    return {};
  }

  MemoryUnits out;
  PoseRadians parameters;  ///< in identification mode the Euler angles found
  double r = -1.0, alpha = -1.0, beta = -1.0, gamma = -1.0, theta = -1.0, phi = -1.0;

 private:
  std::unique_ptr<AtomStorage<64>> storage_ = std::make_unique<AtomStorage<64>>();
  AtomTable table_{*storage_};
};

PoseRadians radians_of(const PoseDegrees& degrees) {
  return {degrees.r,
          degrees.theta * kDegree,
          degrees.phi * kDegree,
          degrees.alpha * kDegree,
          degrees.beta * kDegree,
          degrees.gamma * kDegree};
}

SampleInput as_input(const WrittenGeometry& geometry, std::size_t n1) {
  SampleInput pair;
  pair.n1 = n1;
  for (std::size_t i = 0; i < geometry.positions.size(); ++i)
    pair.atoms.push_back({std::to_string(geometry.atomic_numbers[i]), geometry.positions[i]});
  return pair;
}

/// Angle of the rotation that leads from one matrix to the other, degrees.
double rotation_between(const Matrix3& a, const Matrix3& b) {
  double trace = 0.0;
  for (std::size_t k = 0; k < 3; ++k) trace += dot(a.row[k], b.row[k]);
  return std::acos(std::clamp((trace - 1.0) / 2.0, -1.0, 1.0)) / kDegree;
}

/// Difference of two angles in degrees, full turns left aside.
double turn_between(double a, double b) {
  return std::abs(std::remainder(a - b, 2.0 * 3.14159265358979323846)) / kDegree;
}

/// Each molecule turned and shifted at random, its atoms in random order. `order[i]` is the place
/// of atom i in the new file.
struct Reposed {
  SampleInput pair;
  std::vector<std::size_t> order;
};

Reposed reposed(const SampleInput& pair, std::uint64_t seed) {
  std::mt19937_64 random(seed);
  std::vector<std::size_t> order(pair.atoms.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  const auto split = order.begin() + static_cast<std::ptrdiff_t>(pair.n1);
  std::shuffle(order.begin(), split, random);
  std::shuffle(split, order.end(), random);

  std::uniform_real_distribution<double> turn(0.0, 6.28);
  std::uniform_real_distribution<double> shift(-20.0, 20.0);
  Reposed result{pair, order};
  for (const bool first : {true, false}) {
    // One after the other: compilers differ in the order of arguments.
    const double gamma = turn(random), beta = turn(random), alpha = turn(random);
    const Matrix3 rotation = euler_matrix(alpha, beta, gamma);
    const Vec3 translation{shift(random), shift(random), shift(random)};
    for (std::size_t i = first ? 0 : pair.n1; i < (first ? pair.n1 : pair.atoms.size()); ++i)
      result.pair.atoms[order[i]] = {pair.atoms[i].label,
                                     rotation * pair.atoms[i].position + translation};
  }
  return result;
}

struct Placement {
  const char* name;
  PoseDegrees degrees;
  bool has_azimuth;  ///< theta is far enough from 0 and 180 for phi to mean a direction
  bool separate;     ///< beta is far enough from 0 and 180 for alpha and gamma to be two angles
};

void PrintTo(const Placement& placement, std::ostream* out) { *out << placement.name; }

// r, theta, phi, alpha, beta, gamma in Angstrom and degrees.
const std::array<Placement, 8> kPlacements{{
    {"general", {9.0, 62.0, 213.0, 131.0, 47.0, 251.0}, true, true},
    {"random 1", {8.431, 127.46, 303.52, 243.19, 118.77, 17.84}, true, true},
    {"random 2", {10.118, 33.91, 94.67, 309.36, 66.02, 188.25}, true, true},
    {"theta and beta 90", {11.0, 90.0, 359.0, 1.5, 90.0, 1.5}, true, true},
    {"theta 0, beta 90.5", {8.0, 0.049, 77.0, 20.0, 90.5, 300.0}, false, true},
    {"theta 180, beta 89.5", {10.0, 179.99, 140.0, 358.0, 89.5, 180.0}, false, true},
    {"theta 91, beta 0", {9.5, 91.0, 0.049, 75.0, 0.0, 0.09}, true, false},
    {"theta 1, beta 180", {12.0, 1.0, 181.0, 75.0, 179.99, 40.0}, true, false},
}};

class BuildThenIdentify : public ::testing::TestWithParam<std::tuple<const char*, Placement>> {};

TEST_P(BuildThenIdentify, GivesBackTheSixParametersAndLeavesThePairInPlace) {
  const auto& [dimer, placement] = GetParam();
  const SampleInput molecules = reposed(sample(dimer), 11).pair;
  const PoseRadians user = radians_of(placement.degrees);

  ParamCall build;
  build.run(molecules, user, kBuildMode);
  ParamCall identify;
  identify.run(as_input(build.pair(), molecules.n1), {}, 'n');

  EXPECT_NEAR(identify.r, user.r, 1e-3);
  EXPECT_NEAR(identify.theta / kDegree, user.theta / kDegree, 0.01);
  if (placement.has_azimuth) {
    EXPECT_LE(turn_between(identify.phi, user.phi), 0.01);
  } else {
    EXPECT_LE(modulus(cartesian({identify.r, identify.theta, identify.phi}) -
                      cartesian({user.r, user.theta, user.phi})),
              1e-3);
  }

  const PoseRadians& found = identify.parameters;
  if (placement.separate) {
    EXPECT_LE(turn_between(found.alpha, user.alpha), 0.01);
    EXPECT_NEAR(found.beta / kDegree, user.beta / kDegree, 0.01);
    EXPECT_LE(turn_between(found.gamma, user.gamma), 0.01);
  } else {
    // One angle stands for two here. Any pair of them tilts the axis by at most 180 - beta to
    // either side, so the rotations may differ by twice that: 0.02 degrees for the nudged beta.
    EXPECT_LE(rotation_between(euler_matrix(found.alpha, found.beta, found.gamma),
                               euler_matrix(user.alpha, user.beta, user.gamma)),
              0.021);
  }

  // Nothing is applied when parameters are identified.
  EXPECT_EQ(identify.alpha, 0.0);
  EXPECT_EQ(identify.beta, 0.0);
  EXPECT_EQ(identify.gamma, 0.0);
  EXPECT_EQ(identify.out.folder.files.count("input-GEOMETRY.xyz"), 0U);
  const auto before = build.pair().positions;
  const auto after = identify.pair().positions;
  ASSERT_EQ(before.size(), after.size());
  for (std::size_t i = 0; i < before.size(); ++i)
    EXPECT_LE(modulus(before[i] - after[i]), 1e-3) << "atom " << i + 1;
}

INSTANTIATE_TEST_SUITE_P(RealDimers, BuildThenIdentify,
                         ::testing::Combine(::testing::ValuesIn(kPlaceable),
                                            ::testing::ValuesIn(kPlacements)));

class GivenDifferently : public ::testing::TestWithParam<const char*> {};

TEST_P(GivenDifferently, ThePairIsTheSame) {
  const SampleInput molecules = sample(GetParam());
  const PoseRadians user = radians_of({7.5, 71.0, 160.0, 33.0, 108.0, 295.0});

  // The atoms of each pair in the order of the sample.
  std::vector<std::vector<Vec3>> pairs;
  for (const std::uint64_t seed : {1U, 2U, 3U, 4U}) {
    const Reposed given = reposed(molecules, seed);
    ParamCall build;
    build.run(given.pair, user, kBuildMode);
    const auto positions = build.pair().positions;
    ASSERT_EQ(positions.size(), molecules.atoms.size());
    pairs.emplace_back();
    for (const std::size_t place : given.order) pairs.back().push_back(positions[place]);
  }
  for (std::size_t k = 1; k < pairs.size(); ++k)
    for (std::size_t i = 0; i < molecules.atoms.size(); ++i)
      EXPECT_LE(modulus(pairs[0][i] - pairs[k][i]), 1e-3) << "atom " << i + 1;
}

INSTANTIATE_TEST_SUITE_P(RealDimers, GivenDifferently, ::testing::ValuesIn(kPlaceable));

TEST(Param, UserAnglesStayInBuildMode) {
  ParamCall build;
  const PoseRadians user = radians_of({6.5, 84.0, 11.0, 214.0, 152.0, 306.0});
  build.run(sample("formamide-dimer"), user, kBuildMode);
  EXPECT_EQ(build.parameters.alpha, user.alpha);
  EXPECT_EQ(build.alpha, user.alpha);
  EXPECT_EQ(build.beta, user.beta);
  EXPECT_EQ(build.gamma, user.gamma);
}

TEST(Param, PositionOfThePlacedAtomsIsTheOneAskedFor) {
  ParamCall build;
  const PoseRadians user = radians_of({6.5, 84.0, 11.0, 214.0, 152.0, 306.0});
  build.run(sample("formamide-dimer"), user, kBuildMode);
  EXPECT_NEAR(build.r, user.r, 1e-9);
  EXPECT_NEAR(build.theta, user.theta, 1e-9);
  EXPECT_NEAR(build.phi, user.phi, 1e-9);
}

TEST(Param, NumericLabelsAreWrittenAsTheirElements) {
  SampleInput by_number = sample("formamide-dimer");
  for (auto& atom : by_number.atoms)
    atom.label = atom.label == "H" ? "1" : atom.label == "C" ? "6" : atom.label == "N" ? "7" : "8";
  const PoseRadians user = radians_of({3.0, 84.0, 11.0, 214.0, 152.0, 306.0});
  ParamCall numbers;
  numbers.run(by_number, user, kBuildMode);
  ParamCall symbols;
  symbols.run(sample("formamide-dimer"), user, kBuildMode);
  EXPECT_EQ(numbers.out.folder.files, symbols.out.folder.files);
  EXPECT_EQ(numbers.out.screen, symbols.out.screen);
  EXPECT_NE(symbols.out.screen.find(" dist:"), std::string::npos) << "contacts show the symbols";
}

TEST(Param, WarnsOnceAboutUnknownLabels) {
  SampleInput pair = sample("formamide-dimer");
  pair.atoms[3].label = "D";
  pair.atoms[9].label = "D";
  ParamCall build;
  build.run(pair, radians_of({9.0, 84.0, 11.0, 214.0, 152.0, 306.0}), kBuildMode);
  EXPECT_EQ(build.out.warnings,
            "qn-dravo: warning: unknown element labels count as mass 0: \"D\" (atoms 4, 10)\n");
  EXPECT_EQ(build.out.screen.find("warning"), std::string::npos);
  EXPECT_EQ(build.pair().atomic_numbers[3], 0);
}

/// Takes no log.
class FolderWithoutLog final : public OutputFolder {
 public:
  std::unique_ptr<ByteSink> open(const std::string& name) override { throw IoFailure(name); }
  void replace(const std::string& name, std::string_view) override {
    ADD_FAILURE() << name << " was written";
  }
};

TEST(Param, WarnsAboutUnknownLabelsBeforeItOpensTheLog) {
  SampleInput pair = sample("formamide-dimer");
  pair.atoms[3].label = "D";
  std::string screen;
  std::string warnings;
  test::TextSink screen_sink(screen);
  test::TextSink warning_sink(warnings);
  FolderWithoutLog folder;
  RunUnits units(screen_sink, warning_sink, folder);
  ParamCall build;
  EXPECT_THROW(
      build.run(pair, radians_of({9.0, 84.0, 11.0, 214.0, 152.0, 306.0}), kBuildMode, units),
      IoFailure);
  EXPECT_EQ(warnings,
            "qn-dravo: warning: unknown element labels count as mass 0: \"D\" (atom 4)\n");
}

TEST(Param, DistanceThatFitsNoFileNameCreatesNoFile) {
  ParamCall build;
  EXPECT_THROW(build.run(sample("formamide-dimer"),
                         radians_of({9999.95, 84.0, 11.0, 1.0, 1.0, 1.0}), kBuildMode),
               RunStop);
  EXPECT_TRUE(build.out.folder.files.empty());
}

TEST(Param, LogBannerStandsOnceAndAnalysisThreeTimes) {
  ParamCall build;
  build.run(sample("formamide-dimer"), radians_of({9.0, 84.0, 11.0, 1.0, 1.0, 1.0}), kBuildMode);
  const std::string& log = build.out.folder.files.at(kLogFileName);
  const auto count = [&](const std::string& text) {
    std::size_t n = 0;
    for (auto at = log.find(text); at != std::string::npos; at = log.find(text, at + 1)) ++n;
    return n;
  };
  EXPECT_EQ(count("Source of the program:"), 1U);
  EXPECT_EQ(count("  center of mass data \n"), 6U);      // two molecules
  EXPECT_EQ(count("  DIRECTION FLAG TABLE \n"), 6U);     // before and after the reflection
  EXPECT_EQ(count("  ajusted direction table \n"), 1U);  // second cycle alone
  EXPECT_EQ(count("   dados coletados apos analise"), 3U);
  EXPECT_EQ(count("  angulos de Euler obtidos \n"), 1U);
}

}  // namespace
}  // namespace dravo
