/// What the system can do to a run: a full disk, limits, permissions, lost streams, a kill.
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <random>
#include <string_view>
#include <utility>

#include "driver/run_units.hpp"
#include "end_to_end/program.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

using Files = std::map<std::string, std::string>;

const std::string kInput = "QN-input-GEOMETRY.xyz";
const std::string kLog = "QN-LOG-PARAM.txt";

/// Inputs of the same parameters: the output names are the same, the contents differ.
struct SameNames {
  const char* title;
  SampleInput earlier;  ///< its results stand in the folder before the run
  SampleInput input;
  std::array<std::string, 4> names;  ///< in the order in which the run opens them
};

SampleInput with_parameters_of(const char* parameters, const char* atoms) {
  SampleInput result = sample(atoms);
  result.parameters = sample(parameters).parameters;
  return result;
}

SampleInput moved_closer(SampleInput pair, const char* r) {
  pair.parameters[0] = r;
  return pair;
}

const SameNames kPlain{"plain",
                       with_parameters_of("formamide-dimer", "acetamide-acrylonitrile"),
                       sample("formamide-dimer"),
                       {kLog, "input-GEOMETRY.xyz", "[0006.5-084-011]-(214-152-306)-QN-DRAVO.xyz",
                        "[0006.5-084-011]-(214-152-306)-QN-DRAVO-UCSF-Chimera.bild"}};

// At half an Angstrom the molecules lie in each other.
const SameNames kContacts{
    "contacts",
    moved_closer(kPlain.earlier, "0.5"),
    moved_closer(kPlain.input, "0.5"),
    {kLog, "input-GEOMETRY.xyz", "[0000.5-084-011]-(214-152-306)-SHORT-CONTACTS-IDENTIFED.xyz",
     "[0000.5-084-011]-(214-152-306)-SHORT-CONTACTS-IDENTIFIED.bild"}};

/// The folder of a run that meets a fault, and the runs by which it is judged.
class Scene {
 public:
  explicit Scene(const SameNames& inputs)
      : names(inputs.names),
        earlier(run_on(inputs.earlier.text()).files),
        complete(run_on(inputs.input.text())) {
    folder.write(kInput, inputs.input.text());
    for (const Files* files : {&earlier, &complete.files}) {
      EXPECT_EQ(files->size(), names.size());
      for (const std::string& name : names) EXPECT_EQ(files->count(name), 1U) << name;
    }
  }

  void put_earlier_results() const {
    for (const auto& [name, text] : earlier) folder.write(name, text);
  }

  [[nodiscard]] fs::path path(const std::string& name) const { return folder.path() / name; }
  [[nodiscard]] const std::string& whole(std::size_t file) const {
    return complete.files.at(names[file]);
  }

  TemporaryFolder folder;
  std::array<std::string, 4> names;
  Files earlier;
  Outcome complete;
};

std::string failure(const std::string& name, const std::string& what) {
  return "qn-dravo: " + name + ": cannot " + what + "\n";
}

/// The records that a run has handed to its log before it writes `file`: up to the headings of the
/// placement, or up to the trailer that follows the last file.
std::string log_before(std::size_t file, const std::string& log) {
  const std::string heading = "  CHANGING POSITION ACCORDING TO USER \n";
  const std::string blanks = "    \n    \n";
  const std::size_t placed = log.rfind(heading) + heading.size();
  EXPECT_EQ(log.substr(placed, blanks.size()), blanks);
  if (file == 1) return log.substr(0, placed + blanks.size());
  return log.substr(0, log.find("   \n  USER-DEFINED PARAMETERS APPLIED \n"));
}

/// Contacts are reported before the pair is written, the parameters at the end of the run.
std::string screen_before(std::size_t file, const std::string& screen) {
  const std::size_t closing = screen.find("  Dravo Placement of Molecular Partners \n");
  EXPECT_NE(closing, std::string::npos);
  const std::size_t contacts = screen.find("  CHECK THE SUPRAMOLECULAR SYSTEM  \n");
  return screen.substr(0, file < 2 ? std::min(closing, contacts) : closing);
}

