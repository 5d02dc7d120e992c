/// What holds for every command: help, versions, unknown names, lost results.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/scanned.hpp"
#include "common/version.hpp"

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
    EXPECT_EQ(outcome.messages, "dravo: standard output: cannot write\n") << words.back();
  }
}

TEST(UnknownCommand, IsNamed) {
  const TemporaryFolder folder;
  for (const std::string word : {"put", "Scan", "scans", ""}) {
    const Outcome outcome = run_command(folder, {word, "--help"});
    EXPECT_EQ(outcome.status, 2) << word;
    EXPECT_EQ(outcome.screen, "") << word;
    EXPECT_EQ(outcome.messages,
              "dravo: \"" + word +
                  "\": no such command; there are prepare, identify, place, scan, "
                  "merge and extract\n");
  }
  EXPECT_EQ(run_command(folder, {}).messages, "dravo: A subcommand is required\n" + kUsage);
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
  EXPECT_EQ(outcome.messages, "dravo: cannot go on: std::bad_alloc\n");
}

TEST(EverySubcommand, TellsHelpWithAnExampleAndItsVersion) {
  const TemporaryFolder folder;
  for (const char* command : {"prepare", "identify", "scan", "merge"}) {
    const Outcome help = run_command(folder, {command, "--help"});
    EXPECT_EQ(help.status, 0) << command;
    EXPECT_EQ(help.messages, "") << command;
    EXPECT_NE(help.screen.find(std::string("dravo ") + command), std::string::npos);
    EXPECT_NE(help.screen.find("\nExample"), std::string::npos) << help.screen;
    const Outcome version = run_command(folder, {command, "--version"});
    EXPECT_EQ(version.status, 0) << command;
    EXPECT_EQ(version.screen, "dravo " DRAVO_VERSION "\n") << command;
    EXPECT_EQ(version.messages, "") << command;
  }
}

}  // namespace
}  // namespace dravo::test
