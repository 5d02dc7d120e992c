#include "energy/command_engine.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "support/environment.hpp"
#include "support/message_of.hpp"
#include "support/pairs.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

const EnergySystem kHydroxide{{label_of("O"), label_of("H")}, {{0, 0, 0}, {0, 0, 0.96}}, -1, 2};

SystemEnergy computed(const EnergyCommand& command) {
  const EnergySystem neutral{kHydroxide.labels, kHydroxide.positions};
  return start_command(neutral, command)->compute(kHydroxide.positions, {});
}

struct Run {
  std::string run;  ///< of a script; {xyz} stands in a comment behind it
  std::string read;
  EnergyStatus status;
  double energy;
  std::string message;
};

void PrintTo(const Run& run, std::ostream* out) { *out << run.run; }

class Command : public ::testing::TestWithParam<Run> {};

TEST_P(Command, HasTheEnergyThatItPrintsLast) {
  const auto& [run, read, status, energy, message] = GetParam();
  const SystemEnergy found = computed({run + "\n# {xyz}", read});
  EXPECT_EQ(found.status, status);
  EXPECT_EQ(found.energy, energy);
  EXPECT_EQ(found.message, message);
}

constexpr auto kOk = EnergyStatus::ok;
constexpr auto kNone = EnergyStatus::scf_fail;
constexpr auto kDied = EnergyStatus::engine_died;
const std::string kNotFound =
    "no energy is found in what the program prints; it ended with status ";

INSTANTIATE_TEST_SUITE_P(
    Outputs, Command,
    ::testing::Values(
        Run{"echo 'TOTAL ENERGY   -5.25 Eh'", "TOTAL ENERGY +(\\S+)", kOk, -5.25, ""},
        Run{"echo E=-1; echo E=-2; echo e=-3", "E=(.*)", kOk, -2.0, ""},
        Run{"echo E=-1.5 >&2", "E=(\\S+)", kOk, -1.5, ""},
        Run{"printf 'E= -1.5D+01\\r\\n'", "E= *(\\S+)", kOk, -15.0, ""},
        Run{"printf 'no end of line E=7'", "E=(.)", kOk, 7.0, ""},
        Run{"echo 'a \"quoted\" $HOME'\\''s E=1'", "a \"quoted\" .HOME's E=(\\d)", kOk, 1.0, ""},
        Run{"printf 'a\\0b E=4\\n'", "E=(\\d)", kOk, 4.0, ""},
        Run{"touch leftover more; mkdir folder; echo E=2; cat leftover", "E=(\\d)", kOk, 2.0, ""},
        Run{"echo", "E=(\\d)", kNone, 0.0, kNotFound + "0, and it printed nothing"},
        Run{"echo lost; echo", "E=(\\d)", kNone, 0.0,
            kNotFound + "0, and its last line is \"lost\""},
        Run{"echo E=1; echo E=nan", "E=(\\S+)", kNone, 0.0,
            kNotFound + "0, and its last line is \"E=nan\""},
        Run{"echo E=1; echo 'E=****'", "E=(\\S+)", kNone, 0.0,
            kNotFound + "0, and its last line is \"E=****\""},
        Run{"echo E=1; exit 3", "E=(\\S+)", kNone, 0.0,
            "the program failed: it ended with status 3, and its last line is \"E=1\""},
        Run{"echo E=1; kill -s SEGV $$", "E=(\\S+)", kDied, 0.0,
            "the program failed: signal 11 ended it (Segmentation fault), and its last line is \"E=1\""},
        Run{"sh -c 'kill -s ABRT $$'; exit $?", "E=(\\S+)", kDied, 0.0,
            "the program failed: it ended with status 134, and its last line is \"Aborted\""},
        Run{"echo E=1; exit 255", "E=(\\S+)", kNone, 0.0,
            "the program failed: it ended with status 255, and its last line is \"E=1\""}));