/// A fault of one output file.
struct FileFault {
  const char* title;
  const SameNames* inputs;
  std::size_t file;  ///< index into the names
};

void PrintTo(const FileFault& fault, std::ostream* out) { *out << fault.title; }

std::vector<FileFault> files_from(std::size_t first) {
  std::vector<FileFault> faults;
  for (const SameNames* inputs : {&kPlain, &kContacts})
    for (std::size_t file = first; file < inputs->names.size(); ++file)
      faults.push_back({inputs->title, inputs, file});
  return faults;
}

class EveryFile : public ::testing::TestWithParam<FileFault> {
 protected:
  void SetUp() override { scene.put_earlier_results(); }

  [[nodiscard]] const std::string& name() const { return scene.names[GetParam().file]; }

  /// Files before the faulty one are new and whole, it and those after it as they were.
  void expect_results(const Outcome& outcome) const {
    const std::size_t faulty = GetParam().file;
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.screen, screen_before(faulty, scene.complete.screen));
    for (std::size_t file = 1; file < scene.names.size(); ++file) {
      if (file == faulty) continue;
      const std::string& its_name = scene.names[file];
      const Files& expected = file < faulty ? scene.complete.files : scene.earlier;
      EXPECT_TRUE(outcome.files.at(its_name) == expected.at(its_name)) << its_name;
    }
    if (faulty > 0) {
      EXPECT_TRUE(outcome.files.at(kLog) == log_before(faulty, scene.whole(0)));
    }
    for (const auto& [its_name, text] : outcome.files)
      EXPECT_EQ(scene.complete.files.count(its_name), 1U) << its_name << " is left behind";
  }

  Scene scene{*GetParam().inputs};
};

/// All but the log, which grows under its own name.
class EveryReplacedFile : public EveryFile {};

TEST_P(EveryFile, ThatFindsTheDiskFullIsNamedAndLeavesTheOthersWhole) {
  const bool log = GetParam().file == 0;
  if (log) fs::remove(scene.path(name()));
  fs::create_symlink("/dev/full", scene.path(log ? name() : name() + ".part"));
  const Outcome outcome = run_in(scene.folder);
  EXPECT_EQ(outcome.messages, failure(name(), "write: No space left on device"));
  expect_results(outcome);
  if (log) {
    EXPECT_TRUE(fs::is_symlink(scene.path(name())));
  } else {
    EXPECT_TRUE(outcome.files.at(name()) == scene.earlier.at(name()));
    EXPECT_FALSE(fs::is_symlink(scene.path(name() + ".part")));
  }
}

TEST_P(EveryFile, WhoseNameIsADirectoryIsNamedAndLeavesTheOthersWhole) {
  fs::remove(scene.path(name()));
  fs::create_directory(scene.path(name()));
  const Outcome outcome = run_in(scene.folder);
  EXPECT_EQ(outcome.messages,
            failure(name(), GetParam().file == 0 ? "open for writing: Is a directory"
                                                 : "put in place: Is a directory"));
  expect_results(outcome);
  EXPECT_TRUE(fs::is_empty(scene.path(name())));
}

TEST_P(EveryReplacedFile, WhoseUnfinishedNameIsADirectoryIsNamed) {
  const std::string unfinished = name() + ".part";
  fs::create_directory(scene.path(unfinished));
  const Outcome outcome = run_in(scene.folder);
  EXPECT_EQ(outcome.messages, failure(unfinished, "open for writing: Is a directory"));
  expect_results(outcome);
  EXPECT_TRUE(outcome.files.at(name()) == scene.earlier.at(name()));
}

