/// Runs that are killed, at any moment: files are whole, and a later run gives all of them.
#include <gtest/gtest.h>

#include <csignal>
#include <cstddef>
#include <map>
#include <random>
#include <string>

#include "end_to_end/scene.hpp"

namespace dravo::test {
namespace {

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

TEST(AtEverySystemCall, FilesAreWholeAndTheLogIsABeginning) {
  for (const SameNames* inputs : {&kPlain, &kContacts})
    for (const bool over_earlier : {false, true}) {
      const Scene scene(*inputs);
      if (over_earlier) scene.put_earlier_results();
      const Files before = scene.folder.outputs();
      std::map<std::string, int> unfinished;
      const bool allowed = watch_every_system_call(scene.folder, {tested_program()}, [&] {
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
    const pid_t child = start_in(scene.folder, {tested_program()});
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
