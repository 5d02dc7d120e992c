/// docs/input.md against the bundled input and a run of it.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "docs/page.hpp"
#include "docs/shown_lines.hpp"
#include "end_to_end/program.hpp"

namespace dravo::test {
namespace {

const std::string kExample = DRAVO_EXAMPLES "/formamide-dimer/QN-input-GEOMETRY.xyz";

/// Rows of the page's tables whose first cell begins so.
std::vector<Lines> rows_of(const std::string& beginning) {
  std::vector<Lines> rows;
  for (const std::string& line : page("docs/input.md")) {
    const Lines cells = cells_of(line);
    if (!cells.empty() && cells[0].starts_with(beginning)) rows.push_back(cells);
  }
  return rows;
}

TEST(InputPage, ShowsTheLinesOfTheExample) {
  const Lines lines = lines_of(file_text(kExample));
  const std::size_t N = std::stoul(lines.at(0));
  const auto rows = rows_of("N+");
  ASSERT_EQ(rows.size(), 11U);
  for (const Lines& row : rows) {
    const std::size_t line = N + std::stoul(row[0].substr(2));
    EXPECT_EQ(row[1], "`" + lines.at(line - 1) + "`");
  }
}

TEST(InputPage, NamesTheFilesOfTheRunAndShowsItsScreen) {
  const Outcome run = run_on(file_text(kExample));
  std::set<std::string> names;
  for (const char* beginning : {"`[0006", "`input-", "`QN-"})
    for (const Lines& row : rows_of(beginning)) names.insert(row[0].substr(1, row[0].size() - 2));
  EXPECT_EQ(names, names_of(run));
  for (const Box& box : boxes_of(page("docs/input.md")))
    end_of_shown(box.lines, lines_of(run.screen), 0);
}

}  // namespace
}  // namespace dravo::test