TEST_P(EveryReplacedFile, ThatIsALinkIsReplacedAndItsTargetKept) {
  fs::rename(scene.path(name()), scene.path("target"));
  fs::create_symlink("target", scene.path(name()));
  EXPECT_EQ(run_in(scene.folder).status, 0);
  EXPECT_FALSE(fs::is_symlink(scene.path(name())));
  EXPECT_TRUE(file_text(scene.path(name())) == scene.whole(GetParam().file));
  EXPECT_TRUE(file_text(scene.path("target")) == scene.earlier.at(name()));
}

INSTANTIATE_TEST_SUITE_P(Of, EveryFile, ::testing::ValuesIn(files_from(0)));
INSTANTIATE_TEST_SUITE_P(Of, EveryReplacedFile, ::testing::ValuesIn(files_from(1)));

void set_limit(decltype(RLIMIT_FSIZE) resource, rlim_t value) {
  const rlimit limit{value, value};
  if (::setrlimit(resource, &limit) != 0) ::_exit(126);
}

Outcome run_with_files_up_to(std::size_t bytes, const TemporaryFolder& folder) {
  return run_in(folder, tested_program(), Screen::kept, [=] { set_limit(RLIMIT_FSIZE, bytes); });
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

/// A pair of so many atoms that its geometry is longer than the log; the copies keep the directions
/// of the axes.
SampleInput enlarged(const SampleInput& pair, std::size_t copies) {
  SampleInput large = pair;
  large.atoms.clear();
  const auto first_of_molecule2 = pair.atoms.begin() + static_cast<std::ptrdiff_t>(pair.n1);
  const auto copy = [&](auto begin, auto end) {
    for (std::size_t k = 0; k < copies; ++k)
      for (auto atom = begin; atom != end; ++atom)
        large.atoms.push_back(
            {atom->label, (1.0 + 0.01 * static_cast<double>(k)) * atom->position});
  };
  copy(pair.atoms.begin(), first_of_molecule2);
  copy(first_of_molecule2, pair.atoms.end());
  large.n1 = pair.n1 * copies;
  large.parameters[0] = "2000";
  return large;
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

/// The log, which is open, goes on to the first file that cannot be opened beside it.
void expect_first_geometry_refused(const Outcome& outcome, const Scene& scene,
                                   const std::string& reason) {
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure("input-GEOMETRY.xyz.part", "open for writing: " + reason));
  Files expected = scene.earlier;
  expected[kLog] = log_before(1, scene.whole(0));
  EXPECT_TRUE(outcome.files == expected);
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

/// Permissions do not bind root: the child becomes nobody. The program is open before that, since
/// nobody may not find it by its path.
Outcome run_without_privileges(const TemporaryFolder& folder) {
  constexpr unsigned kNobody = 65534;
  const int program = ::open(tested_program(), O_RDONLY | O_CLOEXEC);
  const Outcome outcome = run_in(folder, tested_program(), Screen::kept, [=] {
    if (::geteuid() != 0) return;
    if (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)
      ::_exit(126);
    std::string name(tested_program());
    std::array<char*, 2> arguments{name.data(), nullptr};
    ::fexecve(program, arguments.data(), ::environ);
    ::_exit(127);
  });
  ::close(program);
  return outcome;
}

class Permissions : public ::testing::Test {
 protected:
  void SetUp() override {
    scene.put_earlier_results();
    allow("", 0777);
  }
  void TearDown() override { allow("", 0777); }

  void allow(const std::string& name, unsigned bits) const {
    fs::permissions(scene.path(name), static_cast<fs::perms>(bits));
  }

  [[nodiscard]] Outcome run_and_reopen() const {
    Outcome outcome = run_without_privileges(scene.folder);
    allow("", 0777);
    return outcome;
  }

  Scene scene{kPlain};
};

TEST_F(Permissions, OfAFolderThatTakesNoNewFileAreNamedWithTheLog) {
  fs::remove(scene.path(kLog));
  Files expected = scene.earlier;
  expected.erase(kLog);
  allow("", 0555);
  const Outcome outcome = run_and_reopen();
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure(kLog, "open for writing: Permission denied"));
  EXPECT_EQ(outcome.screen, screen_before(0, scene.complete.screen));
  EXPECT_TRUE(outcome.files == expected);
}

TEST_F(Permissions, OfAFolderThatTakesNoNewFileBesideItsLogLeaveTheLogUpToTheGeometry) {
  allow(kLog, 0666);
  allow("", 0555);
  const Outcome outcome = run_and_reopen();
  expect_first_geometry_refused(outcome, scene, "Permission denied");
}

TEST_F(Permissions, OfAReadOnlyLogKeepEveryEarlierResult) {
  allow(kLog, 0444);
  const Outcome outcome = run_and_reopen();
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure(kLog, "open for writing: Permission denied"));
  EXPECT_TRUE(outcome.files == scene.earlier);
}

