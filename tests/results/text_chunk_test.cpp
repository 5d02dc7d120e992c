#include "results/text_chunk.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "scan/plans.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

/// Formamide dimers by a plan.
struct Scan {
  explicit Scan(const Options& options, ScanOutput wanted = {Writing::frames, ""})
      : plan(plan_of(options)), output(std::move(wanted)) {}

  [[nodiscard]] TextChunk all() const {
    TextChunk chunk;
    TextMaker(placer, plan, output, nullptr).make(0, plan.poses().size(), chunk);
    return chunk;
  }

  PairPlacer placer{pair_of(sample("formamide-dimer"))};
  ScanPlan plan;
  ScanOutput output;
};

using Row = std::map<std::string, std::string>;

std::vector<std::string> parts_of(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  return parts;
}

std::vector<Row> rows_of(const Scan& scan) {
  const std::string heading =
      writer_of(scan.placer, columns_of(scan.placer, scan.plan, scan.output), Writing::frames)
          .table_heading();
  const auto names = parts_of(heading.substr(0, heading.find('\n')), ',');
  std::vector<Row> rows;
  for (const std::string& line : parts_of(scan.all().table, '\n')) {
    const auto values = parts_of(line, ',');
    rows.emplace_back();
    for (std::size_t k = 0; k < names.size(); ++k) rows.back()[names[k]] = values.at(k);
  }
  return rows;
}

std::size_t decimals_of(const std::string& number) {
  const std::size_t point = number.find('.');
  return point == std::string::npos ? 0 : number.size() - point - 1;
}

// A short contact is 1.9 Angstrom in single precision, or less. Whoever comes a millionth of an
// Angstrom nearer along a line comes at most as much nearer to any atom.
TEST(ContactPlusZero, LeavesAMillionthOfAnAngstromAtMost) {
  constexpr auto kTouch = static_cast<double>(1.9F);
  constexpr double kPrinted = 1e-8;
  for (const Row& row : rows_of(Scan({{"r", "contact + 0"}, {"random", "2000"}}))) {
    EXPECT_EQ(row.at("contacts"), "0") << row.at("index");
    if (row.at("r") == "0") continue;
    const double shortest = std::stod(row.at("shortest"));
    EXPECT_TRUE(shortest > kTouch && shortest < kTouch + 1e-6 + kPrinted) << row.at("shortest");
  }
}

/// The same directions and orientations, two millionths of an Angstrom nearer: the first contact
/// would have to be shorter than that for a pose to lie behind it.
TEST(TwoMillionthsNearerThanContactPlusZero, IsAShortContact) {
  const TemporaryFolder folder;
  std::string list;
  for (const Row& row : rows_of(Scan({{"r", "contact + 0"}, {"random", "300"}}))) {
    std::ostringstream r;
    r.precision(12);
    r << std::stod(row.at("r")) - 2e-6;
    list += r.str();
    for (const char* angle : {"theta", "phi", "alpha", "beta", "gamma"})
      list += "," + row.at(angle);
    list += '\n';
  }
  folder.write("poses.csv", list);
  const TextChunk nearer = Scan({{"zip", (folder.path() / "poses.csv").string()}}).all();
  EXPECT_EQ(nearer.totals.with_contacts, 300);
}

TEST(DistanceAboveContact, HasNineDecimalsAtMost) {
  const Options offsets{{"r", "contact + 0,0.25,0.1234567891234,1e-7"}, {"random", "500"}};
  std::vector<std::string> distances;
  for (const Row& row : rows_of(Scan(offsets))) distances.push_back(row.at("r"));
  ASSERT_EQ(distances.size(), 2000U);
  for (std::size_t k = 0; k < distances.size(); ++k) {
    EXPECT_LE(decimals_of(distances[k]), k < 1000 ? 6U : 9U) << distances[k];
    EXPECT_EQ(distances[k].find('e'), std::string::npos) << distances[k];
  }
}

// --- folders ----------------------------------------------------------------------------------

std::vector<std::string> files_in(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    if (entry.is_regular_file()) names.push_back(fs::relative(entry.path(), folder).string());
  return names;
}

