#include "scan/zipped_list.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "driver/user_parameters.hpp"
#include "scan/plans.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

/// A list in a folder of its own.
struct ListFile {
  explicit ListFile(const std::string& text) { write(text); }

  void write(const std::string& text) const { folder.write("poses.csv", text); }
  [[nodiscard]] std::string path() const { return (folder.path() / "poses.csv").string(); }
  [[nodiscard]] ZippedList list() const { return ZippedList(path()); }

  TemporaryFolder folder;
};

std::vector<PoseRow> read(const ZippedList& list, std::int64_t first, std::size_t count) {
  std::vector<PoseDegrees> poses(count);
  list.fill(first, poses);
  std::vector<PoseRow> rows;
  rows.reserve(poses.size());
  for (const PoseDegrees& pose : poses) rows.push_back(row_of(pose));
  return rows;
}

struct Layout {
  const char* name;
  const char* text;
};

void PrintTo(const Layout& layout, std::ostream* out) { *out << layout.name; }

class ZippedListWith : public ::testing::TestWithParam<Layout> {};

TEST_P(ZippedListWith, HasTheseTwoRows) {
  const ListFile file(GetParam().text);
  const ZippedList list = file.list();
  ASSERT_EQ(list.size(), 2);
  const std::vector<PoseRow> rows{{3.5, 90, 45, 10, 20, 30}, {4, 0.3, 360, 0, 180, 1e-3}};
  EXPECT_EQ(read(list, 0, 2), rows);
  EXPECT_EQ(read(list, 1, 1), std::vector<PoseRow>{rows[1]});
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, ZippedListWith,
    ::testing::Values(
        Layout{"plain numbers", "3.5,90,45,10,20,30\n4,0.3,360,0,180,1e-3\n"},
        Layout{"no end of the last line", "3.5,90,45,10,20,30\n4,0.3,360,0,180,1e-3"},
        Layout{"names", "r,theta,phi,alpha,beta,gamma\n3.5,90,45,10,20,30\n4,.3,360,0,180,1d-3\n"},
        Layout{"names in another order",
               "gamma,beta,alpha,phi,theta,r\n30,20,10,45,90,3.5\n0.001,180,0,360,0.3,4\n"},
        Layout{"other columns between",
               "index,r,theta,name,phi,alpha,beta,gamma,shortest\n"
               "1,3.5,90,A,45,10,20,30,nan\n7,4,0.3,B,360,0,180,0.001,\n"},
        Layout{"columns behind",
               "r,theta,phi,alpha,beta,gamma,n,name\n3.5,90,45,10,20,30,2,x\n"
               "4,0.3,360,0,180,0.001,,\n"},
        Layout{"a byte-order mark",
               "\xEF\xBB\xBF"
               "3.5,90,45,10,20,30\n4,0.3,360,0,180,1e-3\n"},
        Layout{"a byte-order mark before names",
               "\xEF\xBB\xBFr,theta,phi,alpha,beta,gamma\r\n3.5,90,45,10,20,30\r\n"
               "4,.3,360,0,180,.001\r\n"},
        Layout{"a byte-order mark alone on its line",
               "\xEF\xBB\xBF\n3.5,90,45,10,20,30\n4,0.3,360,0,180,1e-3\n"},
        Layout{"blanks",
               " r , theta,phi,\talpha,beta,gamma \n 3.5 ,\t90,45 ,10, 20,30 \n"
               "4,0.3,360,0,180,0.001\n"},
        Layout{"blank lines", "\n3.5,90,45,10,20,30\n \t\n\n4,0.3,360,0,180,1e-3\n\n"},
        Layout{"blank lines around names",
               "\n \nr,theta,phi,alpha,beta,gamma\n\n3.5,90,45,10,20,30\n4,.3,360,0,180,.001\n"},
        Layout{"ends of lines with carriage returns",
               "r,theta,phi,alpha,beta,gamma\r\n3.5,90,45,10,20,30\r\n\r\n"
               "4,0.3,360,0,180,1e-3\r\n"}));

/// PoseRow i of a long list. Every number is a short decimal, so its text gives the same double.
PoseRow long_row(int i) {
  return {i + 0.5, i % 180 + 0.25, i % 360 + 0.75, i % 90 + 0.0, i % 45 + 0.5, i % 7 + 0.125};
}