TEST_F(Permissions, OfAnUnreadableInputKeepEveryEarlierResult) {
  allow(kInput, 0);
  const Outcome outcome = run_and_reopen();
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure(kInput, "read: Permission denied"));
  EXPECT_EQ(outcome.screen, "");
  EXPECT_TRUE(outcome.files == scene.earlier);
}

TEST_F(Permissions, OfAReadOnlyPairDoNotKeepItFromBeingReplaced) {
  allow(kLog, 0666);
  for (std::size_t file = 1; file < scene.names.size(); ++file) allow(scene.names[file], 0444);
  const Outcome outcome = run_and_reopen();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages, "");
  EXPECT_TRUE(outcome.files == scene.complete.files);
}

/// A stream, and what the program says of a write to it; nothing when the write succeeds.
struct Stream {
  Screen where;
  const char* reason;
};

constexpr std::array kStreams{
    Stream{Screen::kept, ""}, Stream{Screen::full, "No space left on device"},
    Stream{Screen::closed, "Bad file descriptor"}, Stream{Screen::broken_pipe, "Broken pipe"}};

Outcome run_with_streams(const TemporaryFolder& folder, Screen screen, Screen messages) {
  return run_in(folder, tested_program(), screen, [=] {
    if (messages != Screen::kept) redirect_stream(STDERR_FILENO, messages, "");
  });
}

// A label that is no element makes a run that goes on after a message.
TEST(LostStreams, FailTheRunOnlyWhenTheScreenIsLostAndLeaveEveryFileWhole) {
  SampleInput pair = sample("formamide-dimer");
  pair.atoms[2].label = "Xx";
  const std::string warning =
      "qn-dravo: warning: unknown element labels count as mass 0: \"Xx\" (atom 3)\n";
  const Outcome complete = run_on(pair.text());
  EXPECT_EQ(complete.files.size(), 4U);
  for (const auto& [screen, reason] : kStreams)
    for (const auto& [messages, ignored] : kStreams) {
      const TemporaryFolder folder;
      folder.write(kInput, pair.text());
      const bool kept = screen == Screen::kept;
      const Outcome outcome = run_with_streams(folder, screen, messages);
      EXPECT_EQ(outcome.status, kept ? 0 : 2) << reason << '|' << ignored;
      EXPECT_EQ(outcome.screen, kept ? complete.screen : "") << reason << '|' << ignored;
      const std::string lost = failure("standard output", std::string("write: ") + reason);
      if (messages == Screen::kept) {
        EXPECT_EQ(outcome.messages, warning + (kept ? "" : lost));
      }
      EXPECT_TRUE(outcome.files == complete.files) << reason << '|' << ignored;
    }
}

TEST(LostStreams, OfAFailedRunStillEndWithStatusTwo) {
  const TemporaryFolder folder;
  for (const Stream& screen : kStreams)
    for (const Stream& messages : kStreams) {
      EXPECT_EQ(run_with_streams(folder, screen.where, messages.where).status, 2);
      EXPECT_TRUE(fs::is_empty(folder.path()));
    }
}

