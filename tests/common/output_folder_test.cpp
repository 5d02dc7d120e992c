#include "common/output_folder.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <thread>

#include "common/errors.hpp"
#include "support/message_of.hpp"
#include "support/sample_input.hpp"

namespace dravo {
namespace {

namespace fs = std::filesystem;

using test::file_text;
using test::message_of;

/// Each test runs in an empty folder of its own.
class WorkingDirectoryTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "output-folder-XXXXXX").string();
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    own_ = pattern;
    before_ = fs::current_path();
    fs::current_path(own_);
  }
  void TearDown() override {
    if (own_.empty()) return;
    fs::current_path(before_);
    fs::remove_all(own_);
  }

  [[nodiscard]] std::set<std::string> names() const {
    std::set<std::string> result;
    for (const auto& entry : fs::directory_iterator(own_)) result.insert(entry.path().filename());
    return result;
  }

  WorkingDirectory folder;

 private:
  fs::path own_;
  fs::path before_;
};

/// No file of this process may grow beyond a limit while this object lives.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_{};
  void (*handler_)(int);
};

TEST_F(WorkingDirectoryTest, OpenCreatesTheFileAtOnce) {
  const auto sink = folder.open("log.txt");
  EXPECT_TRUE(fs::exists("log.txt"));
  EXPECT_EQ(file_text("log.txt"), "");
}

TEST_F(WorkingDirectoryTest, OpenStartsAnEarlierFileAnew) {
  std::ofstream("log.txt") << "a long text of an earlier run\n";
  folder.open("log.txt")->write("new\n");
  EXPECT_EQ(file_text("log.txt"), "new\n");
}

TEST_F(WorkingDirectoryTest, OpenFileGrowsInTheOrderOfTheWrites) {
  const auto sink = folder.open("log.txt");
  sink->write(" first \n");
  EXPECT_EQ(file_text("log.txt"), " first \n");  // readable while the run goes on
  sink->write("");
  sink->write(std::string_view("\0second\n", 8));
  EXPECT_EQ(file_text("log.txt"), std::string(" first \n\0second\n", 16));
}

TEST_F(WorkingDirectoryTest, OpenTakesPiecesOfManyMegabytes) {
  std::string large(3'000'000, 'x');
  large[0] = 'a';
  large.back() = 'z';
  folder.open("log.txt")->write(large);
  EXPECT_TRUE(file_text("log.txt") == large);
}

TEST_F(WorkingDirectoryTest, OpenInAFolderThatDoesNotExistNamesFileAndReason) {
  EXPECT_EQ(message_of([&] { (void)folder.open("gone/log.txt"); }),
            "gone/log.txt: cannot open for writing: No such file or directory");
}

TEST_F(WorkingDirectoryTest, OpenOfADirectoryNamesFileAndReason) {
  fs::create_directory("log.txt");
  EXPECT_EQ(message_of([&] { (void)folder.open("log.txt"); }),
            "log.txt: cannot open for writing: Is a directory");
}

TEST_F(WorkingDirectoryTest, WriteToAFullDiskNamesFileAndReason) {
  fs::create_symlink("/dev/full", "log.txt");
  const auto sink = folder.open("log.txt");
  EXPECT_EQ(message_of([&] { sink->write("x"); }),
            "log.txt: cannot write: No space left on device");
}

TEST_F(WorkingDirectoryTest, WriteThatStopsHalfWayFails) {
  const auto sink = folder.open("log.txt");
  const FileSizeLimit limit(1000);
  EXPECT_EQ(message_of([&] { sink->write(std::string(1500, 'x')); }),
            "log.txt: cannot write: File too large");
}

TEST_F(WorkingDirectoryTest, ReplaceWritesTheWholeFileAndLeavesNoOther) {
  folder.replace("[0003.5-090-045]-(010-020-030)-QN-DRAVO.xyz", "12\n\nC 0.0\n");
  EXPECT_EQ(file_text("[0003.5-090-045]-(010-020-030)-QN-DRAVO.xyz"), "12\n\nC 0.0\n");
  EXPECT_EQ(names(), std::set<std::string>{"[0003.5-090-045]-(010-020-030)-QN-DRAVO.xyz"});
}

TEST_F(WorkingDirectoryTest, ReplaceWritesAnEmptyFile) {
  folder.replace("pair.xyz", "");
  EXPECT_EQ(names(), std::set<std::string>{"pair.xyz"});
  EXPECT_EQ(fs::file_size("pair.xyz"), 0U);
}

TEST_F(WorkingDirectoryTest, ReplaceTakesThePlaceOfALongerFile) {
  std::ofstream("pair.xyz") << "a long text of an earlier run\n";
  folder.replace("pair.xyz", "new\n");
  EXPECT_EQ(file_text("pair.xyz"), "new\n");
  EXPECT_EQ(names(), std::set<std::string>{"pair.xyz"});
}

TEST_F(WorkingDirectoryTest, ReplaceNeverChangesAFileThatSomebodyReads) {
  std::ofstream("pair.xyz") << "earlier\n";
  std::ifstream reader("pair.xyz");
  folder.replace("pair.xyz", "new\n");
  std::string line;
  std::getline(reader, line);
  EXPECT_EQ(line, "earlier");
}

