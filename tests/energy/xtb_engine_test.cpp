/// The side of libxtb that is this program's, against a worker that fails when it is told to.
#include "energy/xtb_engine.hpp"

#include <gtest/gtest.h>
#include <signal.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "dravo/energy.hpp"
#include "energy/fake_worker.hpp"
#include "support/environment.hpp"
#include "support/message_of.hpp"
#include "support/pairs.hpp"

namespace dravo::test {
namespace {

const EnergySystem kHelium{{label_of("He"), label_of("He")}, {{0, 0, 0}, {0, 0, 3}}};

/// Their first coordinate tells the worker what to do. The others make an energy of 12 Bohr.
std::vector<Vec3> positions_of(Fake what) {
  const auto x = static_cast<double>(what);
  return {kAngstromPerBohr * Vec3{x, 1, 2}, kAngstromPerBohr * Vec3{2, 3, 4}};
}

class FakeEngine : public ::testing::Test {
 protected:
  [[nodiscard]] static std::unique_ptr<SystemEngine> started() {
    return start_xtb(kHelium, EnergyMethod::gfn2);
  }

  TemporaryFolder marks_;
  OwnTemporaryFiles temporary_;
  Variable worker_{"DRAVO_XTB_WORKER", DRAVO_FAKE_WORKER};
  Variable mark_{kFakeMark, (marks_.path() / "mark").string()};
};

TEST_F(FakeEngine, ComputesPoses) {
  const auto engine = started();
  for (int pose = 0; pose < 3; ++pose) {
    const SystemEnergy found = engine->compute(positions_of(Fake::computes), {});
    EXPECT_EQ(found.status, EnergyStatus::ok);
    EXPECT_NEAR(found.energy, 12.0, 1e-12);
    EXPECT_EQ(found.message, "");
  }
}

TEST_F(FakeEngine, ComputesGradients) {
  const auto engine = started();
  std::vector<Vec3> gradient(2);
  EXPECT_EQ(engine->compute(positions_of(Fake::computes), gradient).status, EnergyStatus::ok);
  for (const Vec3& g : gradient)
    for (const double component : {g.x, g.y, g.z}) EXPECT_EQ(component, 1.0);
}

TEST_F(FakeEngine, SaysWhyThereIsNoEnergy) {
  const auto engine = started();
  std::vector<Vec3> gradient(2);
  for (const std::span<Vec3> wanted : {std::span<Vec3>(), std::span<Vec3>(gradient)}) {
    const SystemEnergy found = engine->compute(positions_of(Fake::fails), wanted);
    EXPECT_EQ(found.status, EnergyStatus::scf_fail);
    EXPECT_EQ(found.message, "libxtb: math: No matrix - at all");
  }
  EXPECT_EQ(engine->compute(positions_of(Fake::computes), gradient).status, EnergyStatus::ok);
}

TEST_F(FakeEngine, LosesNoPoseAfterTheDeadlyOne) {
  const auto engine = started();
  std::vector<Vec3> gradient(2);
  for (int round = 0; round < 3; ++round) {
    const SystemEnergy found = engine->compute(positions_of(Fake::dies), {});
    EXPECT_EQ(found.status, EnergyStatus::engine_died);
    EXPECT_EQ(found.message, "signal 9 ended it (Killed)");
    EXPECT_EQ(engine->compute(positions_of(Fake::dies_before_the_gradient), gradient).status,
              EnergyStatus::engine_died);
    EXPECT_NEAR(engine->compute(positions_of(Fake::computes), {}).energy, 12.0, 1e-12);
  }
}

TEST_F(FakeEngine, LeavesNothing) {
  {
    const auto engine = started();
    (void)engine->compute(positions_of(Fake::dies), {});
    (void)engine->compute(positions_of(Fake::computes), {});
    EXPECT_EQ(temporary_.names().size(), 1U);
    EXPECT_EQ(children_of(::getpid()).size(), 1U);
  }
  EXPECT_EQ(temporary_.names(), std::set<std::string>());
  EXPECT_EQ(children_of(::getpid()), std::vector<pid_t>());
}

TEST_F(FakeEngine, StartsInManyThreadsAtOnce) {
  constexpr int kThreads = 64;
  std::vector<double> energies(kThreads);
  std::vector<std::thread> threads;
  for (int k = 0; k < kThreads; ++k)
    threads.emplace_back([&, k] {
      const auto engine = started();
      const std::vector<Vec3> positions(2, kAngstromPerBohr * Vec3{0, 0, static_cast<double>(k)});
      energies[static_cast<std::size_t>(k)] = engine->compute(positions, {}).energy;
    });
  for (std::thread& thread : threads) thread.join();
  for (int k = 0; k < kThreads; ++k)
    EXPECT_NEAR(energies[static_cast<std::size_t>(k)], 2.0 * k, 1e-12);
  EXPECT_EQ(temporary_.names(), std::set<std::string>());
}

/// A worker that does not start, and what is said of it.
std::string refusal(std::string_view how) {
  const Variable start(kFakeStart, std::string(how));
  return message_of<EngineFailure>([] { (void)start_xtb(kHelium, EnergyMethod::gfn2); });
}

TEST_F(FakeEngine, DoesNotStartWithoutItsWorker) {
  const std::string died = "the process of libxtb died when it took the molecules: ";
  EXPECT_EQ(refusal(fake_start::kSilent), died + "it ended with status 0");
  EXPECT_EQ(refusal(fake_start::kStranger),
            DRAVO_FAKE_WORKER " does not answer as dravo-xtb-worker of this version does");
  EXPECT_EQ(refusal(fake_start::kDies), died + "signal 9 ended it (Killed)");
  EXPECT_EQ(refusal(fake_start::kComplains),
            died + "it ended with status 2: Fortran runtime error: No space left");
  EXPECT_EQ(refusal(fake_start::kRefuses),
            "libxtb does not take these molecules: libxtb: math: No matrix - at all");
  EXPECT_EQ(temporary_.names(), std::set<std::string>());
}

TEST_F(FakeEngine, NeedsItsWorkerWhereItIsToldToBe) {
  const Variable wrong("DRAVO_XTB_WORKER", "/no/such/worker");
  EXPECT_EQ(message_of<EngineFailure>([] { (void)started(); }),
            "the program dravo-xtb-worker is not there: looked for /no/such/worker; the variable "
            "DRAVO_XTB_WORKER can tell its path");
}

TEST_F(FakeEngine, TriesAgainWhenAWorkerDiesAtItsStart) {
  const Variable start(kFakeStart, std::string(fake_start::kDiesOnce));
  EXPECT_NEAR(started()->compute(positions_of(Fake::computes), {}).energy, 12.0, 1e-12);
  EXPECT_TRUE(std::filesystem::exists(marks_.path() / "mark")) << "it died";
}

// It cannot be replaced: that ends the scan, not this process.
TEST_F(FakeEngine, ThrowsWhenADeadWorkerCannotBeReplaced) {
  const auto engine = started();
  (void)engine->compute(positions_of(Fake::dies), {});
  {
    const Variable start(kFakeStart, std::string(fake_start::kRefuses));
    for (int round = 0; round < 2; ++round)
      EXPECT_THROW((void)engine->compute(positions_of(Fake::computes), {}), EngineFailure);
  }
  EXPECT_EQ(engine->compute(positions_of(Fake::computes), {}).status, EnergyStatus::ok);
}

TEST_F(FakeEngine, HasElementsUpToRadon) {
  for (const auto& [symbol, message] : std::vector<std::pair<std::string, std::string>>{
           {"Rn", ""},
           {"Fr", "expected elements up to Rn, which is as far as libxtb goes, found Fr"},
           {"U", "expected elements up to Rn, which is as far as libxtb goes, found U"}}) {
    EnergySystem system = kHelium;
    system.labels[1] = label_of(symbol);
    for (const EnergyMethod method : {EnergyMethod::gfnff, EnergyMethod::gfn2, EnergyMethod::gfn1})
      EXPECT_EQ(message_of<InvalidInput>([&] { (void)start_xtb(system, method); }), message);
  }
}

// As the model for a whole pair sees it.
class FakeModel : public FakeEngine {
 protected:
  Pair pair_ = pair_of({{"He", {0, 0, 0}}}, {{"He", {0, 0, 3}}});
  EnergyModel model_{pair_, {.method = EnergyMethod::gfn2}};
  EnergyEngine engine_ = model_.start();
};

// The atoms alone have 0 and 3 Angstrom.
TEST_F(FakeModel, CountsFromTheMoleculesAlone) {
  ASSERT_EQ(model_.references().size(), 2U);
  EXPECT_EQ(model_.references()[0], 0.0);
  EXPECT_NEAR(model_.references()[1], 3.0 / kAngstromPerBohr, 1e-12);
  const PoseEnergy found = engine_.energy(std::vector<Vec3>{{0, 0, 0.125}, {0, 0, 3.0}});
  EXPECT_EQ(found.status, EnergyStatus::ok);
  EXPECT_NEAR(found.interaction, 0.125 / kAngstromPerBohr * kKcalPerMolPerHartree, 1e-9);
}

// A gradient of 1 Hartree/Bohr along each axis; the torque about c is (p - c) x F.
TEST_F(FakeModel, HasForceAndTorqueOnMolecule1) {
  constexpr double kUnit = kKcalPerMolPerHartree / kAngstromPerBohr;
  const PoseEnergy found =
      engine_.energy_and_force(std::vector<Vec3>{{0, 0.2, 0.3}, {0, 0, 3.0}}, {0, 0, 0.1});
  ASSERT_EQ(found.status, EnergyStatus::ok);
  const auto& [force, torque] = found.on_molecule1;
  for (const double component : {force.x, force.y, force.z}) EXPECT_NEAR(component, -kUnit, 1e-9);
  EXPECT_NEAR(torque.x, 0.2 * -kUnit - 0.2 * -kUnit, 1e-9);
  EXPECT_NEAR(torque.y, 0.2 * -kUnit, 1e-9);
  EXPECT_NEAR(torque.z, -0.2 * -kUnit, 1e-9);
}

TEST_F(FakeModel, TriesAgainWhenAWorkerDies) {
  EXPECT_EQ(engine_.energy(positions_of(Fake::dies_once)).status, EnergyStatus::nonphysical)
      << "14 Hartree";
  EXPECT_TRUE(std::filesystem::exists(marks_.path() / "mark")) << "it died";
  EXPECT_EQ(engine_.energy(positions_of(Fake::dies)).status, EnergyStatus::engine_died);
}

TEST_F(FakeModel, TriesAgainWhenAWorkerWasKilledBetweenPoses) {
  const std::vector<Vec3> positions{{0, 0, 0.125}, {0, 0, 3.0}};
  const double before = engine_.energy(positions).interaction;
  const std::vector<pid_t> workers = children_of(::getpid());
  ASSERT_EQ(workers.size(), 1U);
  ::kill(workers.front(), SIGKILL);
  const PoseEnergy after = engine_.energy(positions);
  EXPECT_EQ(after.status, EnergyStatus::ok);
  EXPECT_EQ(after.interaction, before);
}

TEST_F(FakeModel, TellsWhatBecameOfAPose) {
  const auto status_at = [&](Fake what) { return engine_.energy(positions_of(what)).status; };
  EXPECT_EQ(status_at(Fake::fails), EnergyStatus::scf_fail);
  EXPECT_EQ(status_at(Fake::is_not_a_number), EnergyStatus::nonphysical);
  EXPECT_TRUE(std::isnan(engine_.energy(positions_of(Fake::fails)).interaction));
}

// The energy is 3 Angstrom/Bohr when nothing interacts, and rises with z of the first atom.
TEST_F(FakeModel, JudgesWhatIsPhysical) {
  const auto status_at = [&](double kcal_mol) {
    const double z = kcal_mol / kKcalPerMolPerHartree * kAngstromPerBohr;
    return engine_.energy(std::vector<Vec3>{{0, 0, z}, {0, 0, 3.0}}).status;
  };
  EXPECT_EQ(status_at(-500.001), EnergyStatus::nonphysical);
  EXPECT_EQ(status_at(-499.999), EnergyStatus::ok);
  EXPECT_EQ(status_at(4999.999), EnergyStatus::ok);
  EXPECT_EQ(status_at(5000.001), EnergyStatus::nonphysical);
}

TEST_F(FakeModel, TakesAsManyPositionsAsAtoms) {
  const std::vector<Vec3> three(3);
  for (const auto& action :
       std::vector<std::function<void()>>{[&] { (void)engine_.energy(three); },
                                          [&] { (void)engine_.energy_and_force(three, {}); }})
    EXPECT_EQ(message_of<InvalidInput>(action), "expected positions of 2 atoms, found 3");
}

// The energy of the new model's atoms alone is 5 Angstrom/Bohr instead of 3.
TEST_F(FakeModel, MayTakeTheEngineOfAnother) {
  engine_ =
      EnergyModel(pair_of({{"He", {0, 0, 0}}}, {{"He", {0, 0, 5}}}), {.method = EnergyMethod::gfn2})
          .start();
  const PoseEnergy found = engine_.energy(std::vector<Vec3>{{0, 0, 0}, {0, 0, 5}});
  EXPECT_EQ(found.status, EnergyStatus::ok);
  EXPECT_NEAR(found.interaction, 0.0, 1e-9);
}

TEST_F(FakeEngine, NamesTheMoleculeThatHasNoEnergy) {
  const Pair pair = pair_of({{"He", {0, 0, 0}}}, {{"He", {3 * kAngstromPerBohr, 0, 3}}});
  EXPECT_EQ(
      message_of<EngineFailure>([&] { (void)EnergyModel(pair, {.method = EnergyMethod::gfn2}); }),
      "no energy of molecule 2 alone: libxtb: math: No matrix - at all");
}

// 100 Angstrom of space between them, whatever they were before.
TEST_F(FakeEngine, CountsGfnffFromTheMoleculesFarApart) {
  const Pair pair = pair_of({{"He", {0, 0, 0}}, {"He", {-1, 0, 0}}}, {{"He", {2, 0, 3}}});
  const EnergyModel model(pair, {.method = EnergyMethod::gfnff});
  ASSERT_EQ(model.references().size(), 1U);
  EXPECT_NEAR(model.references()[0], (103.0 + 102.0 + 2.0 + 3.0) / kAngstromPerBohr, 1e-9);
}

}  // namespace
}  // namespace dravo::test
