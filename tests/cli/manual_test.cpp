/// The manual pages of docs/man tell what the programs take, and their examples work.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "cli/command.hpp"
#include "cli/known_energies.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

const fs::path kManual = DRAVO_SOURCES "/docs/man";

/// Names of an option, such as {"-o", "--output"}, and the choices that it has.
struct Option {
  Words names;
  std::set<std::string> choices;
  bool operator<(const Option& other) const { return names < other.names; }
};

// --- what the program says --------------------------------------------------------------------

std::string help_of(const std::string& command) {
  const TemporaryFolder folder;
  const Outcome outcome =
      run_command(folder, command.empty() ? Words{"--help"} : Words{command, "--help"});
  EXPECT_EQ(outcome.status, 0) << command;
  return outcome.screen;
}

Words commands_of_the_help() {
  Words commands;
  bool below_title = false;
  for (const std::string& line : lines_of(help_of(""))) {
    if (line.empty()) below_title = false;
    if (below_title) commands.push_back(line.substr(2, line.find(' ', 2) - 2));
    if (line == "Subcommands:") below_title = true;
  }
  return commands;
}

/// Lines such as "  -o,--output FILE   file", "  --unit UNIT:{angstrom,bohr,nm}=angstrom" and
/// "  --labels,--no-labels{false}".
std::vector<Option> options_of_the_help(const std::string& command) {
  static const std::regex option("  (-\\S+)( \\S+)?.*");
  static const std::regex with_choices(" [^{]*:\\{(.*)\\}.*");
  std::vector<Option> options;
  for (const std::string& line : lines_of(help_of(command))) {
    std::smatch part, choices;
    if (!std::regex_match(line, part, option)) continue;
    Option found;
    for (const std::string& name : parts_of(part.str(1), ','))
      found.names.push_back(name.substr(0, name.find('{')));
    const std::string type = part.str(2);
    if (std::regex_match(type, choices, with_choices))
      for (const std::string& choice : parts_of(choices.str(1), ',')) found.choices.insert(choice);
    options.push_back(found);
  }
  return options;
}

// --- what a page says -------------------------------------------------------------------------

Lines page_of(const std::string& name) { return lines_of(file_text((kManual / name).string())); }

std::string page_name(const std::string& command) {
  return command.empty() ? "dravo.1" : "dravo-" + command + ".1";
}

/// Of ".It Fl o , Fl -output Ar FILE" the names, and all words that stand behind.
std::vector<Option> options_of_the_page(const std::string& command) {
  std::vector<Option> options;
  for (const std::string& line : page_of(page_name(command))) {
    if (!line.starts_with(".It Fl ")) continue;
    const Lines words = parts_of(line, ' ');
    Option found;
    for (std::size_t k = 1; k < words.size(); ++k) {
      if (words[k] == "Fl")
        found.names.push_back("-" + words.at(++k));
      else
        found.choices.insert(words[k]);
    }
    options.push_back(found);
  }
  return options;
}

Words names_of(const std::vector<Option>& options) {
  Words names;
  for (const Option& option : options)
    names.insert(names.end(), option.names.begin(), option.names.end());
  return names;
}

/// Of all macros of a name, such as Fl, the words behind them.
std::set<std::string> words_behind(const std::string& macro, const Lines& page) {
  std::set<std::string> found;
  for (const std::string& line : page) {
    if (!line.starts_with('.')) continue;
    const Lines words = parts_of(line.substr(1), ' ');
    for (std::size_t k = 0; k + 1 < words.size(); ++k)
      if (words[k] == macro) found.insert(words[k + 1]);
  }
  return found;
}

/// What is shown behind the prompt, without what mdoc needs before hyphens and for backslashes.
Lines examples_of(const std::string& page) {
  Lines examples;
  for (const std::string& line : page_of(page)) {
    if (!line.starts_with("$ ")) continue;
    std::string example;
    for (std::size_t k = 2; k < line.size(); ++k) {
      if (line[k] != '\\') {
        example += line[k];
        continue;
      }
      ++k;
      EXPECT_TRUE(line.at(k) == '-' || line.at(k) == 'e') << page << ": " << line;
      example += line.at(k) == 'e' ? '\\' : line.at(k);
    }
    examples.push_back(example);
  }
  return examples;
}

// --- the two are the same ---------------------------------------------------------------------

TEST(ManualPages, AreThereForEveryCommandAndNoOther) {
  std::set<std::string> expected{"dravo.1", "qn-dravo.1"}, found;
  for (const std::string& command : commands_of_the_help()) expected.insert(page_name(command));
  EXPECT_EQ(expected.size(), 15U);
  for (const auto& entry : fs::directory_iterator(kManual))
    found.insert(entry.path().filename().string());
  EXPECT_EQ(found, expected);
}

TEST(ManualPages, ListTheCommandsInTheOrderOfTheHelp) {
  Words listed;
  for (const std::string& line : page_of("dravo.1"))
    if (line.starts_with(".It Xr dravo-")) listed.push_back(parts_of(line, ' ').at(2).substr(6));
  EXPECT_EQ(listed, commands_of_the_help());
}

