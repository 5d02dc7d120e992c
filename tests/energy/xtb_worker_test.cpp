/// libxtb in its process: energies against those that the program xtb 6.5.1 of Debian prints
/// (`xtb FILE --sp` with `--gfn 2`, `--gfn 1` or `--gfnff`, and `--chrg`, `--uhf`), and what
/// becomes of the process.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "energy/child_process.hpp"
#include "energy/private_folder.hpp"
#include "energy/xtb_engine.hpp"
#include "support/environment.hpp"
#include "support/molecule_sets.hpp"
#include "support/pairs.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

/// Hartree. One with the Bohr of CODATA 2014 would be 2e-11 away.
constexpr double kClose = 5e-12;

EnergySystem system_of(const Molecule& molecule, int charge = 0, int unpaired = 0) {
  return {molecule.labels(), molecule.positions(), charge, unpaired};
}

double energy_of(const EnergySystem& system, EnergyMethod method) {
  const SystemEnergy found = start_xtb(system, method)->compute(system.positions, {});
  EXPECT_EQ(found.status, EnergyStatus::ok) << found.message;
  return found.energy;
}

struct Published {
  std::string_view pair;
  EnergyMethod method;
  double energy, molecule1, molecule2;  ///< Hartree
};

void PrintTo(const Published& published, std::ostream* out) {
  *out << published.pair << ", " << name_of(published.method);
}

class PairsOfS22 : public ::testing::TestWithParam<Published> {};

TEST_P(PairsOfS22, HaveTheEnergiesOfTheProgram) {
  const auto& [name, method, energy, molecule1, molecule2] = GetParam();
  const NamedPair pair = s22(name);
  EXPECT_NEAR(energy_of(system_of(pair.atoms), method), energy, kClose);
  EXPECT_NEAR(energy_of(system_of(pair.molecule1()), method), molecule1, kClose);
  EXPECT_NEAR(energy_of(system_of(pair.molecule2()), method), molecule2, kClose);
}

constexpr auto kGfn2 = EnergyMethod::gfn2, kGfn1 = EnergyMethod::gfn1, kGfnff = EnergyMethod::gfnff;

INSTANTIATE_TEST_SUITE_P(
    Energies, PairsOfS22,
    ::testing::Values(
        Published{"Water_dimer", kGfn2, -10.148621062288, -5.070348121403, -5.070389810247},
        Published{"Water_dimer", kGfn1, -11.544932256079, -5.768606754162, -5.768652458981},
        Published{"Ammonia_dimer", kGfn2, -8.855554583456, -4.426148038343, -4.426148038343},
        Published{"Methane_dimer", kGfn1, -8.549122021758, -4.274249004237, -4.274249004237},
        Published{"Formamide_dimer", kGfn2, -21.311974319491, -10.642727025016, -10.642727025016},
        Published{"Formamide_dimer", kGfn1, -23.283524302401, -11.630209914123, -11.630209914123},
        Published{"Ethene-ethyne_complex", kGfn2, -11.478927751903, -6.270752502763,
                  -5.206066234056},
        Published{"Benzene-HCN_complex", kGfn2, -21.385139433142, -15.879036267564,
                  -5.501952752606},
        Published{"Benzene-HCN_complex", kGfn1, -21.677450969185, -15.894399211483,
                  -5.781486250070},
        Published{"Phenol_dimer", kGfn2, -39.916326478954, -19.953598189122, -19.953526513530}));

/// Molecule 1 moved by 100 Angstrom.
EnergySystem apart(const NamedPair& pair) {
  EnergySystem system = system_of(pair.atoms);
  for (std::int32_t i = 0; i < pair.n1; ++i) system.positions[static_cast<std::size_t>(i)].x += 100;
  return system;
}

TEST(ForceFieldEnergies, AreThoseOfTheProgram) {
  EXPECT_NEAR(energy_of(system_of(s22("Water_dimer").atoms), kGfnff), -0.663978178757, kClose);
  EXPECT_NEAR(energy_of(apart(s22("Water_dimer")), kGfnff), -0.654706671682, kClose);
  EXPECT_NEAR(energy_of(system_of(s22("Phenol_dimer").atoms), kGfnff), -5.056472895850, kClose);
  EXPECT_NEAR(energy_of(apart(s22("Methane_dimer")), kGfnff), -1.261731201286, kClose);
}