const Options kNearAndFar{{"r", "6,3.1,7"}, {"theta", "90"}, {"phi", "9"},        {"alpha", "8"},
                          {"beta", "9"},    {"gamma", "7"},  {"contacts", "drop"}};

TEST(FolderOfAPose, LosesTheFilesOfAnEarlierRun) {
  const TemporaryFolder folder;
  for (const char* name : {"1", "2", "3"}) fs::create_directory(folder.path() / name);
  folder.write("1/[0009.0-084-011]-(214-152-306)-QN-DRAVO.xyz", "of another pose");
  folder.write("1/[0000.1-NAD-NAD]-(214-152-306)-QN-DRAVO-UCSF-Chimera.bild.part", "of a kill");
  folder.write("2/note.txt", "no pose of this scan");
  const Scan scan(kNearAndFar, {Writing::files, folder.path().string()});
  EXPECT_EQ(scan.all().totals.written, 2) << "the second has contacts";
  EXPECT_EQ(files_in(folder.path() / "1").size(), 2U);
  EXPECT_EQ(files_in(folder.path() / "2"), std::vector<std::string>{"note.txt"});
  EXPECT_EQ(files_in(folder.path() / "3").size(), 2U);
}

TEST(FolderOfAPose, WithAnythingElseIsRefusedAndKeepsIt) {
  const std::string earlier = "1/[0009.0-084-011]-(214-152-306)-QN-DRAVO.xyz";
  for (const char* other :
       {"1/thesis.txt", "1/[0009.0-084-011]-(214-152-306)-QN-DRAVO.xyz.bak", "1/QN-DRAVO.log",
        "1/[0009.0-084-011]-(214-152-306)-QN-DRAVO", "1/within/note.txt", "1/.hidden",
        "1/[009.0-084-011]-(214-152-306)-QN-DRAVO.xyz",
        "1/[0009.0-084-011]-(214-152-306)-QN-DRAVO.xyz/note.txt"}) {
    const TemporaryFolder folder;
    const fs::path file = folder.path() / other;
    fs::create_directories(file.parent_path());
    folder.write(other, "precious");
    const bool earlier_too = !std::string(other).starts_with(earlier + "/");
    if (earlier_too) folder.write(earlier, "of an earlier run");
    const Scan scan(kNearAndFar, {Writing::files, folder.path().string()});
    const std::string top = (folder.path() / "1" / *std::next(fs::path(other).begin())).string();
    EXPECT_EQ(message_of([&] { (void)scan.all(); }),
              top + ": is in the way and belongs to no scan; move it, or choose another --output");
    EXPECT_EQ(file_text(file.string()), "precious");
    EXPECT_EQ(fs::exists(folder.path() / earlier), true) << "nothing was removed";
  }
}

TEST(FolderOfAPose, IsNoFileAndNoLink) {
  const TemporaryFolder elsewhere;
  const std::string linked = "[0009.0-084-011]-(214-152-306)-QN-DRAVO.xyz";
  elsewhere.write(linked, "precious");
  const TemporaryFolder folder;
  const Scan scan(kNearAndFar, {Writing::files, folder.path().string()});
  const std::string message =
      (folder.path() / "1").string() +
      ": is in the way and belongs to no scan; move it, or choose another --output";
  folder.write("1", "a file where the folder shall be");
  EXPECT_EQ(message_of([&] { (void)scan.all(); }), message);
  EXPECT_EQ(file_text((folder.path() / "1").string()), "a file where the folder shall be");
  fs::remove(folder.path() / "1");
  fs::create_directory_symlink(elsewhere.path(), folder.path() / "1");
  EXPECT_EQ(message_of([&] { (void)scan.all(); }), message);
  EXPECT_EQ(file_text((elsewhere.path() / linked).string()), "precious");
}

TEST(FolderOfAPose, ThatCannotBeMadeIsRefused) {
  const TemporaryFolder folder;
  folder.write("taken", "a file");
  const std::string taken = (folder.path() / "taken").string();
  const Scan scan({{"r", "6"}, {"random", "12"}}, {Writing::files, taken});
  EXPECT_EQ(message_of([&] { (void)scan.all(); }),
            taken + "/01: cannot make the folder: Not a directory");
}

}  // namespace
}  // namespace dravo::test