// The list of contacts is so long that the screen is written, and lost, before the files are.
TEST(LostStreams, OfALongScreenCostNoFileAndTakeNone) {
  SampleInput pair = enlarged(sample("formamide-dimer"), 8);
  pair.parameters[0] = "0.5";
  const Outcome complete = run_on(pair.text());
  EXPECT_GT(complete.screen.size(), std::size_t{100'000});
  EXPECT_EQ(complete.files.size(), 4U);
  for (const Stream& screen : kStreams) {
    if (screen.where == Screen::kept) continue;
    const TemporaryFolder folder;
    folder.write(kInput, pair.text());
    const Outcome outcome = run_in(folder, tested_program(), screen.where);
    EXPECT_EQ(outcome.status, 2) << screen.reason;
    EXPECT_EQ(outcome.messages, failure("standard output", std::string("write: ") + screen.reason));
    EXPECT_TRUE(outcome.files == complete.files) << screen.reason;
  }
}

/// Fails once, like a disk on which room is made later.
struct FullOnce : ByteSink {
  void write(std::string_view bytes) override {
    if (std::exchange(full, false)) throw IoFailure("the first failure");
    text += bytes;
  }
  bool full = true;
  std::string text;
};

TEST(LostStreams, GetNothingAfterAGap) {
  FullOnce screen;
  ScreenSink sink(screen);
  EXPECT_NO_THROW(sink.write(" lost \n"));
  EXPECT_NO_THROW(sink.write(" after the gap \n"));
  EXPECT_EQ(screen.text, "");
  EXPECT_THROW(sink.close(), IoFailure);
}

// The log would take the free descriptor, and the message is written while it is open.
TEST(LostStreams, OfAClosedStandardErrorPutNoMessageIntoTheLog) {
  const Scene scene(kPlain);
  fs::create_directory(scene.path("input-GEOMETRY.xyz"));
  const Outcome outcome = run_with_streams(scene.folder, Screen::kept, Screen::closed);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(outcome.files == (Files{{kLog, log_before(1, scene.whole(0))}}));
}

TEST(LostStreams, AllThreeClosedLeaveEveryFileWhole) {
  const Scene scene(kPlain);
  const Outcome outcome = run_in(scene.folder, tested_program(), Screen::closed, [] {
    ::close(STDIN_FILENO);
    ::close(STDERR_FILENO);
  });
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(outcome.files == scene.complete.files);
}

// The log of a stop is so short that only the end of the run writes it.
TEST(PrescribedStop, WhoseLogFindsTheDiskFullIsAFailureWithAWholeScreen) {
  const TemporaryFolder folder;
  folder.write(kInput, sample("water-dimer").text());
  const Outcome complete = run_in(folder);
  EXPECT_EQ(complete.status, 0);
  fs::remove(folder.path() / kLog);
  fs::create_symlink("/dev/full", folder.path() / kLog);
  const Outcome outcome = run_in(folder);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure(kLog, "write: No space left on device"));
  EXPECT_EQ(outcome.screen, complete.screen);
}

TEST(PrescribedStop, WhoseLogAndScreenAreLostNamesTheLog) {
  const TemporaryFolder folder;
  folder.write(kInput, sample("water-dimer").text());
  fs::create_symlink("/dev/full", folder.path() / kLog);
  const Outcome outcome = run_in(folder, tested_program(), Screen::closed);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure(kLog, "write: No space left on device"));
}

TEST(PrescribedStop, WhoseScreenIsLostIsAFailureWithAWholeLog) {
  const TemporaryFolder folder;
  folder.write(kInput, sample("water-dimer").text());
  const Files complete = run_in(folder).files;
  const Outcome outcome = run_in(folder, tested_program(), Screen::full);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure("standard output", "write: No space left on device"));
  EXPECT_TRUE(outcome.files == complete);
}