TEST(UnpairedElectrons, AreThoseOfTheProgram) {
  const std::vector<Atom> oxygen{{"O", {0, 0, 0.604}}, {"O", {0, 0, -0.604}}};
  const std::vector<Atom> water{
      {"O", {3.0, 0, 0.117}}, {"H", {3.0, 0.757, -0.469}}, {"H", {3.0, -0.757, -0.469}}};
  const Pair pair = pair_of(oxygen, water);
  EnergySystem system{pair.labels(), pair.positions(), 0, 2};
  EXPECT_NEAR(energy_of(system, kGfn2), -12.975296523862, kClose);
  EXPECT_NEAR(energy_of(system, kGfn1), -14.886904301280, kClose);
  system.unpaired = 0;
  EXPECT_NEAR(energy_of(system, kGfn2), -12.978600783301, kClose);

  const EnergyModel model(pair, {.method = kGfn2, .unpaired = {2, 0}});
  EXPECT_NEAR(model.references().at(0), -7.904113593464, kClose);
  EXPECT_NEAR(model.references().at(1), -5.070369819002, kClose);
  EXPECT_NEAR(model.start().energy(pair.positions()).interaction,
              (-12.975296523862 + 7.904113593464 + 5.070369819002) * kKcalPerMolPerHartree, 1e-8);
}

/// An ion with a water at it.
struct Ion {
  std::vector<Atom> atoms;
  std::vector<Atom> water;
  int charge;
  double far;   ///< GFN-FF of the program with the ion first, moved by 100 Angstrom; Hartree
  double pair;  ///< GFN2 of the program; Hartree
  double ion, alone;
};

const std::vector<Ion> kIons{
    {{{"N", {0, 0, 0}},
      {"H", {0.59, 0.59, 0.59}},
      {"H", {0.59, -0.59, -0.59}},
      {"H", {-0.59, 0.59, -0.59}},
      {"H", {-0.59, -0.59, 0.59}}},
     {{"O", {1.587713, 1.587713, 1.587713}},
      {"H", {2.461320, 1.390761, 1.926040}},
      {"H", {1.390761, 2.461320, 1.926040}}},
     1,
     0.431472797732,
     -9.598342752489,
     -4.494698235394,
     -5.070369810160},
    {{{"Cl", {0, 0, 0}}},
     {{"O", {3.15, 0, 0}}, {"H", {2.193, 0, 0}}, {"H", {3.39, 0.927, 0}}},
     -1,
     -1.296949310866,
     -9.873267428009,
     -4.785133953761,
     -5.070369671007},
    {{{"C", {0, 0, 0}},
      {"C", {1.54, 0, 0}},
      {"O", {2.13, 1.11, 0}},
      {"O", {2.13, -1.11, 0}},
      {"H", {-0.38, 1.03, 0}},
      {"H", {-0.38, -0.51, 0.89}},
      {"H", {-0.38, -0.51, -0.89}}},
     {{"O", {4.75, 0, 0}}, {"H", {4.15, 0.76, 0}}, {"H", {4.15, -0.76, 0}}},
     -1,
     -2.609601728112,
     -19.261505213485,
     -14.164178452754,
     -5.070148895487}};

// libxtb gives the charge to the first molecule unless it is told otherwise, with errors of 15 to
// 40 kcal/mol. Whichever comes first, the energy differs by that of a charge and a dipole 100
// Angstrom apart alone: 332 * 0.4 / 100^2 = 0.013 kcal/mol, once as attraction and once as
// repulsion.
TEST(OneNetCharge, IsWhereItBelongs) {
  constexpr double kDipoleFarAway = 2 * 0.015, kErrorOfMethods = 4.0;  // kcal/mol
  for (const Ion& ion : kIons) {
    SCOPED_TRACE(ion.atoms.front().symbol);
    const Pair first = pair_of(ion.atoms, ion.water), second = pair_of(ion.water, ion.atoms);
    const EnergyModel ion_first(first, {.method = kGfnff, .charges = {ion.charge, 0}});
    const EnergyModel ion_second(second, {.method = kGfnff, .charges = {0, ion.charge}});
    const PoseEnergy one = ion_first.start().energy(first.positions());
    const PoseEnergy other = ion_second.start().energy(second.positions());
    EXPECT_EQ(one.status, EnergyStatus::ok);
    EXPECT_NEAR(one.interaction, other.interaction, kDipoleFarAway);
    EXPECT_NEAR(ion_first.references().at(0), ion.far, 1e-5) << "some Angstrom less apart";
    EXPECT_NEAR(one.interaction, (ion.pair - ion.ion - ion.alone) * kKcalPerMolPerHartree,
                kErrorOfMethods);
  }
}