TEST(CommandUnits, AreConvertedToHartree) {
  const auto energy = [](EnergyUnit unit) {
    return computed({"echo 627.5094740631 # {xyz}", "(.+)", unit}).energy;
  };
  EXPECT_EQ(energy(EnergyUnit::hartree), 627.5094740631);
  EXPECT_NEAR(energy(EnergyUnit::kcal_mol), 1.0, 1e-12);
  EXPECT_NEAR(energy(EnergyUnit::kj_mol), 1.0 / 4.184, 1e-12);
  EXPECT_NEAR(energy(EnergyUnit::ev), 627.5094740631 / 27.211386245988, 1e-9);
}

/// What a command prints of a charged system.
std::string said(const std::string& run) {
  const TemporaryFolder folder;
  const std::string file = (folder.path() / "said").string();
  const auto engine = start_command(
      kHydroxide, {run + " > " + file + "; echo 1 # {xyz} {charge} {unpaired}", "(\\d)"});
  EXPECT_EQ(engine->compute({{{0.125, 0, 0}, {0, -1, 0.96}}}, {}).status, kOk);
  return folder.read("said");
}

TEST(CommandWords, StandForTheSystem) {
  EXPECT_EQ(said("echo {charge} {unpaired} '{charge}{unpaired}' {other} {}"),
            "-1 2 -12 {other} {}\n");
  EXPECT_EQ(said("cat {xyz}"),
            "2\n\nO  0.1250000000 0.0000000000 0.0000000000\n"
            "H  0.0000000000 -1.0000000000 0.9600000000\n");
}

// Where the user's script stands.
TEST(CommandWords, StandForTheFolderOfTheUser) {
  const TemporaryFolder folder;
  const fs::path users = folder.path() / "a folder";
  fs::create_directory(users);
  std::ofstream(users / "my.sh") << "wc -l < $1; echo E=-3.5\n";
  const fs::path before = fs::current_path();
  fs::current_path(users);
  EXPECT_EQ(computed({"sh '{here}/my.sh' {xyz}", "E=(\\S+)"}).energy, -3.5);
  const std::string message = message_of<EngineFailure>([] {
    (void)computed({"./my.sh {xyz}", "E=(\\S+)"});
  });
  fs::current_path(before);
  EXPECT_EQ(message,
            "\"./my.sh system.xyz\": /bin/sh: 1: ./my.sh: not found; commands run in a folder of "
            "their own, {here} is that of dravo");
}

TEST(CommandFolder, HasNothingOfOthersAndIsRemoved) {
  const OwnTemporaryFiles temporary;
  {
    const auto engine = start_command({kHydroxide.labels, kHydroxide.positions},
                                      {"ls -A | wc -l; touch left; mkdir -p a/b # {xyz}", "(\\d)"});
    for (int pose = 0; pose < 3; ++pose)
      EXPECT_EQ(engine->compute(kHydroxide.positions, {}).energy, 2.0)
          << "the system and what is printed";
    EXPECT_EQ(temporary.names().size(), 1U);
  }
  EXPECT_EQ(temporary.names(), std::set<std::string>());
  EXPECT_EQ(children_of(::getpid()), std::vector<pid_t>());
}

TEST(CommandOutput, MayBeHuge) {
  // A line of 5 MB, which matching as a whole would not survive, then 50,000 short ones.
  EXPECT_EQ(computed({"head -c 5000000 /dev/zero | tr '\\0' x; echo; yes E=1 | head -n 50000; "
                      "echo E=2 # {xyz}",
                      "^(?:x|E)*=(.*)"})
                .energy,
            2.0);
}

