/// The poses that a scan of unique poses leaves, against a comparison of all poses with all others.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "scan/compared_poses.hpp"
#include "support/made_molecules.hpp"
#include "support/molecule_sets.hpp"

namespace dravo::test {
namespace {

/// As exact as poses are told apart.
constexpr double kTolerance = 0.002;

Molecule argon() { return {{"Ar"}, {{0, 0, 0}}}; }

Molecule named(const std::string& name) { return name == "argon" ? argon() : made(name).molecule; }

Placer exact_placer(const Molecule& one, const Molecule& two) {
  return Placer(Pair(one, two), {.placing = Placing::exact});
}

std::int64_t counted(const std::vector<EqualOnes>& all) {
  std::int64_t sum = 0;
  for (const EqualOnes& ones : all) sum += ones.count;
  return sum;
}

/// Both lists are the same; the first difference is shown with its pose.
void expect_same(const std::vector<EqualOnes>& found, const std::vector<EqualOnes>& expected,
                 const Poses& poses, const std::string& where) {
  EXPECT_EQ(counted(expected), poses.size()) << "every pose is equal to one";
  EXPECT_EQ(found.size(), expected.size()) << where;
  for (std::size_t k = 0; k < std::min(found.size(), expected.size()); ++k) {
    if (found[k] == expected[k]) continue;
    std::vector<PoseDegrees> pose(1);
    poses.fill(std::min(found[k].first, expected[k].first) - 1, pose);
    const PoseDegrees& p = pose[0];
    ADD_FAILURE() << where << ": pose " << found[k].first << " stands for " << found[k].count
                  << ", expected " << expected[k].first << " for " << expected[k].count << "; r "
                  << p.r << " theta " << p.theta << " phi " << p.phi << " alpha " << p.alpha
                  << " beta " << p.beta << " gamma " << p.gamma;
    return;
  }
}

// --- pairs of all shapes ------------------------------------------------------------------------

struct TwoNames {
  const char* one;
  const char* two;
};

void PrintTo(const TwoNames& pair, std::ostream* out) { *out << pair.one << " on " << pair.two; }

class EqualPosesOf : public ::testing::TestWithParam<TwoNames> {};

/// Poles, no distance at all, full turns beside none, angles that no rotation makes equal, and the
/// same angles within a turn and beyond it.
const std::vector<PoseAxes> kGrids{
    {"0,3.1", "0:180:45", "0:360:60", "0,90,180,360", "0,60,180", "0,90,360"},
    {"3.1,0,3.1", "0,70,110,180", "0:300:60,30", "10,190,350", "0,90,180", "0,60,120,300"},
    {"2.5", "35,90,145", "20,160,200,340,20", "0,45,180,225", "25,155", "15,165,195,345"},
    {"3.1", "0,70,180", "-60:420:60,-1e-20", "-90,0,90,270", "0,90,180", "-300,60,120"},
};

TEST_P(EqualPosesOf, APairAreThoseThatAComparisonFinds) {
  const Placer placer = exact_placer(named(GetParam().one), named(GetParam().two));
  for (std::size_t k = 0; k < kGrids.size(); ++k) {
    const Poses poses = Poses::grid(kGrids[k]);
    const auto expected = equal_ones_by_comparison(placer, poses, kTolerance);
    EXPECT_LT(expected.size(), static_cast<std::size_t>(poses.size()));
    expect_same(equal_ones_by_scan(placer, poses), expected, poses,
                "grid " + std::to_string(k + 1));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, EqualPosesOf,
    ::testing::Values(TwoNames{"water", "water"}, TwoNames{"ammonia", "carbon dioxide"},
                      TwoNames{"carbon dioxide", "water"},
                      TwoNames{"carbon dioxide", "carbon dioxide"}, TwoNames{"argon", "water"},
                      TwoNames{"water", "argon"}, TwoNames{"argon", "carbon dioxide"},
                      TwoNames{"carbon dioxide", "argon"}, TwoNames{"hydrogen cyanide", "argon"},
                      TwoNames{"argon", "argon"}, TwoNames{"methane", "benzene"}));

// --- benzene dimers -----------------------------------------------------------------------------

/// 22,750 poses.
const PoseAxes kLargeGrid{"3.6,5", "0:180:45", "0:360:30", "0:360:60", "0:180:45", "0:180:45"};

TEST(EqualPoses, OfTheSymmetricBenzeneDimerAreThoseThatAComparisonFinds) {
  const Molecule& benzene = made("benzene").molecule;
  const Placer placer = exact_placer(benzene, benzene);
  const Poses poses = Poses::grid(kLargeGrid);
  const auto expected = equal_ones_by_comparison(placer, poses, kTolerance);
  EXPECT_LT(expected.size(), 2000U);
  expect_same(equal_ones_by_scan(placer, poses), expected, poses, "benzene");
}

TEST(EqualPoses, OfThePublishedBenzeneDimerAreThoseThatAComparisonFinds) {
  const NamedPair dimer = s22("Benzene_dimer_parallel_displaced");
  const Placer placer = exact_placer(dimer.molecule1(), dimer.molecule2());
  const Poses poses = Poses::grid(kLargeGrid);
  expect_same(equal_ones_by_scan(placer, poses),
              equal_ones_by_comparison(placer, poses, kTolerance), poses, "benzene");
}

}  // namespace
}  // namespace dravo::test
