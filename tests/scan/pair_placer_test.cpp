#include "scan/pair_placer.hpp"

#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <map>
#include <memory>
#include <string>

#include "common/errors.hpp"
#include "driver/input_stops.hpp"
#include "driver/output_names.hpp"
#include "driver/pair_files.hpp"
#include "driver/run.hpp"
#include "driver/user_parameters.hpp"
#include "output/short_contacts.hpp"
#include "scan/plans.hpp"
#include "scan/random_pose.hpp"
#include "support/memory_units.hpp"
#include "support/sample_input.hpp"

namespace dravo::test {
namespace {

using Files = std::map<std::string, std::string>;

constexpr std::array kPairs{"formamide-dimer", "adenine-thymine-stack", "acetamide-acrylonitrile",
                            "dimethyl-sulfoxide-ethanol"};

std::string shortest_text(double value) {
  std::array<char, 32> digits{};
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  return {digits.data(), end};
}

PoseRadians radians_of(const PoseDegrees& degrees) {
  RecordStream screen;
  return prepare_parameters(degrees, screen);
}

/// Geometry and drawing that a whole run writes.
Files files_of_run(SampleInput pair, const PoseDegrees& degrees) {
  for (std::size_t k = 0; k < pair.parameters.size(); ++k)
    pair.parameters[k] = shortest_text(degrees.*kPoseParameters[k].value);
  // The units hold blocks of text; a test has a small stack.
  const auto out = std::make_unique<MemoryUnits>();
  run(pair.text(), out->units);
  out->units.finish();
  Files files = out->folder.files;
  files.erase("input-GEOMETRY.xyz");
  files.erase(kLogFileName);
  return files;
}

/// The same from a pair that is analysed once.
Files files_of_placer(const PairPlacer& placer, const PoseDegrees& degrees) {
  const PoseRadians radians = radians_of(degrees);
  OwnedTable placed(placer.split().N);
  const Placement placement = placer.place(radians, placed.table());
  const bool short_contacts = placer.survey(placed.table(), false).contacts > 0;
  RecordStream screen;
  const PairFiles files = pair_files(build_output_names(radians, screen), short_contacts,
                                     placer.split(), placed.table(), placement);
  return {{files.names.geometry, files.geometry.text()},
          {files.names.drawing, files.drawing.text()}};
}

class PairPlacerOf : public ::testing::TestWithParam<const char*> {};

TEST_P(PairPlacerOf, PlacesAsARunDoes) {
  const SampleInput input = sample(GetParam());
  const PairPlacer placer(pair_of(input));
  std::size_t with_contacts = 0;
  for (const PoseDegrees& degrees :
       {PoseDegrees{9.0, 62.0, 213.0, 131.0, 47.0, 251.0},        // apart
        PoseDegrees{2.5, 127.46, 303.52, 243.19, 118.77, 17.84},  // short contacts
        PoseDegrees{3.4, 0.0, 0.0, 0.0, 0.0, 200.0},              // singular values
        PoseDegrees{0.0, 180.0, 360.0, 360.0, 180.0, 360.0},      // one inside the other
        PoseDegrees{9999.9, 90.0, 0.0, 90.0, 90.0, 90.0}}) {
    const Files files = files_of_run(input, degrees);
    ASSERT_EQ(files.size(), 2U);
    EXPECT_EQ(files_of_placer(placer, degrees), files);
    for (const auto& [name, text] : files)
      if (name.find("SHORT-CONTACTS") != std::string::npos) ++with_contacts;
  }
  EXPECT_GE(with_contacts, 4U);
}

TEST_P(PairPlacerOf, KnowsWhereMoleculesBeginToTouch) {
  const PairPlacer placer(pair_of(sample(GetParam())));
  OwnedTable placed(placer.split().N);
  const auto survey_at = [&](PoseRadians radians, double r) {
    radians.r = r;
    placer.place(radians, placed.table());
    return placer.survey(placed.table(), false);
  };
  for (std::int64_t k = 0; k < 200; ++k) {
    const PoseRadians radians = radians_of(random_pose(5, k));
    const double touching = placer.touching_distance(radians);
    ASSERT_GT(touching, 0.0);
    EXPECT_NEAR(survey_at(radians, touching).shortest, kShortDistance, 1e-9);
    EXPECT_LE(survey_at(radians, touching).contacts, 1);
    EXPECT_EQ(survey_at(radians, touching - 1e-6).contacts, 1);
    for (const double beyond : {1e-6, 0.01, 0.1, 0.5, 1.0, 2.0, 4.0})
      EXPECT_EQ(survey_at(radians, touching + beyond).contacts, 0) << k << ": " << beyond;
  }
}

TEST_P(PairPlacerOf, LooksNotAtTheDistanceToFindTheTouch) {
  const PairPlacer placer(pair_of(sample(GetParam())));
  PoseRadians radians = radians_of(random_pose(5, 1));
  const double touching = placer.touching_distance(radians);
  for (const double r : {0.1, 5.0, 9999.0}) {
    radians.r = r;
    EXPECT_EQ(placer.touching_distance(radians), touching);
  }
}

TEST_P(PairPlacerOf, SurveysWhatTheContactSearchLists) {
  const PairPlacer placer(pair_of(sample(GetParam())));
  OwnedTable placed(placer.split().N);
  std::int64_t contacts = 0;
  for (std::int64_t k = 0; k < 100; ++k) {
    PoseDegrees degrees = random_pose(6, k);
    degrees.r = 3.0;
    placer.place(radians_of(degrees), placed.table());
    const auto listed = find_short_contacts(placed.table(), placer.split());
    EXPECT_EQ(placer.survey(placed.table(), false).contacts,
              static_cast<std::int64_t>(listed.size()));
    contacts += placer.survey(placed.table(), false).contacts;
  }
  EXPECT_GT(contacts, 100);
}

TEST_P(PairPlacerOf, PlacesAgainAsBefore) {
  const PairPlacer placer(pair_of(sample(GetParam())));
  const PoseDegrees degrees{4.5, 50.0, 60.0, 70.0, 80.0, 90.0};
  const Files first = files_of_placer(placer, degrees);
  (void)files_of_placer(placer, {6.0, 10.0, 20.0, 30.0, 40.0, 50.0});
  EXPECT_EQ(files_of_placer(placer, degrees), first);
}

INSTANTIATE_TEST_SUITE_P(RealPairs, PairPlacerOf, ::testing::ValuesIn(kPairs));

TEST(PairPlacer, KeepsLabelsAndDivision) {
  const Pair pair = pair_of(sample("acetamide-acrylonitrile"));
  const PairPlacer placer(pair);
  EXPECT_EQ(placer.labels(), pair.labels());
  EXPECT_EQ(placer.split().N, pair.size());
  EXPECT_EQ(placer.split().n1, pair.n1());
}

TEST(PairPlacer, RefusesAPairWithASymmetricMoleculeAsQnDravoDoes) {
  // Methane, a spherical top, beside formamide.
  SampleInput input = sample("formamide-dimer");
  input.atoms.erase(input.atoms.begin(),
                    input.atoms.begin() + static_cast<std::ptrdiff_t>(input.n1));
  constexpr double a = 0.629;
  const std::array<SampleInput::Atom, 5> methane{{{"C", {0.0, 0.0, 0.0}},
                                                  {"H", {a, a, a}},
                                                  {"H", {a, -a, -a}},
                                                  {"H", {-a, a, -a}},
                                                  {"H", {-a, -a, a}}}};
  input.atoms.insert(input.atoms.begin(), methane.begin(), methane.end());
  input.n1 = methane.size();
  const Pair pair = pair_of(input);
  EXPECT_THROW(PairPlacer(pair, {.placing = Placing::as_qn_dravo}), NoUniqueFrame);
  EXPECT_TRUE(PairPlacer(pair).exact());
}

}  // namespace
}  // namespace dravo::test
