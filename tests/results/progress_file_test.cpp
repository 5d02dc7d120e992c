#include "results/progress_file.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "scan/plans.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

ScanRecord record_with(std::int64_t done) {
  ScanRecord record{{{"r", "3"}, {"random", "5000"}}, 5000, {}, {}, {}};
  record.files = {{ResultFile::frames, {}}, {ResultFile::table, {}}};
  record.totals = {done, 0, done, 0, 2.5, 1};
  return record;
}

/// A scan's name in a folder of its own.
struct Progressed {
  [[nodiscard]] std::string scan() const { return (folder.path() / "scan").string(); }
  [[nodiscard]] std::string file() const { return scan() + ".progress"; }
  [[nodiscard]] std::string text() const { return file_text(file()); }
  void put(const std::string& text) const { folder.write("scan.progress", text); }

  /// The poses that each whole record has done.
  [[nodiscard]] std::vector<std::int64_t> done() const {
    std::vector<std::int64_t> poses;
    for (const ScanRecord& record : ProgressFile(scan()).records())
      poses.push_back(record.totals.poses);
    return poses;
  }

  void write(const std::vector<std::int64_t>& poses) const {
    ProgressFile progress(scan());
    for (const std::int64_t done : poses) progress.write(record_with(done));
  }

  TemporaryFolder folder;
};

using PoseNumbers = std::vector<std::int64_t>;

TEST(ProgressFile, WithoutARecordGoesWithItsOwner) {
  const Progressed scan;
  EXPECT_FALSE(has_progress(scan.scan()));
  {
    const ProgressFile progress(scan.scan());
    EXPECT_TRUE(progress.empty());
    EXPECT_EQ(progress.name(), scan.file());
    EXPECT_TRUE(has_progress(scan.scan()));
  }
  EXPECT_FALSE(has_progress(scan.scan()));
}

TEST(ProgressFile, WithARecordStaysUntilItIsCleared) {
  const Progressed scan;
  scan.write({100});
  EXPECT_TRUE(has_progress(scan.scan()));
  {
    ProgressFile progress(scan.scan());
    EXPECT_FALSE(progress.empty());
    EXPECT_EQ(text_of(progress.records().at(0)), text_of(record_with(100)));
    progress.clear();
    EXPECT_TRUE(progress.empty());
    EXPECT_EQ(scan.text(), "");
  }
  EXPECT_FALSE(has_progress(scan.scan()));
}

TEST(ProgressFile, KeepsTheLastTwoRecordsLaterFirst) {
  const std::vector<PoseNumbers> histories{
      {0}, {0, 200}, {0, 200, 1200}, {7, 200, 1200, 1201, 4999}};
  for (const PoseNumbers& history : histories) {
    const Progressed scan;
    scan.write(history);
    PoseNumbers last(history.rbegin(), history.rend());
    if (last.size() > 2) last.resize(2);
    EXPECT_EQ(scan.done(), last);
  }
}

/// A pair may be larger than the progress, which is written every second.
TEST(ProgressFile, LeavesTheMoleculesOut) {
  const Progressed scan;
  ScanRecord record = record_with(100);
  record.molecules = std::make_shared<const ScannedPair>(
      ScannedPair{pair_of(sample("formamide-dimer")), std::nullopt});
  ProgressFile(scan.scan()).write(record);
  EXPECT_EQ(scan.text().find("symbols"), std::string::npos);
  EXPECT_EQ(scan.done(), PoseNumbers{100});
}

TEST(ProgressFile, WrittenAfterAClearHasNoEarlierRecord) {
  const Progressed scan;
  {
    ProgressFile progress(scan.scan());
    for (const std::int64_t done : {100, 200}) progress.write(record_with(done));
    progress.clear();
    progress.write(record_with(3));
  }
  EXPECT_EQ(scan.done(), PoseNumbers{3});
}

