/// `dravo draw` for chemiscope.
#include <gtest/gtest.h>

#include <cstddef>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "cli/command.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

const std::string kPublished = DRAVO_EXAMPLES "/formamide-dimer/formamide-dimer.xyz";

/// Each of the frames gets its axes again, from coordinates with eight decimals.
TEST(Chemiscope, HasAllPosesOfAScanAndOfItsFrames) {
  const TemporaryFolder folder;
  const Outcome scan = run_command(
      folder, {"scan", kPublished, "--split", "6", "--r", "5:7:1", "--theta", "40", "--phi", "10",
               "--alpha", "1", "--beta", "2", "--gamma", "3", "--output", "s"});
  ASSERT_EQ(scan.status, 0) << scan.messages;
  const Lines frames = lines_of(folder.read("s.xyz"));
  for (const char* source : {"s", "s.xyz"}) {
    const Outcome outcome = run_command(folder, {"draw", source, "-o", "all.json", "--overwrite"});
    ASSERT_EQ(outcome.status, 0) << outcome.messages;
    EXPECT_TRUE(outcome.messages.starts_with("dravo: wrote all.json: 3 ")) << outcome.messages;
    const auto all = nlohmann::json::parse(folder.read("all.json"));
    ASSERT_EQ(all.at("structures").size(), 3U);
    for (std::size_t frame = 0; frame < 3; ++frame) {
      const auto& structure = all.at("structures").at(frame);
      ASSERT_EQ(structure.at("size"), 12);
      EXPECT_NEAR(all.at("properties").at("r").at("values").at(frame), 5.0 + double(frame), 1e-6);
      for (std::size_t atom = 0; atom < 12; ++atom) {
        std::istringstream line(frames.at(frame * 14 + 2 + atom));
        std::string symbol;
        line >> symbol;
        EXPECT_EQ(structure.at("names").at(atom), symbol);
        for (const char* axis : {"x", "y", "z"}) {
          double coordinate = 0.0;
          line >> coordinate;
          EXPECT_NEAR(structure.at(axis).at(atom), coordinate, 1e-5) << source << axis << atom;
        }
      }
    }
  }
}

}  // namespace
}  // namespace dravo::test
