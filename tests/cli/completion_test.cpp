/// What bash and zsh complete behind `dravo`, by the scripts that the program prints.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/command.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

std::string completions_of(const char* shell) {
  const TemporaryFolder folder;
  const Outcome outcome = run_command(folder, {"completion", shell});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.messages, "");
  return outcome.screen;
}

/// Molecules, a plan, a list, a finished scan, parts of another one, and what is none of these.
void put_files_to_complete(const TemporaryFolder& folder) {
  for (const char* name :
       {"dimer.xyz", "water.xyz", "plan.toml", "list.csv", "near.xyz", "near.csv", "near.json",
        "settings.json", "far-1-of-2.json", "far-2-of-2.json", "notes.txt", "two words.xyz"})
    folder.write(name, "");
  for (const char* name : {"qc", "runs"}) fs::create_directory(folder.path() / name);
  for (const char* name : {"runs/deep.csv", "runs/deep.json", "runs/one.pdb"})
    folder.write(name, "");
}

// --- bash -------------------------------------------------------------------------------------

struct Typed {
  Words words;     ///< behind `dravo`; the last one is completed
  Words expected;  ///< sorted
};

/// As the Tab key does it, without the functions of the package bash-completion.
Words completed_by_bash(const TemporaryFolder& folder, const std::string& script,
                        const Words& words) {
  Words arguments{"/usr/bin/env",
                  "-i",
                  "HOME=" + folder.path().string(),
                  "/bin/bash",
                  "--norc",
                  "-c",
                  ". \"$0\"; COMP_WORDS=(dravo \"$@\") COMP_CWORD=$#; _dravo dravo; "
                  "for word in \"${COMPREPLY[@]}\"; do echo \"$word\"; done",
                  script};
  const Outcome outcome = run_in(folder, arguments + words);
  EXPECT_EQ(outcome.messages, "") << ::testing::PrintToString(words);
  Words completed = lines_of(outcome.screen);
  std::sort(completed.begin(), completed.end());
  return completed;
}

class Completed : public ::testing::Test {
 protected:
  Completed() {
    put_files_to_complete(folder_);
    scripts_.write("dravo.bash", completions_of("bash"));
  }

  void expect_completed(const std::vector<Typed>& cases) const {
    for (const auto& [words, expected] : cases)
      EXPECT_EQ(completed_by_bash(folder_, (scripts_.path() / "dravo.bash").string(), words),
                expected)
          << ::testing::PrintToString(words);
  }

 private:
  TemporaryFolder folder_, scripts_;
};

TEST_F(Completed, ByBashAreCommandsAndTheirOptions) {
  expect_completed(
      {{{"sc"}, {"scan"}},
       {{"e"}, {"energy", "export", "extract"}},
       {{"comp"}, {}},
       {{"--v"}, {"--version"}},
       {{"scan", "--be"}, {"--best", "--beta"}},
       {{"scan", "dimer.xyz", "--split", "6", "--ov"}, {"--overwrite"}},
       {{"scan", "--overwrite", "--ov"}, {"--overwrite"}},
       {{"merge", "-"},
        {"--help", "--json", "--overwrite", "--quiet", "--threads", "--version", "-h"}},
       {{"merge", "--split"}, {}},
       {{"export", "--no-co"}, {"--no-counterpoise"}},
       {{"draw", "--no-a"}, {"--no-angles"}},
       {{"nothing", "--o"}, {}}});
}

TEST_F(Completed, ByBashAreChoices) {
  const Words methods{"gfn1", "gfn2", "gfnff"};
  expect_completed({{{"scan", "--unit", ""}, {"angstrom", "bohr", "nm"}},
                    {{"place", "--unit", "bo"}, {"bohr"}},
                    {{"scan", "--energy", "g"}, methods},
                    {{"energy", "--energy", "c"}, {"command"}},
                    {{"dock", "--search", ""}, methods},
                    {{"collect", "--read-unit", "k"}, {"kcal/mol", "kj/mol"}},
                    {{"scan", "--contacts", ""}, {"drop", "keep", "only"}},
                    {{"identify", "--frames", ""}, {"extended", "strict"}},
                    {{"identify", "--frame", ""}, {"all"}},
                    {{"place", "--frame", ""}, {}},
                    {{"view", "--split", ""}, {"auto"}},
                    {{"view", "--view", ""}, {"iso", "x", "y", "z"}},
                    {{"draw", "--theme", "d"}, {"dark"}},
                    {{"export", "--ghost", ""}, {"1", "2"}},
                    {{"export", "q"}, {"qchem", "qcschema"}},
                    {{"export", "--method", "hf", "t"}, {"template"}}});
}

TEST_F(Completed, ByBashIsNoValueOfOnesOwn) {
  expect_completed({{{"scan", "--r", ""}, {}},
                    {{"scan", "--contact-distance", ""}, {}},
                    {{"energy", "--charges", ""}, {}},
                    {{"merge", "near", ""}, {}}});
}

TEST_F(Completed, ByBashAreFilesByTheirEnding) {
  const Words molecules{"dimer.xyz", "near.xyz", "qc", "runs", "two words.xyz", "water.xyz"};
  expect_completed(
      {{{"place", ""}, molecules},
       {{"place", "dimer.xyz", "wa"}, {"water.xyz"}},
       {{"place", "--r", "3", "dimer.xyz", "wa"}, {"water.xyz"}},
       {{"place", "--exact", "wa"}, {"water.xyz"}},
       {{"place", "--like", "tw"}, {"two words.xyz"}},
       {{"scan", "--plan", ""}, {"plan.toml", "qc", "runs"}},
       {{"scan", "--zip", "l"}, {"list.csv"}},
       {{"export", "--template", "n"}, {"near.csv", "near.json", "near.xyz", "notes.txt"}},
       {{"draw", "-o", "near"}, {"near.json"}},
       {{"identify", "--output", "ne"}, {"near.csv"}},
       {{"collect", ""}, {"qc", "runs"}},
       {{"export", "psi4", "dimer.xyz", "-o", "q"}, {"qc"}}});
}