struct FarMolecule {
  const char* title;
  int molecule;
  Vec3 displacement;
  bool warned;  ///< whether already the first alignment finds no rotation
};

// A frame is kept as the tips of unit vectors from its centre. Neighbouring numbers near 1e15 are
// an eighth apart, near 1e16 two: such tips point anywhere, and no rotation brings the two frames
// together. Frames are moved to molecule 2, so its own suffers only in the first alignment.
constexpr std::array kFarMolecules{FarMolecule{"molecule 1", 1, {1e15, 0.0, 0.0}, false},
                                   FarMolecule{"molecule 2", 2, {0.0, 0.0, 1e16}, true}};

TEST(PrescribedStop, WithoutEulerAnglesIsTheLastRecordOfLogAndScreen) {
  std::string stop;
  for (int i = 0; i < 4; ++i) stop += "  ERROR - EULER ANGLES NOT FOUND \n";
  const std::string heading = "  ############################################# \n   \n";
  for (const FarMolecule& far : kFarMolecules) {
    SampleInput pair = sample("formamide-dimer");
    for (std::size_t i = 0; i < pair.atoms.size(); ++i)
      if ((i < pair.n1) == (far.molecule == 1))
        pair.atoms[i].position = pair.atoms[i].position + far.displacement;
    const Outcome outcome = run_on(pair.text());
    EXPECT_EQ(outcome.status, 0) << far.title;
    EXPECT_EQ(outcome.messages, "") << far.title;
    ASSERT_EQ(outcome.files.size(), 1U) << "nothing but the log is written";
    const std::string& log = outcome.files.at(kLog);
    EXPECT_TRUE(log.ends_with(heading + stop)) << far.title;
    EXPECT_TRUE(outcome.screen.ends_with((far.warned ? "" : "   \n   \n") + stop)) << far.title;
    for (const std::string* unit : {&log, &outcome.screen})
      EXPECT_EQ(unit->find("WARNING - NO GUESS ANGLE") != std::string::npos, far.warned)
          << far.title;
  }
}

/// What a folder may hold at any moment of a run: under the final names whole files only, and a log
/// that is the beginning of the complete one.
void expect_nothing_broken(const Scene& scene, const Files& before, const Files& now) {
  for (const auto& [name, text] : before) EXPECT_EQ(now.count(name), 1U) << name << " has gone";
  for (const auto& [name, text] : now) {
    const auto whole = scene.complete.files.find(name);
    if (whole == scene.complete.files.end()) {
      EXPECT_TRUE(name.ends_with(".part")) << name;
      continue;
    }
    const auto earlier = before.find(name);
    const bool untouched = earlier != before.end() && text == earlier->second;
    EXPECT_TRUE(untouched ||
                (name == kLog ? whole->second.starts_with(text) : text == whole->second))
        << name << " is broken";
  }
}

/// The program in `folder` with both streams nowhere; `prepare` as in `run_in`.
pid_t start_in(const TemporaryFolder& folder, const std::function<void()>& prepare = {}) {
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child > 0) return child;
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    redirect(stream, "/dev/null", O_RDWR);
  if (::chdir(folder.path().c_str()) != 0) ::_exit(126);
  if (prepare) prepare();
  ::execl(tested_program(), tested_program(), static_cast<char*>(nullptr));
  ::_exit(127);
}

/// Calls `look` whenever the program enters or leaves the system. Files change nowhere else, so
/// these are all the states in which a kill can leave them. False when tracing is not allowed.
bool watch_every_system_call(const TemporaryFolder& folder, const std::function<void()>& look) {
  const pid_t child = start_in(folder, [] {
    // The leak check that ends a program under AddressSanitizer waits for a tracer of its own.
    ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(125);
  });
  int status = 0;
  ::waitpid(child, &status, 0);
  if (!WIFSTOPPED(status)) return false;
  while (::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) == 0 &&
         ::waitpid(child, &status, 0) == child && WIFSTOPPED(status))
    look();
  return true;
}