TEST(ChargesOfGfn2, AreThoseOfTheProgramInEitherOrder) {
  for (const Ion& ion : kIons) {
    SCOPED_TRACE(ion.atoms.front().symbol);
    const Pair second = pair_of(ion.water, ion.atoms);
    const EnergyModel model(second, {.method = kGfn2, .charges = {0, ion.charge}});
    EXPECT_NEAR(model.references().at(0), ion.alone, kClose);
    EXPECT_NEAR(model.references().at(1), ion.ion, kClose);
    EXPECT_NEAR(model.start().energy(second.positions()).interaction,
                (ion.pair - ion.ion - ion.alone) * kKcalPerMolPerHartree, 1e-8);
  }
}

/// The second molecule of a pair moved away by some Angstrom.
std::vector<Vec3> stretched(const NamedPair& pair, double distance) {
  std::vector<Vec3> positions = pair.atoms.positions();
  for (auto p = positions.begin() + pair.n1; p != positions.end(); ++p) p->x += distance;
  return positions;
}

TEST(Energies, DoNotDependOnThoseBeforeOrBeside) {
  const NamedPair pair = s22("Water_dimer");
  for (const EnergyMethod method : {kGfnff, kGfn2, kGfn1}) {
    std::array<std::array<double, 3>, 3> found{};
    std::vector<std::thread> threads;
    for (std::size_t k = 0; k < found.size(); ++k)
      threads.emplace_back([&, k] {
        const auto engine = start_xtb(system_of(pair.atoms), method);
        for (std::size_t step = 0; step < 3; ++step) {
          const std::size_t distance = (step + k) % 3;
          found.at(k).at(distance) =
              engine->compute(stretched(pair, 0.5 * static_cast<double>(distance)), {}).energy;
        }
      });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(found[0], found[1]) << name_of(method);
    EXPECT_EQ(found[0], found[2]) << name_of(method);
    EXPECT_NE(found[0][0], found[0][1]);
  }
}

// A single oxygen atom as a singlet beside water does not converge, as with the program.
TEST(Energies, FollowOneThatDidNotConverge) {
  const std::vector<Atom> water{{"O", {4, 0, 0}}, {"H", {4.96, 0, 0}}, {"H", {3.75, 0.93, 0}}};
  const Pair pair = pair_of({{"O", {0, 0, 0}}}, water);
  const EnergyModel model(pair, {.method = kGfn2});
  EnergyEngine engine = model.start(), undisturbed = model.start();
  std::vector<Vec3> close = pair.positions();
  close.front().x = 2.6;
  const double expected = undisturbed.energy(close).interaction;
  EXPECT_EQ(engine.energy(pair.positions()).status, EnergyStatus::scf_fail);
  EXPECT_EQ(engine.energy(close).status, EnergyStatus::ok);
  EXPECT_EQ(engine.energy(close).interaction, expected);
}

TEST(Energies, DoNotDependOnParameterFilesOfTheUser) {
  const TemporaryFolder home;
  for (const char* file : {"param_gfn2-xtb.txt", "param_gfn1-xtb.txt", ".param_gfnff.xtb"})
    home.write(file, "nonsense\n");
  const std::string path = home.path().string();
  const Variable one("HOME", path), two("XTBPATH", path), three("XTBHOME", path);
  EXPECT_NEAR(energy_of(system_of(s22("Water_dimer").atoms), kGfn2), -10.148621062288, kClose);
  EXPECT_NEAR(energy_of(system_of(s22("Water_dimer").atoms), kGfn1), -11.544932256079, kClose);
  EXPECT_NEAR(energy_of(system_of(s22("Water_dimer").atoms), kGfnff), -0.663978178757, kClose);
}

