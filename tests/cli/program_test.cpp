/// What holds for every command: help, versions, lost results.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/scanned.hpp"
#include "common/version.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

TEST(LostResults, AreAFailure) {
  const Dimer folder;
  for (const Words& words :
       {Words{"scan", kInput, "--count"} + kOnePose, Words{"--help"}, Words{"--version"},
        Words{"scan", "--help"}, Words{"merge", "--version"}}) {
    const Outcome outcome = run_command(folder, words, Screen::full);
    EXPECT_EQ(outcome.status, 2) << words.back();
    EXPECT_EQ(outcome.messages, "dravo: standard output: cannot write: No space left on device\n")
        << words.back();
  }
}

/// A text that is kept to the end, and one that is longer than what is kept.
TEST(LostResults, HaveTheReasonOfTheSystem) {
  struct Loss {
    Screen screen;
    std::string reason;
  };
  const TemporaryFolder folder;
  std::string many = "4000\n\n";
  for (int k = 0; k < 4000; ++k) many += "He " + std::to_string(4 * k) + " 0 0\n";
  folder.write("many.xyz", many);
  for (const Words& words : {Words{"--version"}, Words{"convert", "many.xyz", "--split", "1"}})
    for (const Loss& loss :
         {Loss{Screen::full, "No space left on device"},
          Loss{Screen::closed, "Bad file descriptor"}, Loss{Screen::broken_pipe, "Broken pipe"}}) {
      const Outcome outcome = run_command(folder, words, loss.screen);
      EXPECT_EQ(outcome.status, 2) << words.front();
      EXPECT_EQ(outcome.messages, "dravo: standard output: cannot write: " + loss.reason + "\n")
          << words.front();
    }
}

/// What is no fault of usage, input or files.
TEST(WantOfMemory, IsToldAsWhatItIs) {
  if (std::getenv("DRAVO_TOOL") != nullptr) GTEST_SKIP() << "sanitizers need the memory";
  const TemporaryFolder folder;
  folder.write("plan.toml", "");
  fs::resize_file(folder.path() / "plan.toml", std::uintmax_t{1} << 32U);
  const auto little_memory = [] { set_limit(RLIMIT_AS, rlim_t{1} << 30U); };
  const std::string program = tested_dravo();
  const Dimer elsewhere;  // whose files are read back
  const Outcome outcome =
      run_in(elsewhere, {program, "scan", kInput, "--plan", (folder.path() / "plan.toml").string()},
             Screen::kept, little_memory);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.screen, "");
  EXPECT_EQ(outcome.messages, "dravo: cannot go on: there is not enough memory\n");
}

/// As many threads do the work as the system gives; here each would need all the memory that is
/// left.
TEST(WantOfMemory, ForThreadsLeavesTheWorkToOne) {
  if (std::getenv("DRAVO_TOOL") != nullptr) GTEST_SKIP() << "sanitizers need the memory";
  const Words words{"scan", kInput, "--r", "4:6:0.01", "--threads", "4", "--quiet"};
  const Dimer folder, little;
  const Outcome expected = run_command(folder, words);
  EXPECT_EQ(expected.status, 0) << expected.messages;
  const Outcome outcome = run_command(little, words, Screen::kept, [] {
    set_limit(RLIMIT_STACK, rlim_t{1} << 30U);
    set_limit(RLIMIT_AS, rlim_t{1} << 30U);
  });
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_TRUE(outcome.files == expected.files);
}

TEST(EverySubcommand, TellsHelpWithAnExampleAndItsVersion) {
  const TemporaryFolder folder;
  for (const char* command : {"prepare", "identify", "scan", "dock", "merge", "convert"}) {
    const Outcome help = run_command(folder, {command, "--help"});
    EXPECT_EQ(help.status, 0) << command;
    EXPECT_EQ(help.messages, "") << command;
    EXPECT_NE(help.screen.find(std::string("dravo ") + command), std::string::npos);
    EXPECT_NE(help.screen.find("\nExample"), std::string::npos) << help.screen;
    const Outcome version = run_command(folder, {command, "--version"});
    EXPECT_EQ(version.status, 0) << command;
    EXPECT_EQ(version.screen, "dravo " DRAVO_VERSION "\nqn-dravo 1.14, revision ST11\n") << command;
    EXPECT_EQ(version.messages, "") << command;
  }
}

TEST(Help, TellsWhatQnDravoIsFor) {
  const TemporaryFolder folder;
  const Outcome help = run_command(folder, {"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.screen.find("qn-dravo. It takes no arguments"), std::string::npos) << help.screen;
  EXPECT_NE(help.screen.find(kInput), std::string::npos) << help.screen;
}

/// The version that a run of qn-dravo writes down.
TEST(Versions, AreThoseOfBothPrograms) {
  const Dimer folder;
  ASSERT_EQ(run_in(folder, DRAVO_DEFAULT_PROGRAM).status, 0);
  const std::string log = folder.read("QN-LOG-PARAM.txt");
  const std::string screen = run_command(folder, {"--version"}).screen;
  const Lines lines = lines_of(screen);
  ASSERT_EQ(lines.size(), 2U) << screen;
  const std::string version = lines[1].substr(9, lines[1].find(',') - 9);
  EXPECT_EQ(lines[0], "dravo " DRAVO_VERSION);
  EXPECT_NE(log.find(" QN-DRAVO Version " + version + " "), std::string::npos) << version;
  const std::string revision = lines[1].substr(lines[1].rfind(' ') + 1);
  EXPECT_NE(log.find("-" + revision + "\n"), std::string::npos) << revision;
}

}  // namespace
}  // namespace dravo::test
