/// Files of other formats: every command tells how to convert them, and the advice works.
#include <gtest/gtest.h>

#include <string>

#include "cli/prepared.hpp"

namespace dravo::test {
namespace {

const std::string kPdb =
    "REMARK made by hand\n"
    "ATOM      1  O   HOH A   1       0.000   0.000   0.117  1.00  0.00           O\n"
    "ATOM      2  H1  HOH A   1       0.000   0.757  -0.469  1.00  0.00           H\n"
    "ATOM      3  H2  HOH A   1       0.000  -0.757  -0.469  1.00  0.00           H\n"
    "ATOM      4  O   HOH A   2       0.000   0.000   3.117  1.00  0.00           O\n"
    "ATOM      5  H1  HOH A   2       0.000   0.757   3.703  1.00  0.00           H\n"
    "ATOM      6  H2  HOH A   2       0.000  -0.757   3.703  1.00  0.00           H\n"
    "END\n";

TEST(ForeignFile, IsRefusedByEveryCommandWithTheCommandThatConvertsIt) {
  const TemporaryFolder folder;
  folder.write("waters.pdb", kPdb);
  for (const char* command : {"identify", "place", "prepare", "scan"}) {
    const Outcome outcome = run_command(folder, {command, "waters.pdb", "--split", "3"});
    EXPECT_EQ(outcome.status, 2) << command;
    EXPECT_EQ(outcome.screen, "") << command;
    EXPECT_EQ(outcome.messages,
              "dravo: waters.pdb: this is PDB, not xyz; convert it first:\n"
              "  obabel waters.pdb -O waters.xyz\n")
        << command;
  }
  const Outcome like = run_command(folder, {"identify", "waters.pdb", "--like", "waters.pdb"});
  EXPECT_EQ(like.status, 2);
}

int run_in_shell(const TemporaryFolder& folder, const std::string& command) {
  return run_in(folder, {"/bin/sh", "-c", command}).status;
}

/// Does what the message about a file says, and has the file of that name identified.
void expect_advice_works(const TemporaryFolder& folder, const std::string& file,
                         const std::string& result) {
  const Lines message =
      lines_of(run_command(folder, {"identify", file, "--split", "auto"}).messages);
  ASSERT_EQ(message.size(), 2U) << message[0];
  ASSERT_TRUE(message[1].ends_with(' ' + result)) << message[1];
  ASSERT_EQ(run_in_shell(folder, message[1]), 0) << message[1];
  EXPECT_EQ(run_command(folder, {"identify", result, "--split", "auto"}).status, 0);
}

class CompressedFile : public ::testing::TestWithParam<const char*> {};

TEST_P(CompressedFile, IsUnpackedByTheAdvice) {
  const std::string program = GetParam();
  XyzDimer folder;
  if (run_in_shell(folder, program + " -c pair.xyz > packed") != 0)
    GTEST_SKIP() << "no " << program;
  expect_advice_works(folder, "packed", "packed-2");
}

INSTANTIATE_TEST_SUITE_P(Programs, CompressedFile,
                         ::testing::Values("gzip", "bzip2", "xz", "zstd"));

TEST(ConvertedFile, IsWrittenByTheAdvice) {
  const TemporaryFolder folder;
  if (run_in_shell(folder, "obabel -V") != 0) GTEST_SKIP() << "no obabel";
  folder.write("two waters.pdb", kPdb);
  folder.write("waters.xyz", kPdb);
  const std::string quoted_name = "'two waters.xyz'";
  const Outcome outcome = run_command(folder, {"identify", "two waters.pdb", "--split", "3"});
  const Lines message = lines_of(outcome.messages);
  ASSERT_EQ(message.size(), 2U);
  ASSERT_TRUE(message[1].ends_with(quoted_name)) << message[1];
  EXPECT_EQ(run_in_shell(folder, message[1]), 0);
  EXPECT_EQ(run_command(folder, {"identify", "two waters.xyz", "--split", "3"}).status, 0);
  expect_advice_works(folder, "waters.xyz", "waters-2.xyz");
}

}  // namespace
}  // namespace dravo::test
