/// The built program on the bundled samples.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

#include "driver/element_table.hpp"
#include "end_to_end/program.hpp"

namespace dravo::test {
namespace {

double mass_of(int atomic_number) {
  return static_cast<double>(element_table()[static_cast<std::size_t>(atomic_number - 1)].mass);
}

Vec3 centre(const WrittenGeometry& pair, std::size_t begin, std::size_t end) {
  double mass = 0.0;
  Vec3 moment;
  for (std::size_t i = begin; i < end; ++i) {
    const double m = mass_of(pair.atomic_numbers[i]);
    mass += m;
    moment = moment + m * pair.positions[i];
  }
  return (1.0 / mass) * moment;
}

/// A run that ends with a pair, and what is known of it without running the program.
struct CompleteRun {
  const char* sample;
  const char* stem;  ///< parameters as the file names carry them
  bool contacts;     ///< whether the pair has atoms closer than 1.9 Angstrom
};

void PrintTo(const CompleteRun& run, std::ostream* out) { *out << run.sample; }

// The stacked and the hydrogen-bonded dimers below are asked to stand closer than their size
// allows.
constexpr std::array kCompleteRuns{
    CompleteRun{"acetamide-acrylonitrile", "[0004.5-060-120]-(030-070-200)", false},
    CompleteRun{"adenine-thymine-stack", "[0003.8-007-031]-(027-031-053)", true},
    CompleteRun{"dimethyl-sulfoxide-ethanol", "[0005.0-090-270]-(350-010-015)", true},
    CompleteRun{"formamide-dimer", "[0006.5-084-011]-(214-152-306)", false}};

class Assembly : public ::testing::TestWithParam<CompleteRun> {
 protected:
  void SetUp() override {
    given = sample(GetParam().sample);
    outcome = run_on(file_text(sample_path(GetParam().sample)));
    const std::string suffix =
        GetParam().contacts ? ")-SHORT-CONTACTS-IDENTIFED.xyz" : ")-QN-DRAVO.xyz";
    const std::string stem = GetParam().stem;
    pair_name = stem.substr(0, stem.size() - 1) + suffix;
    ASSERT_EQ(outcome.files.count(pair_name), 1U) << outcome.screen;
    pair = parse_geometry(outcome.files.at(pair_name));
  }

  [[nodiscard]] double shortest_contact() const {
    double shortest = 1e300;
    for (std::size_t i = 0; i < given.n1; ++i)
      for (std::size_t k = given.n1; k < pair.positions.size(); ++k)
        shortest = std::min(shortest, modulus(pair.positions[i] - pair.positions[k]));
    return shortest;
  }