TEST(Files, AreLeftNowhere) {
  const TemporaryFolder users;
  const OwnTemporaryFiles temporary;
  const fs::path before = fs::current_path();
  fs::current_path(users.path());
  for (const EnergyMethod method : {kGfnff, kGfn2, kGfn1})
    (void)energy_of(system_of(s22("Water_dimer").atoms), method);
  fs::current_path(before);
  EXPECT_TRUE(fs::is_empty(users.path()));
  EXPECT_EQ(temporary.names(), std::set<std::string>());
}

/// Waters on a cubic lattice.
EnergySystem waters(int count) {
  const auto side = static_cast<int>(std::ceil(std::cbrt(count)));
  EnergySystem system;
  for (int k = 0; k < count; ++k) {
    const Vec3 corner{3.1 * (k / side / side), 3.1 * (k / side % side), 3.1 * (k % side)};
    for (const auto& [symbol, place] :
         std::vector<Atom>{{"O", {0, 0, 0}}, {"H", {0.757, 0.586, 0}}, {"H", {-0.757, 0.586, 0}}}) {
      system.labels.push_back(label_of(symbol));
      system.positions.push_back(corner + place);
    }
  }
  return system;
}

/// Of this process and those that it starts.
class StackUpTo {
 public:
  explicit StackUpTo(rlim_t bytes) {
    ::getrlimit(RLIMIT_STACK, &old_);
    const rlimit limit{bytes, old_.rlim_max};
    ::setrlimit(RLIMIT_STACK, &limit);
  }
  StackUpTo(const StackUpTo&) = delete;
  StackUpTo& operator=(const StackUpTo&) = delete;
  ~StackUpTo() { ::setrlimit(RLIMIT_STACK, &old_); }

 private:
  rlimit old_{};
};

// 210 atoms take 1.4 MB of stack; 500 atoms would fill the 8 MB that are usual, but take minutes.
TEST(LargeSystems, HaveTheStackThatTheyTake) {
  const StackUpTo limit(1 << 20);
  const EnergySystem system = waters(70);
  const double energy = energy_of(system, kGfn2);
  EXPECT_NEAR(energy / 70, -5.07, 0.02) << "that of a water, and what holds them together";
}

TEST(LargeSystems, AreComputedByTheForceField) {
  const EnergySystem system = waters(400);
  EXPECT_NEAR(energy_of(system, kGfnff) / 400, -0.327, 0.02);
}

TEST(Worker, IsNotForUsers) {
  const TemporaryFolder folder;
  const fs::path worker = fs::read_symlink("/proc/self/exe").parent_path() / "dravo-xtb-worker";
  ChildProcess process(
      {{worker.string()}, folder.path().string(), (folder.path() / "printed").string()});
  EXPECT_EQ(WEXITSTATUS(process.wait()), 2);
  EXPECT_EQ(folder.read("printed"),
            "dravo-xtb-worker computes energies for dravo, which starts it\n");
}

// 360 atoms take ten seconds and more; a worker that nobody waits for must not go on with them.
TEST(Worker, EndsInTheMiddleOfALongComputationWhenThisProcessIsKilled) {
  const OwnTemporaryFiles temporary;
  const pid_t owner = ::fork();
  if (owner == 0) {
    (void)energy_of(waters(120), kGfn2);
    ::_exit(1);
  }
  std::vector<pid_t> workers;
  ASSERT_TRUE(comes_true([&] { return !(workers = children_of(owner)).empty(); }));
  std::this_thread::sleep_for(std::chrono::seconds(1));
  ASSERT_TRUE(runs(owner)) << "the computation is over already";
  ::kill(owner, SIGKILL);
  ::waitpid(owner, nullptr, 0);
  const auto killed = std::chrono::steady_clock::now();
  EXPECT_TRUE(comes_true([&] { return !runs(workers.front()); }));
  EXPECT_LT(std::chrono::steady_clock::now() - killed, std::chrono::seconds(1));
  EXPECT_EQ(temporary.names().size(), 1U);
  { const PrivateFolder next_run; }
  EXPECT_EQ(temporary.names(), std::set<std::string>());
}

}  // namespace
}  // namespace dravo::test
