/// The pages of docs/tutorial, and others whose commands build on each other: every line that they
/// show is given to a shell, in order.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "cli/command.hpp"
#include "cli/known_energies.hpp"
#include "cli/shown_commands.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

const fs::path kDocs = fs::path(DRAVO_SOURCES) / "docs";

/// Pages by their path below docs/, without its ending.
const std::set<std::string> kTutorial{
    "tutorial/cluster", "tutorial/docking", "tutorial/energies", "tutorial/first-pair",
    "tutorial/index",   "tutorial/python",  "tutorial/scan",     "tutorial/trajectory"};

TEST(TutorialPages, AreThoseThatAreTried) {
  std::set<std::string> found;
  for (const auto& entry : fs::directory_iterator(kDocs / "tutorial"))
    found.insert("tutorial/" + entry.path().stem().string());
  EXPECT_EQ(found, kTutorial);
}

/// What a page finds where it begins: the sources that it names, and the programs on the path.
class Beginning : public TemporaryFolder {
 public:
  Beginning() {
    for (const char* name : {"examples", "contrib"})
      fs::create_directory_symlink(fs::path(DRAVO_SOURCES) / name, path() / name);
    fs::create_symlink(tested_dravo(), programs_.path() / "dravo");
    fs::create_symlink(tested_program(), programs_.path() / "qn-dravo");
    const char* others = std::getenv("PATH");
    start_ = "PATH=" + programs_.path().string() + ":" + (others != nullptr ? others : "") +
             "; LC_ALL=C; export LC_ALL; exec 2>&1; ";
  }

  /// What a line prints on both streams, in its order.
  [[nodiscard]] Outcome run(const std::string& line) const {
    return run_in(*this, Words{"/bin/sh", "-c", start_ + line});
  }

 private:
  TemporaryFolder programs_;
  std::string start_;
};

/// A command with nothing below it tells at most which file it wrote.
bool tells_nothing_else(const Lines& printed) {
  return std::all_of(printed.begin(), printed.end(),
                     [](const std::string& line) { return line.starts_with("dravo: wrote "); });
}

/// Energies and minima have other last digits with another LAPACK.
bool agree_but_for_last_digits(std::string printed, std::string shown) {
  constexpr double kLastDigits = 2e-3;
  std::replace(printed.begin(), printed.end(), ',', ' ');
  std::replace(shown.begin(), shown.end(), ',', ' ');
  std::istringstream left(printed), right(shown);
  std::string l, r;
  while (left >> l) {
    if (!(right >> r)) return false;
    if (l == r) continue;
    const auto is_real = [](const std::string& word) {
      return word.find('.') != std::string::npos &&
             word.find_first_not_of("0123456789.-") == std::string::npos;
    };
    if (!is_real(l) || !is_real(r) || std::abs(std::stod(l) - std::stod(r)) > kLastDigits)
      return false;
  }
  return !(right >> r);
}

TEST(LinesWithEnergies, MayDifferInTheirLastDigits) {
  EXPECT_TRUE(agree_but_for_last_digits("1,-9.428,ok", "1,-9.427,ok"));
  EXPECT_FALSE(agree_but_for_last_digits("1,-9.428,ok", "1,-9.424,ok"));
  EXPECT_FALSE(agree_but_for_last_digits("1,-9.428,ok", "2,-9.428,ok"));
  EXPECT_FALSE(agree_but_for_last_digits("-9.428 a", "-9.428"));
  EXPECT_FALSE(agree_but_for_last_digits("-9.428", "-9.428 a"));
}

bool has_energies(const std::string& page) {
  return page == "tutorial/energies" || page == "tutorial/docking";
}

bool is_as_shown(const Lines& printed, const Lines& shown, const std::string& page) {
  return has_energies(page) ? are_as_shown(printed, shown, agree_but_for_last_digits)
                            : are_as_shown(printed, shown);
}

class ShellPages : public testing::TestWithParam<std::string> {};

TEST_P(ShellPages, ShowWhatTheirCommandsPrintAndDraw) {
  if (!has_libxtb() && has_energies(GetParam())) GTEST_SKIP() << "a build without libxtb";
  const std::string text = file_text((kDocs / (GetParam() + ".md")).string());
  const auto commands = shown_in(lines_of(text), "");
  ASSERT_TRUE(!commands.empty() || text.find("```python\n") != std::string::npos);
  const Beginning folder;
  for (const Shown& shown : commands) {
    const Outcome outcome = folder.run(shown.command);
    EXPECT_EQ(outcome.status, 0) << shown.command;
    const Lines printed = lines_of(outcome.screen);
    EXPECT_TRUE(shown.output.empty() ? tells_nothing_else(printed)
                                     : is_as_shown(printed, shown.output, GetParam()))
        << shown.command << "\nprints\n"
        << outcome.screen << "and the page shows\n"
        << joined(shown.output);
  }
  static const std::regex picture(R"(\]\((?:\.\./)?(pictures/([^)]+))\))");
  for (std::sregex_iterator found(text.begin(), text.end(), picture), end; found != end; ++found)
    EXPECT_EQ(folder.read((*found)[2].str()), file_text((kDocs / (*found)[1].str()).string()))
        << (*found)[1] << "; tools/draw_pictures makes all of them again";
}

INSTANTIATE_TEST_SUITE_P(Gallery, ShellPages, testing::Values("gallery"));
INSTANTIATE_TEST_SUITE_P(Tutorial, ShellPages, testing::ValuesIn(kTutorial), [](const auto& page) {
  return std::regex_replace(page.param, std::regex("[^a-z]"), "_");
});

}  // namespace
}  // namespace dravo::test