TEST_F(WorkingDirectoryTest, ReplaceInAFolderThatDoesNotExistNamesFileAndReason) {
  EXPECT_EQ(message_of([&] { folder.replace("gone/pair.xyz", "x"); }),
            "gone/pair.xyz.part: cannot open for writing: No such file or directory");
  EXPECT_EQ(names(), std::set<std::string>{});
}

TEST_F(WorkingDirectoryTest, ReplaceOfADirectoryNamesFileAndReasonAndLeavesNoOther) {
  fs::create_directory("pair.xyz");
  EXPECT_EQ(message_of([&] { folder.replace("pair.xyz", "x"); }),
            "pair.xyz: cannot put in place: Is a directory");
  EXPECT_EQ(names(), std::set<std::string>{"pair.xyz"});
  EXPECT_TRUE(fs::is_directory("pair.xyz"));
}

TEST_F(WorkingDirectoryTest, ReplaceThatFailsHalfWayKeepsTheEarlierFile) {
  std::ofstream("pair.xyz") << "earlier\n";
  {
    const FileSizeLimit limit(1000);
    EXPECT_EQ(message_of([&] { folder.replace("pair.xyz", std::string(1500, 'x')); }),
              "pair.xyz: cannot write: File too large");
  }
  EXPECT_EQ(file_text("pair.xyz"), "earlier\n");
  EXPECT_EQ(names(), std::set<std::string>{"pair.xyz"});
}

TEST_F(WorkingDirectoryTest, DescriptorSinkFailsOnAFullDisk) {
  const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
  ASSERT_GE(full, 0);
  const auto sink = sink_to_descriptor(full, "standard output");
  EXPECT_NO_THROW(sink->write(""));
  EXPECT_EQ(message_of([&] { sink->write("x"); }),
            "standard output: cannot write: No space left on device");
  ::close(full);
}

TEST_F(WorkingDirectoryTest, DescriptorSinkFailsOnADescriptorForReading) {
  const int zero = ::open("/dev/zero", O_RDONLY | O_CLOEXEC);
  ASSERT_GE(zero, 0);
  EXPECT_EQ(message_of([&] { sink_to_descriptor(zero, "standard output")->write("x"); }),
            "standard output: cannot write: Bad file descriptor");
  ::close(zero);
}

TEST_F(WorkingDirectoryTest, DescriptorSinkLeavesTheDescriptorOpen) {
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  const auto first = sink_to_descriptor(pipe[1], "standard output");
  first->write(" one\n");
  first->close();
  sink_to_descriptor(pipe[1], "standard output")->write(" two\n");
  ::close(pipe[1]);
  std::array<char, 64> bytes{};
  const ssize_t count = ::read(pipe[0], bytes.data(), bytes.size());
  ::close(pipe[0]);
  ASSERT_EQ(count, 10);
  EXPECT_EQ(std::string(bytes.data(), 10), " one\n two\n");
}

std::atomic<int> interruptions{0};

/// SIGUSR1 interrupts a write that waits, as long as this object lives.
class InterruptingSignal {
 public:
  InterruptingSignal() {
    struct sigaction action {};  // no SA_RESTART: the system must not begin the write again
    action.sa_handler = [](int) { ++interruptions; };
    ::sigaction(SIGUSR1, &action, &before_);
    interruptions = 0;
  }
  InterruptingSignal(const InterruptingSignal&) = delete;
  InterruptingSignal& operator=(const InterruptingSignal&) = delete;
  ~InterruptingSignal() { ::sigaction(SIGUSR1, &before_, nullptr); }

 private:
  struct sigaction before_ {};
};

// Once the first byte has come, the writer fills the pipe and waits: the first signal ends its
// write with a part of the bytes, and one that meets a full pipe ends it with none.
std::string read_while_interrupting(int descriptor, pthread_t writer) {
  std::string received(1, '\0');
  if (::read(descriptor, received.data(), 1) != 1) return "nothing came";
  for (int sent = 1; sent <= 200; ++sent) {
    ::pthread_kill(writer, SIGUSR1);
    while (interruptions < sent) std::this_thread::yield();
  }
  std::array<char, 1000> bytes{};
  for (ssize_t count = 0; (count = ::read(descriptor, bytes.data(), bytes.size())) > 0;)
    received.append(bytes.data(), static_cast<std::size_t>(count));
  return received;
}

TEST_F(WorkingDirectoryTest, DescriptorSinkGoesOnAfterAShortOrInterruptedWrite) {
  const InterruptingSignal signal;
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  std::string bytes;
  for (int number = 0; bytes.size() < 1'000'000; ++number) bytes += std::to_string(number) + '\n';
  std::string received;
  std::thread reader(
      [&, writer = ::pthread_self()] { received = read_while_interrupting(pipe[0], writer); });
  EXPECT_EQ(message_of([&] { sink_to_descriptor(pipe[1], "standard output")->write(bytes); }), "");
  ::close(pipe[1]);
  reader.join();
  ::close(pipe[0]);
  EXPECT_EQ(interruptions, 200);
  EXPECT_TRUE(received == bytes);
}

}  // namespace
}  // namespace dravo
