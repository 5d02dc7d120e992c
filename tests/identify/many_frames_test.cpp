#include "identify/many_frames.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "common/number_format.hpp"
#include "support/message_of.hpp"
#include "support/molecule_sets.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

std::string atoms_text(const NamedPair& dimer, bool numbered = false) {
  std::string text;
  for (std::int32_t i = 0; i < dimer.atoms.size(); ++i) {
    const Vec3& p = dimer.atoms.positions()[static_cast<std::size_t>(i)];
    text += std::string(dimer.atoms.symbol(i));
    for (const double c : {p.x, p.y, p.z}) text += " " + shortest_text(c);
    if (numbered) text += i < dimer.n1 ? " 1" : " 2";
    text += '\n';
  }
  return text;
}

std::string frame_text(const NamedPair& dimer) {
  return std::to_string(dimer.atoms.size()) + "\n" + dimer.name + "\n" + atoms_text(dimer);
}

/// The molecules of each atom stand in a column.
std::string numbered_frame(const NamedPair& dimer) {
  return std::to_string(dimer.atoms.size()) + "\nProperties=species:S:1:pos:R:3:molecule:I:1\n" +
         atoms_text(dimer, true);
}

/// A file of frames.
struct Trajectory {
  explicit Trajectory(const std::string& text) { folder.write("t.xyz", text); }
  TemporaryFolder folder;
  std::string path = folder.path() / "t.xyz";

  [[nodiscard]] ManyFrames by_bonds(const char* selection = "all", int threads = 1) const {
    ManyFrames wanted{{.file = path, .split = SplitByBonds{}}};
    wanted.selection = IndexSelection::parse("frames", selection);
    wanted.threads = threads;
    return wanted;
  }
};

std::vector<IdentifiedFrame> identified(const Trajectory& file, const ManyFrames& wanted,
                                        std::int64_t* seen = nullptr) {
  FrameStream stream(file.path);
  std::vector<IdentifiedFrame> found;
  std::int64_t bytes = 0;
  const std::int64_t frames = identify_frames(
      stream, wanted, [&](std::span<const IdentifiedFrame> some, std::int64_t done) {
        found.insert(found.end(), some.begin(), some.end());
        EXPECT_GE(done, bytes);
        bytes = done;
      });
  if (seen != nullptr) *seen = frames;
  return found;
}

std::vector<std::int64_t> numbers_of(const std::vector<IdentifiedFrame>& frames) {
  std::vector<std::int64_t> numbers;
  for (const IdentifiedFrame& frame : frames) numbers.push_back(frame.number);
  return numbers;
}

/// Every dimer so often that each thread has several batches.
TEST(IdentifyFrames, FindsInEachFrameWhatIdentifyFindsInItsPair) {
  const std::vector<NamedPair> dimers = s22_dimers();
  std::string text;
  constexpr int kTimes = 40;
  for (int k = 0; k < kTimes; ++k)
    for (const NamedPair& dimer : dimers) text += numbered_frame(dimer);
  const Trajectory file(text);
  for (const int threads : {1, 3}) {
    ManyFrames wanted{{.file = file.path}};
    wanted.threads = threads;
    const auto found = identified(file, wanted);
    ASSERT_EQ(found.size(), kTimes * dimers.size());
    for (std::size_t k = 0; k < found.size(); ++k) {
      const NamedPair& dimer = dimers[k % dimers.size()];
      ASSERT_FALSE(found[k].bad) << found[k].bad->message;
      EXPECT_EQ(found[k].number, static_cast<std::int64_t>(k) + 1);
      const Pair pair(dimer.n1, dimer.atoms);
      const PoseDegrees alone = identify(pair).parameters;
      for (const auto& [name, value] : kPoseParameters)
        EXPECT_EQ(found[k].parameters.*value, alone.*value) << dimer.name << ' ' << name;
      EXPECT_EQ(found[k].survey.contacts, static_cast<std::int64_t>(short_contacts(pair).size()))
          << dimer.name;
    }
  }
}

TEST(IdentifyFrames, TakesTheSelectedFramesAndReadsNoFurther) {
  const NamedPair dimer = s22("Water_dimer");
  std::string text;
  for (int k = 0; k < 20; ++k) text += frame_text(dimer);
  const Trajectory file(text + "no frame at all\n");
  std::int64_t seen = 0;
  EXPECT_EQ(numbers_of(identified(file, file.by_bonds("3:11:4,2"), &seen)),
            (std::vector<std::int64_t>{2, 3, 7, 11}));
  EXPECT_EQ(seen, 11);
  EXPECT_EQ(numbers_of(identified(file, file.by_bonds("20"), &seen)),
            (std::vector<std::int64_t>{20}));
}

