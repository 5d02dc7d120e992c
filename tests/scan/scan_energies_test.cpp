/// Energies of the poses of a scan, from an engine whose energies one can check by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "energy/pose_energy.hpp"
#include "scan/pose_maker.hpp"
#include "scan/scan.hpp"
#include "support/message_of.hpp"
#include "support/shell_energies.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

constexpr double kKcalPerHartree = 627.5094740631;  // CODATA 2018

struct Argons {
  [[nodiscard]] std::vector<ScannedPose> scanned(const Poses& poses,
                                                 const ScanOptions& options) const {
    std::vector<ScannedPose> found;
    scan(placer, poses, options, [&](const ScanBatch& batch) {
      found.insert(found.end(), batch.poses.begin(), batch.poses.end());
    });
    return found;
  }

  Pair pair = two_argons();
  PairPlacer placer{pair};
};

std::vector<std::int64_t> indices_of(const std::vector<ScannedPose>& poses) {
  std::vector<std::int64_t> indices;
  for (const ScannedPose& pose : poses) indices.push_back(pose.index);
  return indices;
}

TEST(EnergiesOfAScan, AreThoseOfTheEngineWhereItHasSome) {
  const Argons argons;
  const EnergyModel model(argons.pair, one_over_r());
  const auto poses = argons.scanned(at_distances({4, 2.7, 3.7, 2.3, 2, 1.88, 1.8799, 5}),
                                    {.threads = 1, .energy = &model});
  ASSERT_EQ(poses.size(), 8U);
  const std::vector<EnergyStatus> expected{EnergyStatus::ok,          EnergyStatus::scf_fail,
                                           EnergyStatus::ok,          EnergyStatus::engine_died,
                                           EnergyStatus::nonphysical, EnergyStatus::nonphysical,
                                           EnergyStatus::clash,       EnergyStatus::ok};
  for (std::size_t k = 0; k < poses.size(); ++k) {
    EXPECT_EQ(poses[k].energy_status, expected[k]) << k;
    EXPECT_EQ(std::isnan(poses[k].interaction), expected[k] != EnergyStatus::ok) << k;
  }
  EXPECT_EQ(poses[0].interaction, 156.877369) << "627.5094740631 / 4 = 156.8773685";
  EXPECT_EQ(poses[2].interaction, 169.597155) << "627.5094740631 / 3.7 = 169.5971551";
  EXPECT_EQ(poses[7].interaction, 125.501895) << "627.5094740631 / 5 = 125.5018948";
}

TEST(EnergiesOfAScan, HaveSixDecimals) {
  const Argons argons;
  EnergyOptions options = one_over_r();
  for (const auto& [told, expected] :
       {std::pair("0.12345678", 0.123457), std::pair("-1e-9", 0.0), std::pair("-7.5", -7.5)}) {
    options.command = {"awk 'END { print \"e \", NR < 4 ? 0 : " + std::string(told) + " }' {xyz}",
                       "e +(\\S+)", EnergyUnit::kcal_mol};
    const EnergyModel model(argons.pair, options);
    const auto poses = argons.scanned(at_distances({4}), {.energy = &model});
    EXPECT_EQ(poses.at(0).interaction, expected);
    EXPECT_FALSE(std::signbit(poses[0].interaction) && expected == 0.0) << "no -0";
  }
}

TEST(EnergiesOfAScan, AreNotThereUnlessSomebodyWantsThem) {
  const Argons argons;
  const auto poses = argons.scanned(at_distances({4, 1}), {});
  EXPECT_EQ(poses.at(0).energy_status, std::nullopt);
  EXPECT_TRUE(std::isnan(poses[0].interaction));
  EXPECT_EQ(poses.at(1).energy_status, std::nullopt) << "no clash without energies";
}