TEST(CommandEngines, WorkSideBySide) {
  constexpr int kThreads = 8;
  std::vector<std::thread> threads;
  for (int k = 0; k < kThreads; ++k)
    threads.emplace_back([k] {
      const auto engine = start_command({kHydroxide.labels, kHydroxide.positions},
                                        {"awk '/^O/ { print \"E=\" $2 }' {xyz}", "E=(\\S+)"});
      for (int pose = 0; pose < 5; ++pose) {
        const std::vector<Vec3> positions{{k + 0.125 * pose, 0, 0}, {0, 0, 1}};
        EXPECT_EQ(engine->compute(positions, {}).energy, k + 0.125 * pose);
      }
    });
  for (std::thread& thread : threads) thread.join();
}

struct Refused {
  EnergyCommand command;
  std::string message;
};

TEST(CommandEngines, RefuseWhatCannotWork) {
  const std::vector<Refused> refused{
      {{"xtb --sp {charge} {unpaired}", "(.)"},
       "expected a command with {xyz}, the file to compute, found \"xtb --sp {charge} {unpaired}\""},
      {{"xtb {xyz} {unpaired}", "(.)"},
       "expected a command with {charge}, as there are charges, found \"xtb {xyz} {unpaired}\""},
      {{"xtb {xyz} {charge}", "(.)"},
       "expected a command with {unpaired}, as there are unpaired electrons, found \"xtb {xyz} "
       "{charge}\""},
      {{"xtb {xyz} {charge} {unpaired}", "ENERGY"},
       "expected a regular expression with one group, the energy in parentheses, found \"ENERGY\""},
      {{"xtb {xyz} {charge} {unpaired}", "(a)(b)"},
       "expected a regular expression with one group, the energy in parentheses, found \"(a)(b)\""}};
  for (const auto& [command, message] : refused)
    EXPECT_EQ(message_of<InvalidInput>(
                  [&, command = command] { (void)start_command(kHydroxide, command); }),
              message);
  const std::string broken = message_of<InvalidInput>([&] {
    (void)start_command(kHydroxide, {"{xyz} {charge} {unpaired}", "(a"});
  });
  EXPECT_TRUE(broken.starts_with("expected a regular expression, found \"(a\": ")) << broken;
}

TEST(CommandEngines, NeedTheirFolder) {
  const OwnTemporaryFiles temporary;
  const auto engine = start_command({kHydroxide.labels, kHydroxide.positions},
                                    {"rm -r $(dirname $PWD) # {xyz}", "(.)"});
  EXPECT_EQ(engine->compute(kHydroxide.positions, {}).status, kNone);
  const std::string message =
      message_of<EngineFailure>([&] { (void)engine->compute(kHydroxide.positions, {}); });
  EXPECT_TRUE(message.ends_with("/2: cannot be made: No such file or directory")) << message;
}

TEST(CommandEngines, HaveNoForces) {
  std::vector<Vec3> gradient(2);
  const auto engine = start_command({kHydroxide.labels, kHydroxide.positions}, {"{xyz}", "(.)"});
  EXPECT_EQ(
      message_of<InvalidInput>([&] { (void)engine->compute(kHydroxide.positions, gradient); }),
      "the engine `command` computes no forces");
}

// As by a second Ctrl-C: the program must not run on for ever.
TEST(CommandEngines, DoNotLeaveAProgramBehindWhenThisProcessIsKilled) {
  const TemporaryFolder signs;
  const OwnTemporaryFiles temporary;
  const std::string sign = (signs.path() / "program").string();
  const pid_t owner = ::fork();
  if (owner == 0) {
    (void)computed({"(echo $$ > " + sign + "; exec sleep 100) # {xyz}", "(.)"});
    ::_exit(1);
  }
  const pid_t program = number_in(sign);
  ASSERT_TRUE(runs(program));
  ::kill(owner, SIGKILL);
  ::waitpid(owner, nullptr, 0);
  EXPECT_TRUE(comes_true([&] { return !runs(program); }));
  EXPECT_EQ(temporary.names().size(), 1U);
  (void)computed({"echo 1 # {xyz}", "(.)"});
  EXPECT_EQ(temporary.names(), std::set<std::string>());
}

}  // namespace
}  // namespace dravo::test