  SampleInput given;
  Outcome outcome;
  std::string pair_name;
  WrittenGeometry pair;
};

TEST_P(Assembly, EndsWithStatusZeroAndNoMessage) {
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages, "");
}

TEST_P(Assembly, WritesOnePairOfFilesTheGeometryAndTheLog) {
  const std::string stem(GetParam().stem);
  const std::string drawing =
      stem.substr(0, stem.size() - 1) +
      (GetParam().contacts ? ")-SHORT-CONTACTS-IDENTIFIED.bild" : ")-QN-DRAVO-UCSF-Chimera.bild");
  EXPECT_EQ(names_of(outcome),
            (std::set<std::string>{pair_name, drawing, "input-GEOMETRY.xyz", kLog}));
}

TEST_P(Assembly, ContactsAreTheOnesOfTheWrittenPair) {
  const bool reported = outcome.screen.find("CHECK THE SUPRAMOLECULAR SYSTEM") != std::string::npos;
  EXPECT_EQ(reported, GetParam().contacts);
  if (GetParam().contacts) {
    EXPECT_LE(shortest_contact(), 1.9);
  } else {
    EXPECT_GT(shortest_contact(), 1.9);
  }
}

TEST_P(Assembly, KeepsTheDistancesWithinEachMolecule) {
  ASSERT_EQ(pair.positions.size(), given.atoms.size());
  for (std::size_t i = 0; i < pair.positions.size(); ++i)
    for (std::size_t k = 0; k < i; ++k) {
      if ((i < given.n1) != (k < given.n1)) continue;
      EXPECT_NEAR(modulus(pair.positions[i] - pair.positions[k]),
                  modulus(given.atoms[i].position - given.atoms[k].position), 1e-6);
    }
}

TEST_P(Assembly, PutsMolecule2AtTheOriginAndMolecule1WhereTheUserSaid) {
  const double r = std::stod(given.parameters[0]);
  const double theta = std::stod(given.parameters[1]) * 3.14159265358979 / 180.0;
  const double phi = std::stod(given.parameters[2]) * 3.14159265358979 / 180.0;
  EXPECT_LE(modulus(centre(pair, given.n1, pair.positions.size())), 1e-6);
  const Vec3 asked{r * std::sin(theta) * std::cos(phi), r * std::sin(theta) * std::sin(phi),
                   r * std::cos(theta)};
  EXPECT_LE(modulus(centre(pair, 0, given.n1) - asked), 1e-6);
}

TEST_P(Assembly, LaysMolecule2OnTheLaboratoryAxes) {
  // Off-diagonal sums of the inertia tensor vanish; Y has the smallest moment and Z the largest.
  double xx = 0.0, yy = 0.0, zz = 0.0, xy = 0.0, xz = 0.0, yz = 0.0;
  for (std::size_t i = given.n1; i < pair.positions.size(); ++i) {
    const double m = mass_of(pair.atomic_numbers[i]);
    const Vec3& p = pair.positions[i];
    xx += m * (p.y * p.y + p.z * p.z);
    yy += m * (p.x * p.x + p.z * p.z);
    zz += m * (p.x * p.x + p.y * p.y);
    xy += m * p.x * p.y;
    xz += m * p.x * p.z;
    yz += m * p.y * p.z;
  }
  for (const double product : {xy, xz, yz}) EXPECT_LE(std::abs(product / zz), 1e-5);
  EXPECT_LT(yy, xx);
  EXPECT_LT(xx, zz);
}

TEST_P(Assembly, InputGeometryIsThePairWithATrailer) {
  const std::string& written = outcome.files.at("input-GEOMETRY.xyz");
  const std::string& final_pair = outcome.files.at(pair_name);
  const std::string n1 = std::to_string(given.n1);
  EXPECT_EQ(written, final_pair + "   \n" + std::string(12 - n1.size(), ' ') + n1 + "\n   \n n\n");
}

TEST_P(Assembly, DrawingHas23LinesAndStartsMolecule1AtItsCentre) {
  for (const auto& [name, text] : outcome.files) {
    if (!name.ends_with(".bild")) continue;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 23);
    const std::size_t sphere = text.find(".sphere", text.find("molecule 1"));
    ASSERT_NE(sphere, std::string::npos);
    const Vec3 drawn{std::stod(text.substr(sphere + 7, 8)), std::stod(text.substr(sphere + 15, 8)),
                     std::stod(text.substr(sphere + 23, 8))};
    EXPECT_LE(modulus(drawn - centre(pair, 0, given.n1)), 0.001);  // three decimals
  }
}

INSTANTIATE_TEST_SUITE_P(Samples, Assembly, ::testing::ValuesIn(kCompleteRuns));

class EverySample : public ::testing::TestWithParam<const char*> {};

TEST_P(EverySample, ASecondRunInTheSameFolderReplacesTheFirst) {
  const TemporaryFolder folder;
  folder.write(kInput, file_text(sample_path(GetParam())));
  folder.write(kLog, std::string(1000000, 'x'));
  folder.write("input-GEOMETRY.xyz", "an older result\n");
  const Outcome first = run_in(folder);
  const Outcome second = run_in(folder);
  EXPECT_EQ(first.screen, second.screen);
  EXPECT_TRUE(first.files == second.files);
  EXPECT_EQ(first.files.at(kLog).find('x' + std::string(100, 'x')), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Samples, EverySample, ::testing::ValuesIn(kSamples));

TEST(Screen, FormamideRunPrintsBannerPositionAndRotation) {
  // The whole standard output of the bundled formamide dimer: banner, then r = 6.5, theta = 84,
  // phi = 11 and the Euler angles 214, 152, 306 of its input file.
  const std::string blank = "   \n";
  const std::string expected = blank + blank + blank + "  QN-DRAVO Version 1.14 \n" + blank +
                               "  QN-DRAVO Developers \n" + "  Please cite the QN-DRAVO manual\n" +
                               blank + blank + "  Dravo Placement of Molecular Partners \n" +
                               blank + "  POSITION:[r, theta(polar angle), phi(azimuth angle)]\n" +
                               blank + "    6.5  84  11\n" + blank +
                               "  ROTATION: (alpha, beta, and gamma Euler angles)\n" + blank +
                               " 214 152 306\n" + blank + blank + blank;
  EXPECT_EQ(run_on(file_text(sample_path("formamide-dimer"))).screen, expected);
}

TEST(Screen, UnknownLabelsAreNamedOnStandardErrorOnly) {
  SampleInput pair = sample("formamide-dimer");
  pair.atoms[5].label = "D";
  const Outcome outcome = run_on(pair.text());
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages,
            "qn-dravo: warning: unknown element labels count as mass 0: \"D\" (atom 6)\n");
  for (const auto& [name, text] : outcome.files)
    EXPECT_EQ(text.find("warning"), std::string::npos) << name;
  EXPECT_EQ(outcome.screen.find("warning"), std::string::npos);
}

}  // namespace
}  // namespace dravo::test