TEST(EnergiesOfAScan, AreComputedOnlyOfPosesThatTheContactsLeave) {
  const TemporaryFolder folder;
  const std::string calls = (folder.path() / "calls").string();
  const Argons argons;
  const EnergyModel model(argons.pair, one_over_r("echo call >> " + calls + "; "));
  EXPECT_EQ(folder.read("calls"), "call\ncall\n") << "each atom alone";
  // A short contact is 1.9 Angstrom and less.
  const Poses poses = at_distances({4, 1.89, 1.8, 3, 1.7});
  const auto dropped =
      argons.scanned(poses, {.contacts = ContactRule::drop, .clearance = false, .energy = &model});
  EXPECT_EQ(indices_of(dropped), (std::vector<std::int64_t>{1, 4}));
  EXPECT_EQ(folder.read("calls"), "call\ncall\ncall\ncall\n");
  const auto only = argons.scanned(poses, {.contacts = ContactRule::only, .energy = &model});
  EXPECT_EQ(indices_of(only), (std::vector<std::int64_t>{2, 3, 5}));
  EXPECT_EQ(only.at(1).energy_status, EnergyStatus::clash);
  EXPECT_EQ(folder.read("calls"), "call\ncall\ncall\ncall\ncall\n") << "clashes are not computed";
}

TEST(EnergiesOfAScan, KeepThePosesBelowABound) {
  const Argons argons;
  const EnergyModel model(argons.pair, one_over_r());
  const Poses poses = at_distances({4, 6, 2.7, 5.5, 2.3, 1, 5, 2});
  const auto below = [&](double bound) {
    return indices_of(argons.scanned(poses, {.energy = &model, .keep_below = bound}));
  };
  // 627.5 / 5 = 125.5, / 5.5 = 114.1, / 6 = 104.6
  EXPECT_EQ(below(120), (std::vector<std::int64_t>{2, 4}));
  EXPECT_EQ(below(125.501895), (std::vector<std::int64_t>{2, 4})) << "below, not at";
  EXPECT_EQ(below(1e9), (std::vector<std::int64_t>{1, 2, 4, 7})) << "only those with an energy";
  EXPECT_EQ(below(-5), std::vector<std::int64_t>{});
  EXPECT_EQ(message_of<InvalidInput>([&] { (void)argons.scanned(poses, {.keep_below = 3}); }),
            "poses with a low energy are wanted, but no energies are computed");
}

TEST(EnergiesOfAScan, DoNotDependOnThreads) {
  const Argons argons;
  const EnergyModel model(argons.pair, one_over_r());
  std::vector<double> distances;
  for (int k = 0; k < 60; ++k) distances.push_back(1.5 + 0.0777 * ((k * 17) % 60));
  const auto one = argons.scanned(at_distances(distances), {.threads = 1, .energy = &model});
  const auto three = argons.scanned(at_distances(distances), {.threads = 3, .energy = &model});
  ASSERT_EQ(one.size(), 60U);
  ASSERT_EQ(indices_of(three), indices_of(one));
  for (std::size_t k = 0; k < one.size(); ++k) {
    EXPECT_EQ(three[k].energy_status, one[k].energy_status) << k;
    if (distances[k] < 3) continue;
    EXPECT_EQ(three[k].interaction, one[k].interaction);
    EXPECT_NEAR(one[k].interaction, kKcalPerHartree / distances[k], 1e-6);
  }
}

TEST(EnergiesOfAScan, EndItWithAModelOfAnotherPair) {
  const Argons argons;
  const EnergyModel model(
      Pair(1, Molecule(std::vector<std::string>{"Ar", "Ar", "Ar"}, {{}, {4, 0, 0}, {8, 0, 0}})),
      one_over_r());
  EXPECT_EQ(message_of<InvalidInput>(
                [&] { (void)argons.scanned(at_distances({4}), {.energy = &model}); }),
            "expected positions of 3 atoms, found 2");
}

TEST(PosesOfAMoment, AreFewerOfALargePairAndNeverNone) {
  EXPECT_EQ(poses_of_a_moment(EnergyMethod::gfnff, 12), 256);
  EXPECT_EQ(poses_of_a_moment(EnergyMethod::gfnff, 2), 256);
  EXPECT_EQ(poses_of_a_moment(EnergyMethod::gfnff, 48), 16) << "256 / 4^2";
  EXPECT_EQ(poses_of_a_moment(EnergyMethod::gfn2, 6), 8);
  EXPECT_EQ(poses_of_a_moment(EnergyMethod::gfn1, 24), 2) << "8 / 2^2";
  EXPECT_EQ(poses_of_a_moment(EnergyMethod::gfn2, 1000), 1);
  EXPECT_EQ(poses_of_a_moment(EnergyMethod::command, 2), 1);
}

}  // namespace
}  // namespace dravo::test
