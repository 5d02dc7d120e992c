/// Words as the shell of the tests takes them.
#include "view/shell_word.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "end_to_end/program.hpp"

namespace dravo::test {
namespace {

TEST(ShellWord, IsTheSameWordToTheShell) {
  const TemporaryFolder folder;
  for (const std::string& word : std::vector<std::string>{
           "dimer.xyz", "a b",       "",           "it's",        "$HOME",
           "`date`",    "a;b",       "*",          "~",           "!x",
           "\"",        "\\n",       "vdw*0.8",    "</script>",   "caf\xC3\xA9.xyz",
           "tab\there", "line\nend", "esc\x1b[1m", "not\xFFutf8", "mixed'\x01\"$x"}) {
    const Outcome outcome = run_in(folder, {"/bin/bash", "-c", "printf %s " + shell_word(word)});
    EXPECT_EQ(outcome.screen, word) << shell_word(word);
  }
}

TEST(ShellWord, OfPlainLettersHasNoQuotes) {
  EXPECT_EQ(shell_word("../a_b/dimer-2.xyz"), "../a_b/dimer-2.xyz");
  EXPECT_EQ(shell_word("a b"), "'a b'");
  EXPECT_EQ(shell_word("caf\xC3\xA9"), "'caf\xC3\xA9'");
  EXPECT_EQ(shell_word("a\x1b"), "$'a\\x1b'");
}

TEST(ShellFile, IsNoOption) {
  EXPECT_EQ(shell_file("-a b.xyz"), "'./-a b.xyz'");
  EXPECT_EQ(shell_file("a-b.xyz"), "a-b.xyz");
  EXPECT_EQ(shell_file("-"), "-");
}

}  // namespace
}  // namespace dravo::test
