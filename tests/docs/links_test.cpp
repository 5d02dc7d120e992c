/// Every link of the documentation leads somewhere.
#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "docs/page.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

/// Pages by their path from the sources.
std::vector<std::string> pages() {
  std::vector<std::string> names{"README.md", "CHANGELOG.md"};
  for (const char* folder : {"docs", "examples", "contrib"})
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(DRAVO_SOURCES) / folder))
      if (entry.path().extension() == ".md")
        names.push_back(fs::relative(entry.path(), DRAVO_SOURCES).string());
  return names;
}

/// What a heading is called in a link: small letters, digits, hyphens for blanks.
std::string anchor_of(const std::string& heading) {
  std::string anchor;
  for (const char c : heading) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) != 0 || c == '_')
      anchor += static_cast<char>(std::tolower(byte));
    else if (c == ' ' || c == '-')
      anchor += '-';
  }
  return anchor;
}

std::set<std::string> anchors_of(const fs::path& file) {
  std::set<std::string> anchors;
  bool in_box = false;
  for (const std::string& line : lines_of(file_text(file.string()))) {
    if (line.starts_with("```")) in_box = !in_box;
    if (!in_box && line.starts_with("#"))
      anchors.insert(anchor_of(stripped(line.substr(line.find_first_not_of('#')))));
  }
  return anchors;
}

/// The targets of a page's links, in which a line may end.
std::vector<std::string> links_of(const std::string& name) {
  const std::string text = file_text(std::string(DRAVO_SOURCES) + "/" + name);
  static const std::regex link(R"(\]\(([^)\s]+)\))");
  std::vector<std::string> targets;
  for (std::sregex_iterator found(text.begin(), text.end(), link), end; found != end; ++found)
    targets.push_back((*found)[1]);
  return targets;
}

TEST(Links, LeadToFilesAndHeadingsThatAreThere) {
  std::size_t links = 0;
  for (const std::string& name : pages()) {
    for (const std::string& target : links_of(name)) {
      if (target.starts_with("https:")) continue;
      ++links;
      const std::size_t hash = target.find('#');
      const std::string path = target.substr(0, hash);
      const fs::path here = fs::path(DRAVO_SOURCES) / name;
      const fs::path file = path.empty() ? here : here.parent_path() / path;
      ASSERT_TRUE(fs::exists(file)) << name << " links to " << target;
      if (hash == std::string::npos) continue;
      EXPECT_EQ(anchors_of(file).count(target.substr(hash + 1)), 1U)
          << name << " links to " << target;
    }
  }
  EXPECT_GE(links, 30U);
}

TEST(Links, AreNamedAfterTheWordsOfTheirHeadings) {
  EXPECT_EQ(anchor_of("11. Placement"), "11-placement");
  EXPECT_EQ(anchor_of("Warnings, and what to do"), "warnings-and-what-to-do");
  EXPECT_EQ(anchor_of("What `qn-dravo` takes"), "what-qn-dravo-takes");
}

/// The README leads to every page.
TEST(Links, OfTheReadmeLeadToEveryPageOfTheDocuments) {
  const auto links = links_of("README.md");
  std::set<std::string> targets;
  for (const std::string& link : links) targets.insert(link.substr(0, link.find('#')));
  for (const std::string& name : pages()) {
    if (name == "README.md") continue;
    EXPECT_EQ(targets.count(name), 1U) << name;
  }
}

}  // namespace
}  // namespace dravo::test