/// A kill or a full disk may leave any part of the last record.
TEST(ProgressFile, WithASpoiltLastRecordHasTheOneBefore) {
  const Progressed scan;
  scan.write({100, 200, 300});
  const std::string whole = scan.text();
  const std::size_t begin = whole.find(text_of(record_with(300)));
  ASSERT_NE(begin, std::string::npos);
  const std::size_t size = whole.find('\n', begin) + 1 - begin;
  for (std::size_t k = 0; k < size; ++k) {
    std::string spoilt = whole;
    spoilt[begin + k] = spoilt[begin + k] == '1' ? '2' : '1';
    scan.put(spoilt);
    EXPECT_EQ(scan.done(), PoseNumbers{200}) << k;
  }
}

TEST(ProgressFile, WithASpoiltEarlierRecordHasTheLast) {
  const Progressed scan;
  scan.write({100, 200, 300});
  std::string spoilt = scan.text();
  spoilt[spoilt.find(text_of(record_with(200))) + 5] = '?';
  scan.put(spoilt);
  EXPECT_EQ(scan.done(), PoseNumbers{300});
}

TEST(ProgressFile, WithoutAWholeRecordIsRefused) {
  const Progressed scan;
  scan.write({100, 200});
  std::string both_spoilt = scan.text();
  for (const std::int64_t done : {100, 200})
    both_spoilt[both_spoilt.find(text_of(record_with(done))) + 5] = '?';
  const std::string without_fingerprint = text_of(record_with(100)) + "\n";
  const std::string of_somebody = "my progress 17\n";
  for (const std::string& text : {both_spoilt, without_fingerprint, of_somebody, std::string("\n"),
                                  std::string("{}\n"), std::string(40000, 'x')}) {
    scan.put(text);
    EXPECT_EQ(message_of([&] { (void)ProgressFile(scan.scan()).records(); }),
              scan.file() +
                  ": expected the progress of a scan, found something else; --overwrite starts "
                  "over");
    EXPECT_TRUE(scan.text() == text) << "a file of somebody else stays";
  }
}

/// Sizes of files are limited while this lives.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : before_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &limit_before_);
    const rlimit limit{bytes, limit_before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &limit_before_);
    (void)std::signal(SIGXFSZ, before_);
  }

 private:
  void (*before_)(int);
  rlimit limit_before_{};
};

/// Of a record that does not fit, the system takes what does, without an error.
TEST(ProgressFile, ThatIsFullTellsTheReason) {
  const Progressed scan;
  scan.write({100});
  for (const rlim_t bytes : {1U, 50U, 100U}) {
    const FileSizeLimit limit(bytes);
    errno = ENOENT;  // of some call before
    EXPECT_EQ(message_of([&] { scan.write({200}); }),
              scan.file() + ": cannot write: File too large");
  }
}

TEST(ProgressFile, IsHeldByOneAtATime) {
  const Progressed scan;
  scan.write({100});
  const std::string text = scan.text();
  {
    const ProgressFile first(scan.scan());
    EXPECT_EQ(message_of([&] { const ProgressFile second(scan.scan()); }),
              scan.file() + ": another process is writing these results");
    EXPECT_EQ(scan.text(), text);
  }
  EXPECT_EQ(scan.done(), PoseNumbers{100}) << "free again";
}

TEST(ProgressFile, OfOneThatHasNotBegunStaysWhenASecondIsRefused) {
  const Progressed scan;
  const ProgressFile first(scan.scan());
  EXPECT_EQ(message_of([&] { const ProgressFile second(scan.scan()); }),
            scan.file() + ": another process is writing these results");
  EXPECT_TRUE(has_progress(scan.scan()));
}

TEST(ProgressFile, ThatCannotBeMadeIsRefused) {
  const TemporaryFolder folder;
  const std::string scan = (folder.path() / "none" / "scan").string();
  EXPECT_EQ(message_of([&] { const ProgressFile progress(scan); }),
            scan + ".progress: cannot open for writing: No such file or directory");
}

}  // namespace
}  // namespace dravo::test
