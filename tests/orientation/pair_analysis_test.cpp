/// The analysis as a caller with tables of its own uses it.
#include "orientation/pair_analysis.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

#include "common/errors.hpp"
#include "driver/element_table.hpp"
#include "orientation/pair_analysis_log.hpp"
#include "support/atoms.hpp"
#include "support/sample_input.hpp"

namespace dravo {
namespace {

using test::SmallTable;

struct Analysis {
  SmallTable newcoo_and_m, originalcoo_and_m, auxiliar, inicial, auxiliar_paralelas;
  PairOfFrames frames;
  EulerAngles angles;
  RecordStream screen;
  RecordStream log;

  void run(const std::string& dimer) { run(test::sample(dimer)); }

  void run(const test::SampleInput& pair) {
    for (const auto& atom : pair.atoms) newcoo_and_m.add({atom.label, atom.position});
    AnalysisTables tables{newcoo_and_m.table(), originalcoo_and_m.table(), auxiliar.table(),
                          inicial.table(), auxiliar_paralelas.table()};
    const MoleculeSplit split{static_cast<std::int32_t>(pair.atoms.size()),
                              static_cast<std::int32_t>(pair.n1)};
    PairAnalysisLog observer(screen, log);
    const AnalysedPair analysed = analyse_pair(split, tables, observer);
    frames = analysed.frames;
    angles = analysed.found;
  }
};

constexpr std::array kDimers{"formamide-dimer", "acetamide-acrylonitrile"};

TEST(AlignedPair, HasMolecule2OnTheLaboratoryAxes) {
  for (const char* dimer : kDimers) {
    Analysis analysis;
    analysis.run(dimer);
    const MoleculeFrame& molecule2 = analysis.frames[1];
    EXPECT_EQ(molecule2.cm, (Vec3{0.0, 0.0, 0.0}));
    const Vec3 X = molecule2.axis(axis_of_molecule2::X);
    const Vec3 Z = molecule2.axis(axis_of_molecule2::Z);
    EXPECT_NEAR(X.x, 1.0, 1e-6) << dimer;
    EXPECT_NEAR(Z.z, 1.0, 1e-6) << dimer;
  }
}

TEST(AlignedPair, FramesAreRightHanded) {
  for (const char* dimer : kDimers) {
    Analysis analysis;
    analysis.run(dimer);
    const MoleculeFrame& one = analysis.frames[0];
    const MoleculeFrame& two = analysis.frames[1];
    EXPECT_NEAR(dot(cross(one.axis(axis_of_molecule1::x), one.axis(axis_of_molecule1::y)),
                    one.axis(axis_of_molecule1::z)),
                1.0, 1e-9);
    EXPECT_NEAR(dot(cross(two.axis(axis_of_molecule2::X), two.axis(axis_of_molecule2::Y)),
                    two.axis(axis_of_molecule2::Z)),
                1.0, 1e-9);
  }
}

TEST(AlignedPair, AnglesCarryMolecule2AxesOntoThoseOfMolecule1) {
  for (const char* dimer : kDimers) {
    Analysis analysis;
    analysis.run(dimer);
    const Matrix3 A =
        euler_matrix(analysis.angles.alpha, analysis.angles.beta, analysis.angles.gamma);
    const Vec3 turned = A * analysis.frames[1].axis(axis_of_molecule2::Z);
    const Vec3 z = analysis.frames[0].axis(axis_of_molecule1::z);
    EXPECT_LE(modulus(turned - z), 1e-4) << dimer;
  }
}

/// No rotation carries a right-handed frame onto a left-handed one.
TEST(LeftHandedFrame, StopsTheEulerSearchWithItsTextFourTimes) {
  Analysis analysis;
  analysis.run("formamide-dimer");
  PairOfFrames frames = analysis.frames;
  Vec3& tip = frames[0].tips[axis_of_molecule1::x];
  tip = reflected(tip, frames[0].cm);
  RecordStream screen;
  RecordStream log;
  PairAnalysisLog observer(screen, log);
  try {
    find_euler_angles(frames, observer);
    FAIL() << "angles were found";
  } catch (const NoRotationFound& failure) {
    EXPECT_EQ(failure.search(), NoRotationFound::Search::euler);
    write_stop(failure, screen, log);
  }
  std::string expected;
  for (int i = 0; i < 4; ++i) expected += "  ERROR - EULER ANGLES NOT FOUND \n";
  EXPECT_EQ(screen.text(), expected);
  EXPECT_TRUE(log.text().ends_with("\n" + expected));
}

TEST(AlignedPair, IsTheSameWhenTwoThreadsAnalyseTwoPairs) {
  std::array<Analysis, 2> one_by_one;
  std::array<Analysis, 2> together;
  for (std::size_t k = 0; k < 2; ++k) one_by_one[k].run(kDimers[k]);
  std::vector<std::thread> threads;
  for (std::size_t k = 0; k < 2; ++k)
    threads.emplace_back([&together, k] { together[k].run(kDimers[k]); });
  for (std::thread& thread : threads) thread.join();
  for (std::size_t k = 0; k < 2; ++k)
    EXPECT_TRUE(together[k].log.text() == one_by_one[k].log.text()) << kDimers[k];
}

/// Two moments are equal, and the oxygen lies in the plane of their axes. These may have any
/// directions in it, so rounding turns them from one cycle to the next.
std::vector<test::SampleInput::Atom> molecule_with_free_axes() {
  const double carbon = static_cast<double>(element_table()[5].mass);
  const double oxygen = static_cast<double>(element_table()[7].mass);
  constexpr double kOxygen = 1.2;
  const double x = oxygen * kOxygen / (2.0 * carbon);
  const double y = std::sqrt(oxygen * kOxygen * kOxygen / (2.0 * carbon) + x * x);
  return {{"O", {kOxygen, 0.0, 0.0}},
          {"C", {-x, y, 0.0}},
          {"C", {-x, -y, 0.0}},
          {"C", {0.0, 0.0, 2.5}},
          {"C", {0.0, 0.0, -2.5}}};
}

/// Flags of the six axes, molecule 1 first, one row for each table of a log.
std::vector<std::array<int, 6>> flag_tables(const std::string& log) {
  std::vector<std::array<int, 6>> tables;
  std::size_t from = 0;
  while (true) {
    std::array<int, 6> flags{};
    for (std::size_t k = 0; k < flags.size(); ++k) {
      const std::string label = "eigenvector " + std::to_string(k + 1) + " flags:  ";
      const std::size_t at = log.find(label, from);
      if (at == std::string::npos) return tables;
      from = at + label.size();
      flags[k] = std::stoi(log.substr(from, 12));
    }
    tables.push_back(flags);
  }
}

TEST(AlignedPair, AxisThatWasToldFromItsOppositeOnceStaysSo) {
  constexpr std::size_t kTablesOfACycle = 2;
  bool any_later_cycle = false;
  for (int pose = 0; pose < 24; ++pose) {
    test::SampleInput pair = test::sample("formamide-dimer");
    pair.atoms.erase(pair.atoms.begin(), pair.atoms.begin() + static_cast<std::ptrdiff_t>(pair.n1));
    const Matrix3 turn = euler_matrix(0.3 + 0.7 * pose, 0.2 + 0.1 * pose, 1.1 * pose);
    std::vector<test::SampleInput::Atom> molecule1 = molecule_with_free_axes();
    for (auto& atom : molecule1) atom.position = turn * atom.position + Vec3{5.0, 6.0, 7.0};
    pair.atoms.insert(pair.atoms.begin(), molecule1.begin(), molecule1.end());
    pair.n1 = molecule1.size();
    Analysis analysis;
    try {
      analysis.run(pair);
    } catch (const Error&) {
      // Fewer than two axes of molecule 1 have a direction, or the search finds no rotation.
    }
    const auto tables = flag_tables(analysis.log.text());
    for (std::size_t table = 1; table < tables.size(); ++table)
      for (std::size_t k = 0; k < 6; ++k)
        EXPECT_GE(tables[table][k], tables[table - 1][k]) << "pose " << pose << ", axis " << k + 1;
    any_later_cycle = any_later_cycle || tables.size() > kTablesOfACycle;
  }
  EXPECT_TRUE(any_later_cycle);
}

}  // namespace
}  // namespace dravo