std::string text_of(const PoseRow& row) {
  std::string text;
  for (const double value : row) text += (text.empty() ? "" : ",") + std::to_string(value);
  return text;
}

std::string long_list(int rows, bool with_blank_lines) {
  std::string text = "r,theta,phi,alpha,beta,gamma\n";
  for (int i = 0; i < rows; ++i) {
    text += text_of(long_row(i)) + "\n";
    if (with_blank_lines && i % 1000 > 990) text += "  \n";
  }
  return text;
}

class LongZippedList : public ::testing::TestWithParam<bool> {};

TEST_P(LongZippedList, IsReadFromAnyRow) {
  const ListFile file(long_list(3000, GetParam()));
  const ZippedList list = file.list();
  ASSERT_EQ(list.size(), 3000);
  for (const int first : {0, 1, 255, 256, 257, 500, 991, 1023, 1024, 1025, 2047, 2048, 2999})
    for (const int count : {1, 2, 256, 257, 1025, 3000}) {
      if (first + count > 3000) continue;
      const std::vector<PoseRow> rows = read(list, first, static_cast<std::size_t>(count));
      for (int i = 0; i < count; ++i)
        ASSERT_EQ(rows[static_cast<std::size_t>(i)], long_row(first + i)) << first << " + " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutBlankLines, LongZippedList, ::testing::Bool());

TEST(ZippedList, OfAWholeNumberOfBlocksIsReadToItsEnd) {
  std::string text = long_list(2048, false);
  text.pop_back();
  const ListFile file(text);
  const ZippedList list = file.list();
  ASSERT_EQ(list.size(), 2048);
  EXPECT_EQ(read(list, 2047, 1), std::vector<PoseRow>{long_row(2047)});
}

constexpr auto kNames = "r,theta,phi,alpha,beta,gamma\n";

TEST(ZippedListFingerprint, IsThatOfTheNumbersAlone) {
  const std::string rows = "3.5,90,45,10,20,30\n4,0,0,0,0,0\n";
  const std::uint64_t fingerprint = ListFile(rows).list().fingerprint();
  EXPECT_EQ(ListFile(kNames + rows).list().fingerprint(), fingerprint);
  EXPECT_EQ(ListFile("\n3.50, 90,4.5e1,10,20,30\n4,0,0,0,0,0\n").list().fingerprint(), fingerprint);
}

TEST(ZippedListFingerprint, DiffersForOtherRows) {
  const std::uint64_t fingerprint =
      ListFile("3.5,90,45,10,20,30\n4,0,0,0,0,0\n").list().fingerprint();
  for (const char* other :
       {"4,0,0,0,0,0\n3.5,90,45,10,20,30\n", "3.5,90,45,10,20,30\n",
        "3.5,90,45,10,20,30\n4,0,0,0,0,1e-9\n", "3.5,90,45,10,30,20\n4,0,0,0,0,0\n",
        "3.5,90,45,10,20,30\n4,0,0,0,0,0\n4,0,0,0,0,0\n"})
    EXPECT_NE(ListFile(other).list().fingerprint(), fingerprint) << other;
}

struct WrongList {
  const char* text;
  const char* place_and_what;  ///< behind the name of the file
};

void PrintTo(const WrongList& wrong, std::ostream* out) { *out << wrong.text; }

class ZippedListRefuses : public ::testing::TestWithParam<WrongList> {};

TEST_P(ZippedListRefuses, WithItsPlace) {
  const ListFile file(GetParam().text);
  EXPECT_EQ(message_of([&] { (void)file.list(); }), file.path() + GetParam().place_and_what);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ZippedListRefuses,
    ::testing::Values(
        WrongList{"1,2,3,4,5,6\n1,2,x,4,5,6\n",
                  ":2: expected phi (a number), found \"x\"\n1,2,x,4,5,6\n    ^"},
        WrongList{"1,2,3,4,5,6\r\n\r\n1,2,3,4,5,six\r\n",
                  ":3: expected gamma (a number), found \"six\"\n1,2,3,4,5,six\n          ^^^"},
        WrongList{"1,2,3,nan,5,6\n",
                  ":1: expected alpha (a number), found \"nan\"\n1,2,3,nan,5,6\n      ^^^"},
        WrongList{"1,inf,3,4,5,6\n",
                  ":1: expected theta (a number), found \"inf\"\n1,inf,3,4,5,6\n  ^^^"},
        WrongList{"1,2,3,4,,6\n",
                  ":1: expected beta (a number), found \"\"\n1,2,3,4,,6\n        ^"},
        WrongList{
            "1,2,3,4,5,6\n1,2,3,4\n",
            ":2: expected six numbers, or a first line that names the columns, found 4 columns\n"
            "1,2,3,4\n^^^^^^^"},
        WrongList{
            "1,2,3,4,5,6\n1,2,3,4,5,6,7\n",
            ":2: expected six numbers, or a first line that names the columns, found 7 columns\n"
            "1,2,3,4,5,6,7\n^^^^^^^^^^^^^"},
        WrongList{"r,theta,phi,alpha,beta,gamma\n1,2,3,4\n",
                  ":2: expected beta, found the end of the line\n1,2,3,4\n       ^"},
        WrongList{"1,2,0-360,4,5,6\n",
                  ":1: expected phi (a number), found \"0-360\"\n1,2,0-360,4,5,6\n    ^^^^^"},
        WrongList{"\xEF\xBB\xBF"
                  "1,2,x,4,5,6\n",
                  ":1: expected phi (a number), found \"x\"\n1,2,x,4,5,6\n    ^"},
        WrongList{"1;2;3;4;5;6\n",
                  ":1: expected numbers, or the names of columns with r among them\n"
                  "1;2;3;4;5;6\n^^^^^^^^^^^"},
        WrongList{"gamma,beta,alpha,phi,theta,r\n1,2,3,4,5\n",
                  ":2: expected r, found the end of the line\n1,2,3,4,5\n         ^"}));

INSTANTIATE_TEST_SUITE_P(
    Headings, ZippedListRefuses,
    ::testing::Values(
        WrongList{"theta,phi,alpha,beta,gamma\n1,2,3,4,5\n",
                  ":1: expected numbers, or the names of columns with r among them\n"
                  "theta,phi,alpha,beta,gamma\n^^^^^"},
        WrongList{"r,theta,phi,alpha,Beta,gamma\n1,2,3,4,5,6\n",
                  ":1: expected numbers, or the names of columns with beta among them\n"
                  "r,theta,phi,alpha,Beta,gamma\n^"},
        WrongList{"r,theta,phi,alpha,beta,gamma\n1,2,3,4,5,6\nr,theta,phi,alpha,beta,gamma\n",
                  ":3: expected r (a number), found \"r\"\nr,theta,phi,alpha,beta,gamma\n^"},
        WrongList{"\n\nr,phi,alpha,beta,gamma\n1,2,3,4,5\n",
                  ":3: expected numbers, or the names of columns with theta among them\n"
                  "r,phi,alpha,beta,gamma\n^"}));

INSTANTIATE_TEST_SUITE_P(
    ColumnsWithoutNames, ZippedListRefuses,
    ::testing::Values(
        WrongList{
            "1,2,3,4\n",
            ":1: expected six numbers, or a first line that names the columns, found 4 columns\n"
            "1,2,3,4\n^^^^^^^"},
        WrongList{
            "\n \n7,1,2,3,4,5,6\n",
            ":3: expected six numbers, or a first line that names the columns, found 7 columns\n"
            "7,1,2,3,4,5,6\n^^^^^^^^^^^^^"},
        WrongList{
            "1,2,3,4,5,6,\n",
            ":1: expected six numbers, or a first line that names the columns, found 7 columns\n"
            "1,2,3,4,5,6,\n^^^^^^^^^^^^"}));

INSTANTIATE_TEST_SUITE_P(
    Ranges, ZippedListRefuses,
    ::testing::Values(
        WrongList{"1,2,3,4,5,6\n-1,2,3,4,5,6\n",
                  ":2: 0 <= r <= 9999.9; a distance is not negative\n-1,2,3,4,5,6\n^^"},
        WrongList{"10000,2,3,4,5,6\n",
                  ":1: 0 <= r <= 9999.9; the names of files have no room for longer distances\n"
                  "10000,2,3,4,5,6\n^^^^^"},
        WrongList{
            "1,181,3,4,5,6\n",
            ":1: 0 <= theta <= 180; theta 179 with phi 183 is the same direction\n1,181,3,4,5,6\n  ^^^"},
        WrongList{
            "gamma,beta,alpha,phi,theta,r\n1, -2 ,400,4,5,6\n",
            ":2: 0 <= beta <= 180; beta 2 with alpha 220 and gamma 181 is the same orientation\n"
            "1, -2 ,400,4,5,6\n   ^^"}));

INSTANTIATE_TEST_SUITE_P(
    EmptyLists, ZippedListRefuses,
    ::testing::Values(WrongList{"", ": expected rows of six numbers, found none"},
                      WrongList{"\n \n", ": expected rows of six numbers, found none"},
                      WrongList{"r,theta,phi,alpha,beta,gamma\n",
                                ": expected rows of six numbers, found none"}));

TEST(ZippedList, ThatIsNotThereIsRefused) {
  const TemporaryFolder folder;
  const std::string path = (folder.path() / "none.csv").string();
  EXPECT_EQ(message_of([&] { const ZippedList list(path); }),
            path + ": cannot read: No such file or directory");
}

TEST(ZippedList, ThatIsNoRegularFileIsRefused) {
  const TemporaryFolder folder;
  for (const std::string& path : {folder.path().string(), std::string("/dev/null")})
    EXPECT_EQ(message_of([&] { const ZippedList list(path); }),
              path + ": expected a file, which can be read more than once");
}

struct Edit {
  const char* title;
  std::function<void(std::string& text)> change;
};

/// 700 rows without names: three blocks, whatever block a change is in.
std::string rows_before_the_edit() {
  std::string text;
  for (int i = 0; i < 700; ++i) text += text_of(long_row(i)) + "\n";
  return text;
}

/// Changes the text of row `i`.
void change_row(std::string& text, int i, const std::string& now) {
  const std::string before = text_of(long_row(i)) + "\n";
  text.replace(text.find(before), before.size(), now);
}

const std::vector<Edit> kEdits{
    {"all gone", [](std::string& text) { text.clear(); }},
    {"the last row gone", [](std::string& text) { change_row(text, 699, ""); }},
    {"the first row gone", [](std::string& text) { text.erase(0, text.find('\n') + 1); }},
    {"a row of the second block gone", [](std::string& text) { change_row(text, 300, ""); }},
    {"another number in the last digit",
     [](std::string& text) { text[text.find('\n') - 1] = '1'; }},
    {"another number in the last block",
     [](std::string& text) { change_row(text, 600, text_of(long_row(601)) + "\n"); }},
    {"two rows exchanged",
     [](std::string& text) {
       const std::string first = text_of(long_row(10)) + "\n";
       const std::string second = text_of(long_row(11)) + "\n";
       text.replace(text.find(first), first.size() + second.size(), second + first);
     }},
    {"no number any more", [](std::string& text) { text[text.find('\n') - 1] = 'x'; }},
    {"a row more at the beginning", [](std::string& text) { text.insert(0, "1,2,3,4,5,6\n"); }},
    {"shifted by a byte", [](std::string& text) { text.insert(0, "1"); }},
};

TEST(ZippedList, ThatHasChangedIsRefusedWhenRead) {
  for (const Edit& edit : kEdits) {
    const ListFile file(rows_before_the_edit());
    const ZippedList list = file.list();
    ASSERT_EQ(read(list, 0, 700).size(), 700U);
    std::string text = rows_before_the_edit();
    edit.change(text);
    ASSERT_NE(text, rows_before_the_edit()) << edit.title;
    file.write(text);
    EXPECT_EQ(message_of([&] { (void)read(list, 0, 700); }),
              file.path() + ": has changed since it was checked")
        << edit.title;
  }
}

TEST(ZippedList, ThatHasGoneIsRefusedWhenRead) {
  const ListFile file("1,2,3,4,5,6\n");
  const ZippedList list = file.list();
  std::filesystem::remove(file.path());
  EXPECT_EQ(message_of([&] { (void)read(list, 0, 1); }),
            file.path() + ": cannot read: No such file or directory");
}

}  // namespace
}  // namespace dravo::test