TEST(AtEverySystemCall, FilesAreWholeAndTheLogIsABeginning) {
  for (const SameNames* inputs : {&kPlain, &kContacts})
    for (const bool over_earlier : {false, true}) {
      const Scene scene(*inputs);
      if (over_earlier) scene.put_earlier_results();
      const Files before = scene.folder.outputs();
      std::map<std::string, int> unfinished;
      const bool allowed = watch_every_system_call(scene.folder, [&] {
        const Files now = scene.folder.outputs();
        expect_nothing_broken(scene, before, now);
        for (const auto& [name, text] : now)
          if (scene.complete.files.count(name) == 0) ++unfinished[name];
      });
      if (!allowed) GTEST_SKIP() << "no process may be traced here";
      EXPECT_EQ(unfinished.size(), 3U) << "geometry, pair and drawing were seen on their way";
      EXPECT_TRUE(scene.folder.outputs() == scene.complete.files);
    }
}

/// Molecule 1 is long in z and mirrors itself in the plane z = 0, molecule 2 lies in that plane:
/// beta is 0, only alpha + gamma counts, and the log lists a whole diagonal of the grid.
SampleInput pair_with_a_long_log(const SampleInput& parameters) {
  SampleInput pair;
  pair.atoms = {{"S", {-0.8, 1.3, 0.0}},   {"C", {0.0, 0.2, 0.8}},   {"C", {0.0, 0.2, -0.8}},
                {"C", {1.4, -0.3, 2.1}},   {"C", {1.4, -0.3, -2.1}}, {"N", {-1.2, -0.2, 3.2}},
                {"N", {-1.2, -0.2, -3.2}}, {"S", {13.3, 8.5, 0.0}},  {"C", {13.6, 6.8, 0.0}},
                {"N", {12.4, 5.9, 0.0}},   {"C", {14.9, 6.2, 0.0}},  {"O", {15.1, 4.9, 0.0}}};
  pair.n1 = 7;
  pair.parameters = parameters.parameters;
  return pair;
}

/// The program is killed after each of `runs` delays and must afterwards do its work again.
void kill_at_random_moments(const SameNames& inputs, int runs, int longest_microseconds) {
  std::mt19937 random(20240607);
  const Scene scene(inputs);
  int killed = 0;
  for (int run = 0; run < runs; ++run) {
    for (const auto& entry : fs::directory_iterator(scene.folder.path()))
      if (entry.path().filename() != kInput) fs::remove(entry.path());
    if (run % 2 == 1) scene.put_earlier_results();
    const Files before = scene.folder.outputs();
    const pid_t child = start_in(scene.folder);
    ::usleep(static_cast<useconds_t>(random() % static_cast<unsigned>(longest_microseconds)));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFSIGNALED(status)) ++killed;
    expect_nothing_broken(scene, before, scene.folder.outputs());
    const Outcome later = run_in(scene.folder);
    EXPECT_EQ(later.status, 0);
    EXPECT_EQ(later.screen, scene.complete.screen);
    EXPECT_TRUE(later.files == scene.complete.files) << "run " << run;
  }
  EXPECT_GT(killed, 0);
}

TEST(KilledAtARandomMoment, LeavesWholeFilesAndALaterRunGivesAllOfThem) {
  kill_at_random_moments(kPlain, 200, 3000);
}

TEST(KilledAtARandomMoment, LeavesTheBeginningOfALongLog) {
  SameNames inputs = kPlain;
  inputs.input = pair_with_a_long_log(kPlain.input);
  EXPECT_GT(run_on(inputs.input.text()).files.at(kLog).size(), std::size_t{2'000'000});
  kill_at_random_moments(inputs, 60, 10000);
}

}  // namespace
}  // namespace dravo::test
