/// Runs that meet a limit: of the size of a file, or of open files.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "end_to_end/scene.hpp"

namespace dravo::test {
namespace {

Outcome run_with_files_up_to(std::size_t bytes, const TemporaryFolder& folder) {
  return run_in(folder, tested_program(), Screen::kept, files_up_to(bytes));
}

// The log comes first and is the longest file. What of it no limit holds back is not lost: it ends
// with the last byte that was allowed.
TEST(FileSizeLimit, InTheMiddleOfTheLogKeepsItsBeginningAndTheEarlierResults) {
  for (const std::size_t limit : {std::size_t{400}, std::size_t{40000}}) {
    const Scene scene(kPlain);
    scene.put_earlier_results();
    const Outcome outcome = run_with_files_up_to(limit, scene.folder);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.messages, failure(kLog, "write: File too large"));
    EXPECT_EQ(outcome.screen, screen_before(0, scene.complete.screen));
    Files expected = scene.earlier;
    expected[kLog] = scene.whole(0).substr(0, limit);
    EXPECT_TRUE(outcome.files == expected) << limit;
  }
}

TEST(FileSizeLimit, AtTheEndOfTheLogLeavesThePairAndTheScreenWhole) {
  const Scene scene(kPlain);
  const Outcome outcome = run_with_files_up_to(scene.whole(0).size() - 1, scene.folder);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure(kLog, "write: File too large"));
  EXPECT_EQ(outcome.screen, scene.complete.screen);
  Files expected = scene.complete.files;
  expected[kLog].pop_back();
  EXPECT_TRUE(outcome.files == expected);
}

TEST(FileSizeLimit, OfTheLongestFileIsNoFault) {
  const Scene scene(kPlain);
  const Outcome outcome = run_with_files_up_to(scene.whole(0).size(), scene.folder);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages, "");
  EXPECT_TRUE(outcome.files == scene.complete.files);
}

// The pair is shorter than input-GEOMETRY.xyz and the drawing shorter than the log: no limit meets
// them first.
TEST(FileSizeLimit, OfALargeGeometryKeepsTheLogUpToItAndTheEarlierGeometry) {
  const SampleInput pair = enlarged(sample("formamide-dimer"), 400);
  const Outcome complete = run_on(pair.text());
  const std::string& log = complete.files.at(kLog);
  const std::size_t limit = log.size();
  ASSERT_GT(complete.files.at("input-GEOMETRY.xyz").size(), limit);

  const TemporaryFolder folder;
  folder.write(kInput, pair.text());
  folder.write("input-GEOMETRY.xyz", "earlier\n");
  const Outcome outcome = run_with_files_up_to(limit, folder);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure("input-GEOMETRY.xyz", "write: File too large"));
  EXPECT_TRUE(outcome.files ==
              (Files{{"input-GEOMETRY.xyz", "earlier\n"}, {kLog, log_before(1, log)}}));
}

TEST(FileSizeLimit, OfAScreenThatIsAppendedToAFileLeavesTheResultsWhole) {
  constexpr std::size_t kLimit = 1'000'000;
  const Scene scene(kPlain);
  const TemporaryFolder elsewhere;
  elsewhere.write("screen", std::string(kLimit, 'x'));
  const std::string screen = (elsewhere.path() / "screen").string();
  const Outcome outcome = run_in(scene.folder, tested_program(), Screen::kept, [&] {
    redirect(STDOUT_FILENO, screen.c_str(), O_WRONLY | O_APPEND);
    set_limit(RLIMIT_FSIZE, kLimit);
  });
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure("standard output", "write: File too large"));
  EXPECT_TRUE(outcome.files == scene.complete.files);
  EXPECT_EQ(fs::file_size(screen), kLimit);
}

/// A caller's own files, which a child inherits, would count as well.
void limit_descriptors(rlim_t count) {
  ::close_range(STDERR_FILENO + 1, ~0U, 0);
  set_limit(RLIMIT_NOFILE, count);
}

// Four descriptors: the three standard streams and one more, which the log keeps.
TEST(DescriptorLimit, BesideTheOpenLogNamesTheFirstGeometry) {
  const Scene scene(kPlain);
  scene.put_earlier_results();
  const Outcome outcome =
      run_in(scene.folder, tested_program(), Screen::kept, [] { limit_descriptors(4); });
  expect_first_geometry_refused(outcome, scene, "Too many open files");
}

// The loader, which comes before the program, needs one descriptor too: that of standard input,
// which the program takes before it opens its first file.
TEST(DescriptorLimit, BesideTheStandardStreamsNamesTheInput) {
  const Scene scene(kPlain);
  scene.put_earlier_results();
  const Outcome outcome = run_in(scene.folder, tested_program(), Screen::kept, [] {
    ::close(STDIN_FILENO);
    limit_descriptors(3);
  });
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure(kInput, "read: Too many open files"));
  EXPECT_TRUE(outcome.files == scene.earlier);
}

}  // namespace
}  // namespace dravo::test