TEST(ManualPages, HaveEveryOptionOfTheirCommandAndNoOther) {
  Words commands = commands_of_the_help();
  commands.emplace_back();
  for (const std::string& command : commands) {
    auto told = options_of_the_help(command), written = options_of_the_page(command);
    ASSERT_GE(told.size(), 2U) << command;
    std::sort(told.begin(), told.end());
    std::sort(written.begin(), written.end());
    const auto names = [](const std::vector<Option>& options) {
      std::vector<Words> all;
      for (const Option& option : options) all.push_back(option.names);
      return all;
    };
    EXPECT_EQ(names(written), names(told)) << page_name(command);
  }
}

TEST(ManualPages, HaveTheChoicesOfEveryOption) {
  std::size_t compared = 0;
  for (const std::string& command : commands_of_the_help()) {
    std::map<Words, std::set<std::string>> written;
    for (const Option& option : options_of_the_page(command))
      written[option.names] = option.choices;
    for (const Option& option : options_of_the_help(command)) {
      const auto& words = written[option.names];
      compared += option.choices.size();
      EXPECT_TRUE(
          std::includes(words.begin(), words.end(), option.choices.begin(), option.choices.end()))
          << page_name(command) << ": " << ::testing::PrintToString(option.names);
    }
  }
  EXPECT_GT(compared, 30U);
}

TEST(ManualPages, SpeakOfOptionsAndPagesThatThereAre) {
  std::set<std::string> options;
  Words commands = commands_of_the_help();
  commands.emplace_back();
  for (const std::string& command : commands)
    for (const std::string& name : names_of(options_of_the_help(command)))
      options.insert(name.substr(1));
  std::set<std::string> pages{"xdg-open"};
  for (const auto& entry : fs::directory_iterator(kManual))
    pages.insert(entry.path().stem().string());
  for (const auto& entry : fs::directory_iterator(kManual)) {
    const Lines page = page_of(entry.path().filename().string());
    for (const std::string& option : words_behind("Fl", page))
      EXPECT_TRUE(options.contains(option)) << entry.path() << ": Fl " << option;
    for (const std::string& other : words_behind("Xr", page))
      EXPECT_TRUE(pages.contains(other)) << entry.path() << ": Xr " << other;
  }
}

// --- examples ---------------------------------------------------------------------------------

/// The files that they read. An input of `qn-dravo` only where they do not prepare one.
void put_files_of_examples(const TemporaryFolder& folder, const Lines& examples) {
  const std::string dimer = file_text(DRAVO_EXAMPLES "/formamide-dimer/formamide-dimer.xyz");
  Lines formamide = lines_of(dimer);
  formamide.resize(8);
  formamide[0] = "6";
  folder.write("dimer.xyz", dimer);
  folder.write("formamide.xyz", joined(formamide));
  folder.write("trajectory.xyz", dimer + dimer + dimer);
  folder.write("water.xyz", file_text(DRAVO_EXAMPLES "/water-dimer/water.xyz"));
  folder.write("benzene.xyz", file_text(DRAVO_EXAMPLES "/benzene-dimer/benzene.xyz"));
  folder.write("ammonia.xyz",
               "4\nammonia\nN 0 0 0.116\nH 0 0.94 -0.271\nH 0.814 -0.47 -0.271\n"
               "H -0.814 -0.47 -0.271\n");
  folder.write("ethanol.xyz",
               "9\nethanol\nC 1.17 -0.40 0\nC 0 0.56 0\nO -1.19 -0.21 0\nH -1.94 0.38 0\n"
               "H 2.10 0.16 0\nH 1.14 -1.04 0.88\nH 1.14 -1.04 -0.88\nH 0.04 1.20 0.89\n"
               "H 0.04 1.20 -0.89\n");
  folder.write("energy.sh", "#!/bin/sh\necho energy -1.5\n");
  fs::permissions(folder.path() / "energy.sh", fs::perms::owner_all);
  const auto prepares = [](const std::string& example) {
    return example.starts_with("dravo prepare ");
  };
  if (std::none_of(examples.begin(), examples.end(), prepares))
    folder.write(kInput, file_text(DRAVO_EXAMPLES "/formamide-dimer/" + kInput));
}

bool needs_libxtb(const std::string& example) {
  return example.starts_with("dravo dock ") || example.find("--energy gfn") != std::string::npos;
}

class ManualExamples : public ::testing::TestWithParam<std::string> {};

TEST_P(ManualExamples, Work) {
  const Lines examples = examples_of(GetParam());
  ASSERT_FALSE(examples.empty());
  const TemporaryFolder folder, programs;
  fs::create_symlink(tested_dravo(), programs.path() / "dravo");
  fs::create_symlink(tested_program(), programs.path() / "qn-dravo");
  put_files_of_examples(folder, examples);
  for (const char* display : {"DISPLAY", "WAYLAND_DISPLAY"}) ::unsetenv(display);  // no browser
  for (const std::string& example : examples) {
    if (!has_libxtb() && needs_libxtb(example)) continue;
    const Outcome outcome =
        run_in(folder, {"/bin/bash", "-o", "pipefail", "-c",
                        "PATH=" + programs.path().string() + ":$PATH; " + example});
    EXPECT_EQ(outcome.status, 0) << example << '\n' << outcome.messages;
  }
}

Words names_of_pages() {
  Words names;
  for (const auto& entry : fs::directory_iterator(kManual))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

INSTANTIATE_TEST_SUITE_P(Of, ManualExamples, ::testing::ValuesIn(names_of_pages()),
                         [](const auto& page) {
                           std::string name = fs::path(page.param).stem().string();
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

}  // namespace
}  // namespace dravo::test