TEST_F(Completed, ByBashAreAllFilesWhereNoneHasTheEnding) {
  expect_completed({{{"place", "runs/o"}, {"runs/one.pdb"}}, {{"place", "no"}, {"notes.txt"}}});
}

TEST_F(Completed, ByBashAreNamesOfResults) {
  expect_completed({{{"extract", "n"}, {"near"}},
                    {{"extract", "s"}, {}},
                    {{"extract", "runs/"}, {"runs/deep"}},
                    {{"extract", "~/ru"}, {"~/runs"}},
                    {{"extract", "~/runs/"}, {"~/runs/deep"}},
                    {{"view", "ne"}, {"near", "near.xyz"}},
                    {{"export", "psi4", "ne"}, {"near", "near.xyz"}},
                    {{"merge", ""}, {"far", "qc", "runs"}}});
}

/// bash divides words at = unless somebody told it otherwise.
TEST_F(Completed, ByBashAreValuesBehindEquals) {
  expect_completed({{{"scan", "--unit", "=", ""}, {"angstrom", "bohr", "nm"}},
                    {{"scan", "--unit", "="}, {"angstrom", "bohr", "nm"}},
                    {{"scan", "--unit", "=", "bo"}, {"bohr"}},
                    {{"scan", "--unit", "=", "bohr", "wa"}, {"water.xyz"}},
                    {{"scan", "--plan", "=", "pl"}, {"plan.toml"}},
                    {{"scan", "--unit=b"}, {"--unit=bohr"}},
                    {{"scan", "--plan=p"}, {"--plan=plan.toml"}},
                    {{"scan", "--unit=bohr", "wa"}, {"water.xyz"}}});
}

// --- zsh --------------------------------------------------------------------------------------

struct Line {
  std::string typed, completed;
};

/// A line ends with a blank where a word is complete.
const std::vector<Line> kZshLines{
    {"dravo sca", "dravo scan "},
    {"dravo comp", "dravo comp"},
    {"dravo --ver", "dravo --version "},
    {"dravo scan --bes", "dravo scan --best="},
    {"dravo prepare --ov", "dravo prepare --overwrite "},
    {"dravo draw --no-an", "dravo draw --no-angles "},
    {"dravo scan --unit=b", "dravo scan --unit=bohr "},
    {"dravo scan --unit bo", "dravo scan --unit bohr "},
    {"dravo energy --energy gfnf", "dravo energy --energy gfnff "},
    {"dravo collect --read-unit kc", "dravo collect --read-unit kcal/mol "},
    {"dravo scan --contacts dr", "dravo scan --contacts drop "},
    {"dravo draw --theme=d", "dravo draw --theme=dark "},
    {"dravo export qcs", "dravo export qcschema "},
    {"dravo place di", "dravo place dimer.xyz "},
    {"dravo place dimer.xyz wat", "dravo place dimer.xyz water.xyz "},
    {"dravo place --like tw", "dravo place --like two\\ words.xyz "},
    {"dravo scan --plan pl", "dravo scan --plan plan.toml "},
    {"dravo scan --zip l", "dravo scan --zip list.csv "},
    {"dravo draw -o near", "dravo draw -o near.json "},
    {"dravo extract n", "dravo extract near"},
    {"dravo extract runs/d", "dravo extract runs/deep"},
    {"dravo merge f", "dravo merge far"},
    {"dravo collect q", "dravo collect qc/"}};

TEST(ZshCompletion, CompletesLines) {
  if (std::system("command -v zsh > /dev/null") != 0) GTEST_SKIP() << "zsh is not there";
  const TemporaryFolder folder, functions, home;
  put_files_to_complete(folder);
  functions.write("_dravo", completions_of("zsh"));
  std::string typed, expected;
  for (const Line& line : kZshLines) {
    typed += line.typed + '\n';
    expected += line.completed + '\n';
  }
  functions.write("typed", typed);
  const std::string path = functions.path().string();
  const Outcome outcome =
      run_in(folder, {"/bin/sh", "-c",
                      "HOME=$3 LC_ALL=C TERM=xterm timeout 60 zsh -f " DRAVO_SOURCES
                      "/tests/cli/complete.zsh \"$1\" < \"$2\"",
                      "sh", path, path + "/typed", home.path().string()});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.screen, expected);
}

// --- the command that prints them -------------------------------------------------------------

TEST(CompletionCommand, IsNotAmongThoseThatAreTold) {
  const TemporaryFolder folder;
  const std::string help = run_command(folder, {"--help"}).screen;
  EXPECT_NE(help.find("\n  convert "), std::string::npos);
  EXPECT_EQ(help.find("completion"), std::string::npos);
  for (const Words& words : {Words{}, Words{"x"}, Words{"compl"}}) {
    const std::string messages = run_command(folder, words).messages;
    EXPECT_NE(messages, "");
    EXPECT_EQ(messages.find("completion"), std::string::npos) << messages;
  }
}

TEST(CompletionCommand, TakesBashAndZsh) {
  const TemporaryFolder folder;
  const Outcome outcome = run_command(folder, {"completion", "fish"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.screen, "");
  EXPECT_NE(outcome.messages.find("expected bash or zsh, found \"fish\""), std::string::npos)
      << outcome.messages;
}

}  // namespace
}  // namespace dravo::test
