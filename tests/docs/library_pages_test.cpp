/// The pages about the C++ library, against its examples and its headers.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <regex>
#include <set>
#include <string>

#include "docs/page.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

using Texts = std::set<std::string>;

std::vector<fs::path> files_in(const char* folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(fs::path(DRAVO_SOURCES) / folder))
    files.push_back(entry.path());
  return files;
}

TEST(LibraryPage, ShowsTheProgramsOfTheExamples) {
  Texts programs;
  for (const fs::path& file : files_in("examples/library"))
    programs.insert(file_text(file.string()));
  ASSERT_GE(programs.size(), 4U);
  Texts shown;
  for (const Box& box : boxes_of(page("docs/library.md")))
    if (box.name == "cpp" || box.name == "cmake") shown.insert(joined(box.lines));
  EXPECT_EQ(shown, programs);
}

TEST(LibraryPage, NamesEachHeader) {
  const std::string text = file_text(std::string(DRAVO_SOURCES) + "/docs/library.md");
  for (const fs::path& header : files_in("include/dravo"))
    EXPECT_NE(text.find('`' + header.filename().string() + '`'), std::string::npos) << header;
}

/// What a line of a header makes public: a type, a constant or a function, which begin where the
/// line does.
std::string public_name(const std::string& line) {
  static const std::regex type(R"(^(?:class|struct|enum class|using) (\w+) .*)");
  static const std::regex constant(R"(^inline constexpr [^={]* (\w+)(?: = |\{).*)");
  static const std::regex function(R"(^[\w:][\w:<>, ]*[ &](\w+)\(.*)");
  for (const std::regex* kind : {&type, &constant, &function}) {
    std::smatch found;
    if (std::regex_match(line, found, *kind)) return found.str(1);
  }
  return "";
}

TEST(CppReference, FindsWhatAHeaderMakesPublic) {
  EXPECT_EQ(public_name("class Placer {"), "Placer");
  EXPECT_EQ(public_name("class PairPlacer;"), "");
  EXPECT_EQ(public_name("using Label = std::array<char, 2>;"), "Label");
  EXPECT_EQ(public_name("inline constexpr std::array<DockEnd, 4> kDockEnds{DockEnd::minimum,"),
            "kDockEnds");
  EXPECT_EQ(public_name("std::string_view name_of(Shape shape);"), "name_of");
  EXPECT_EQ(public_name("  double r = 0.0;"), "");
}

TEST(CppReference, HasEveryNameOfTheHeadersAndNoOther) {
  Texts names;
  for (const fs::path& header : files_in("include/dravo"))
    for (const std::string& line : lines_of(file_text(header.string())))
      if (const std::string name = public_name(line); !name.empty()) names.insert(name);
  ASSERT_GE(names.size(), 100U);

  Texts listed;
  static const std::regex directive(R"(^\.\. doxygen\w+:: dravo::(\w+).*)");
  for (const std::string& line : page("docs/cpp-reference.md")) {
    std::smatch found;
    if (std::regex_match(line, found, directive)) listed.insert(found.str(1));
  }
  EXPECT_EQ(listed, names);
}

}  // namespace
}  // namespace dravo::test