TEST(IdentifyFrames, TellsWhichFrameIsMissing) {
  const Trajectory file(frame_text(s22("Water_dimer")) + frame_text(s22("Water_dimer")));
  const auto refusal = [&](const char* selection) {
    return message_of<InvalidInput>([&] { (void)identified(file, file.by_bonds(selection)); });
  };
  EXPECT_EQ(refusal("3:5"), file.path + ": there is no frame 3: the file holds 2 frames");
  EXPECT_EQ(refusal("1,7"), file.path + ": there is no frame 7: the file holds 2 frames");
  EXPECT_EQ(refusal("2:5"), "") << "a range may reach beyond the end";
  const Trajectory empty("\n");
  EXPECT_EQ(message_of<InvalidInput>([&] { (void)identified(empty, empty.by_bonds()); }),
            empty.path + ": expected frames of an xyz file, found none");
}

TEST(IdentifyFrames, HandsOnFramesThatCannotBeIdentifiedAndGoesOn) {
  const NamedPair dimer = s22("Water_dimer");
  std::string broken = frame_text(dimer);
  broken.replace(broken.find("O "), 2, "Q ");
  const Trajectory file(frame_text(dimer) + broken + frame_text(s22("Ammonia_dimer")) +
                        "2\n\nH 0 0 0\nH 0 0 0.74\n");
  const auto found = identified(file, file.by_bonds());
  ASSERT_EQ(found.size(), 4U);
  EXPECT_FALSE(found[0].bad);
  ASSERT_TRUE(found[1].bad);
  EXPECT_TRUE(found[1].bad->message.starts_with("frame 2: " + file.path + ":11: "))
      << found[1].bad->message;
  EXPECT_FALSE(found[1].bad->refused);
  EXPECT_FALSE(found[2].bad);
  ASSERT_TRUE(found[3].bad);
  EXPECT_TRUE(found[3].bad->message.starts_with("frame 4: " + file.path +
                                                ": the bonds make 1 molecule, not two"))
      << found[3].bad->message;
}

/// What is wrong with the first frame is wrong with all: nobody wants a table of such pairs.
TEST(IdentifyFrames, EndAtTheFirstWithAMistakenSplit) {
  const NamedPair dimer = s22("Water_dimer");
  const Trajectory file(frame_text(dimer) + frame_text(dimer));
  const std::string message =
      message_of<InvalidInput>([&] { (void)identified(file, {{.file = file.path, .split = 2}}); });
  EXPECT_TRUE(message.starts_with(file.path + ": bonds across the split after atom 2: O1-H3 "))
      << message;
}

TEST(IdentifyFrames, RemarksOnMoleculesInPieces) {
  const Trajectory file(
      "3\nProperties=species:S:1:pos:R:3:molecule:I:1\n"
      "Ne 0 0 0 1\nNe 0 0 4 1\nNe 5 0 0 2\n");
  const auto found = identified(file, {{.file = file.path}});
  ASSERT_EQ(found.size(), 1U);
  ASSERT_FALSE(found[0].bad) << found[0].bad->message;
  EXPECT_NE(found[0].remark.find("; molecule 1 is not one connected whole: "), std::string::npos)
      << found[0].remark;
}

/// Water has no strict frame: its heaviest element tells the direction of one axis alone.
TEST(IdentifyFrames, MarksPairsThatAStrictRuleRefuses) {
  const Trajectory file(frame_text(s22("Water_dimer")));
  ManyFrames wanted = file.by_bonds();
  wanted.options.frames = FrameRule::strict;
  const auto found = identified(file, wanted);
  ASSERT_EQ(found.size(), 1U);
  ASSERT_TRUE(found[0].bad);
  EXPECT_TRUE(found[0].bad->refused);
  EXPECT_TRUE(found[0].bad->message.starts_with("frame 1: ")) << found[0].bad->message;
}

TEST(IdentifyFrames, KnowsTheFilesOfQnDravoThatHoldOnePair) {
  const NamedPair dimer = s22("Formamide_dimer");
  const PoseDegrees expected = identify(Pair(dimer.n1, dimer.atoms)).parameters;
  const std::string count = std::to_string(dimer.atoms.size()) + "\n";
  const std::string n1 = std::to_string(dimer.n1) + "\n";
  for (const std::string& text :
       {count + "\n" + atoms_text(dimer) + "\n" + n1 + "\nn\n",
        count + atoms_text(dimer) + "n1\n" + n1 + "position\n1\n2\n3\nrotation\n4\n5\n6\nend\n"}) {
    const Trajectory file(text);
    const auto found = identified(file, {{.file = file.path}});
    ASSERT_EQ(found.size(), 1U) << text;
    ASSERT_FALSE(found[0].bad) << found[0].bad->message;
    EXPECT_NEAR(found[0].parameters.r, expected.r, 1e-5);
    EXPECT_NEAR(found[0].parameters.beta, expected.beta, 1e-3);
  }
}

TEST(IdentifyFrames, EndsWithWhatTheTakerThrows) {
  std::string text;
  for (int k = 0; k < 2000; ++k) text += frame_text(s22("Water_dimer"));
  const Trajectory file(text);
  FrameStream stream(file.path);
  EXPECT_EQ(message_of<IoFailure>([&] {
              (void)identify_frames(stream, file.by_bonds("all", 2),
                                    [](auto, std::int64_t) { throw IoFailure("disk full"); });
            }),
            "disk full");
}

}  // namespace
}  // namespace dravo::test
