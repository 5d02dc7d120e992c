#include "molecules/frame_stream.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/message_of.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

/// Number, first line and first word of each frame, and how many lines it has.
struct Seen {
  std::int64_t number;
  std::int64_t first_line;
  std::string first_word;
  std::int64_t lines;

  bool operator==(const Seen&) const = default;
};

void PrintTo(const Seen& seen, std::ostream* out) {
  *out << seen.number << " at line " << seen.first_line << ": " << seen.first_word << ", "
       << seen.lines << " lines";
}

struct StreamedFile {
  explicit StreamedFile(const std::string& text) { folder.write("t.xyz", text); }
  TemporaryFolder folder;
  std::string path = folder.path() / "t.xyz";
};

std::vector<Seen> frames_of(const std::string& text) {
  const StreamedFile file(text);
  FrameStream stream(file.path);
  std::vector<Seen> seen;
  FrameStream::Frame frame;
  while (stream.next(frame)) {
    const std::string lines(frame.text);
    seen.push_back(
        {frame.number, frame.first_line, lines.substr(0, lines.find_first_of(" \n")),
         std::count(lines.begin(), lines.end(), '\n') + (lines.ends_with('\n') ? 0 : 1)});
  }
  EXPECT_EQ(stream.bytes(), static_cast<std::int64_t>(text.size()));
  EXPECT_EQ(stream.bytes_done(), stream.bytes()) << "all of it was looked at";
  return seen;
}

const std::string kAtom = "H 0 0 0\n";

TEST(FrameStream, FindsFramesByTheirCounts) {
  EXPECT_EQ(frames_of("1\nfirst\n" + kAtom + "2\n\n" + kAtom + kAtom + "1\nlast\nH 0 0 0"),
            (std::vector<Seen>{{1, 1, "1", 3}, {2, 4, "2", 4}, {3, 8, "1", 3}}));
}

TEST(FrameStream, PassesOverBlankLinesBetweenFrames) {
  EXPECT_EQ(frames_of("\n \n1\n\n" + kAtom + "\n\t\r\n1\n\n" + kAtom + "\n\n"),
            (std::vector<Seen>{{1, 3, "1", 3}, {2, 8, "1", 3}}));
}

TEST(FrameStream, HasNoFrameInAnEmptyFile) {
  for (const char* text : {"", "\n", "  \n\t\n"}) EXPECT_EQ(frames_of(text), std::vector<Seen>{});
}

TEST(FrameStream, HandsOnWhatIsLeftOfTheLastFrame) {
  EXPECT_EQ(frames_of("1\n\n" + kAtom + "3\n\n" + kAtom),
            (std::vector<Seen>{{1, 1, "1", 3}, {2, 4, "3", 3}}));
}

/// Frame 2 announces three atoms and has two; the lines of frame 3 are not lost with it.
TEST(FrameStream, GoesOnBehindAFrameWithTooFewLines) {
  EXPECT_EQ(frames_of("1\n\n" + kAtom + "3\n\n" + kAtom + kAtom + "1\nthird\n" + kAtom),
            (std::vector<Seen>{{1, 1, "1", 3}, {2, 4, "3", 5}, {3, 8, "1", 3}}));
}

/// The comment of frame 3 is the number of a step, and no count: atoms follow it.
TEST(FrameStream, GoesOnBehindACountThatCannotBeRead) {
  EXPECT_EQ(frames_of("1\n10\n" + kAtom + "x2\n20\n" + kAtom + kAtom + "1\n30\n" + kAtom),
            (std::vector<Seen>{{1, 1, "1", 3}, {2, 4, "x2", 1}, {3, 8, "1", 3}}));
}

TEST(FrameStream, GoesOnBehindAFrameWithTooManyLines) {
  EXPECT_EQ(frames_of("1\n\n" + kAtom + kAtom + "1\n\n" + kAtom),
            (std::vector<Seen>{{1, 1, "1", 3}, {2, 4, "H", 1}, {3, 5, "1", 3}}));
}

TEST(FrameStream, TakesNoCountThatNoFrameCanHave) {
  for (const char* count : {"0", "-1", "150001", "2.0", "2 H", "two"})
    EXPECT_EQ(
        frames_of(std::string(count) + "\n\n" + kAtom + "1\n\n" + kAtom),
        (std::vector<Seen>{{1, 1, std::string(count).substr(0, std::string(count).find(' ')), 1},
                           {2, 4, "1", 3}}))
        << count;
}

/// Blocks of the file end anywhere in a frame; half a million lines make more than forty of them.
TEST(FrameStream, FindsEveryFrameOfAFileOfManyBlocks) {
  std::string text;
  std::vector<Seen> expected;
  constexpr std::int64_t kFrames = 100000;
  for (std::int64_t k = 0; k < kFrames; ++k) {
    const std::int64_t atoms = 1 + k % 5;
    expected.push_back({k + 1,
                        expected.empty() ? 1 : expected.back().first_line + expected.back().lines,
                        std::to_string(atoms), atoms + 2});
    text += std::to_string(atoms) + "\nframe of some atoms\n";
    for (std::int64_t i = 0; i < atoms; ++i) text += "C 1.25 -0.5 " + std::to_string(k) + "\n";
  }
  EXPECT_EQ(frames_of(text), expected);
}

TEST(FrameStream, KnowsTheTrailerOfInputGeometry) {
  const StreamedFile file("2\n\n" + kAtom + kAtom + "\n 1\n\nn\n");
  FrameStream stream(file.path);
  FrameStream::Frame frame;
  ASSERT_TRUE(stream.next(frame));
  EXPECT_EQ(stream.n1(), 1);
  EXPECT_FALSE(stream.next(frame));
}

TEST(FrameStream, ShowsFirstLinesBeforeAnyFrameIsTaken) {
  const StreamedFile file("2\n\n" + kAtom + kAtom);
  FrameStream stream(file.path);
  EXPECT_EQ(stream.first_lines(1), "2\n");
  EXPECT_EQ(stream.first_lines(3), "2\n\n" + kAtom);
  EXPECT_EQ(stream.first_lines(100), "2\n\n" + kAtom + kAtom);
  EXPECT_EQ(stream.rest(), "2\n\n" + kAtom + kAtom);
}

TEST(FrameStream, TellsWhyTheSystemRefusesAFile) {
  EXPECT_EQ(message_of([] { FrameStream("missing.xyz"); }),
            "missing.xyz: cannot read: No such file or directory");
  const TemporaryFolder folder;
  const std::string path = folder.path();
  EXPECT_EQ(message_of([&] {
              FrameStream stream(path);
              (void)stream.first_lines(1);
            }),
            path + ": cannot read: Is a directory");
}

}  // namespace
}  // namespace dravo::test
