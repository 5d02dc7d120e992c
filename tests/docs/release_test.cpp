/// Every place that names the release names the same.
#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "common/version.hpp"
#include "docs/page.hpp"

namespace dravo::test {
namespace {

/// The first match of an expression with one group.
std::string first_match(const std::string& name, const std::string& expression) {
  const std::string text = file_text(std::string(DRAVO_SOURCES) + "/" + name);
  std::smatch found;
  return std::regex_search(text, found, std::regex(expression)) ? found.str(1) : "nothing";
}

TEST(Release, HasOneVersion) {
  EXPECT_EQ(first_match("CHANGELOG.md", "\n## ([^ \n]*)"), DRAVO_VERSION);
  EXPECT_EQ(first_match("CITATION.cff", "\nversion: ([^\n]*)"), DRAVO_VERSION);
  EXPECT_EQ(first_match("debian/changelog", "^qn-dravo \\(([^)]*)\\)"), DRAVO_VERSION);
}

TEST(Release, HasOneDate) {
  const std::string date = first_match("CITATION.cff", "\ndate-released: (\\d{4}-\\d\\d-\\d\\d)\n");
  EXPECT_NE(date, "nothing");
  EXPECT_EQ(first_match("CHANGELOG.md", "\n## [^ ]* \\(([^)]*)\\)"), date);
}

}  // namespace
}  // namespace dravo::test
