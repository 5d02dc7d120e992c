/// `dravo draw`: which pair or molecule, which kind of file, and pictures in pixels.
#include <cairo.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "cli/command.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

const std::string kDimer = DRAVO_EXAMPLES "/formamide-dimer/formamide-dimer.xyz";
const std::string kInput = DRAVO_EXAMPLES "/formamide-dimer/QN-input-GEOMETRY.xyz";
const std::string kWater = DRAVO_EXAMPLES "/water-dimer/water.xyz";
const std::string kArgon = DRAVO_EXAMPLES "/argon-hcn/argon.xyz";

bool has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

std::string read(const TemporaryFolder& folder, const std::string& name) {
  return file_text((folder.path() / name).string());
}

/// Runs `dravo draw`, which finds the module of PNG pictures that was built beside it.
Outcome drawn(const TemporaryFolder& folder, const Words& words, Screen where = Screen::kept) {
  ::setenv("DRAVO_PNG_MODULE", DRAVO_BUILT_PNG_MODULE, 0);
  return run_command(folder, Words{"draw"} + words, where);
}

std::string svg_of(const Words& words) {
  const TemporaryFolder folder;
  const Outcome outcome = drawn(folder, words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_TRUE(outcome.screen.starts_with("<svg ")) << outcome.screen.substr(0, 80);
  EXPECT_TRUE(outcome.screen.ends_with("</svg>\n"));
  return outcome.screen;
}

TEST(Draw, ShowsThePairAsItStands) {
  const std::string svg = svg_of({kDimer, "--split", "6"});
  EXPECT_TRUE(has(svg, "<title id=\"title\">formamide-dimer.xyz</title>"));
  // Twice CH3NO; the parameters are those of the published dimer, which lies in a plane.
  EXPECT_TRUE(has(svg, "Molecule 1, CH3NO, and molecule 2, CH3NO: r 3.23 Angstrom, theta 90.0"));
  EXPECT_TRUE(has(svg, ">1.84</text>"));  // its hydrogen bonds, 1.8406 Angstrom
  for (const char* letter : {"X", "Y", "Z", "x", "y", "z"})
    EXPECT_TRUE(has(svg, std::string(">") + letter + "</text>")) << letter;
  EXPECT_FALSE(has(svg, "\u03b8"));
}

TEST(Draw, PlacesAPairByGivenParametersAndByThoseThatItsFileStates) {
  const std::string stated = svg_of({kInput, "--angles"});
  EXPECT_TRUE(has(stated, "\u03b8 = 84.0\u00b0"));
  EXPECT_TRUE(has(stated, "r = 6.50 \u00c5"));
  const std::string given = svg_of({kInput, "--angles", "--theta", "30", "--r", "5"});
  EXPECT_TRUE(has(given, "\u03b8 = 30.0\u00b0"));
  EXPECT_TRUE(has(given, "r = 5.00 \u00c5"));
  EXPECT_TRUE(has(given, "\u03b3 = 306.0\u00b0"));
  const std::string two = svg_of({kArgon, kWater, "--r", "4", "--angles"});
  EXPECT_TRUE(has(two, "<title id=\"title\">argon.xyz and water.xyz</title>"));
}

TEST(Draw, ShowsWhatItIsToldTo) {
  const std::string bare = svg_of({kDimer, "--split", "6", "--no-frames", "--no-contacts"});
  EXPECT_FALSE(has(bare, "<text"));
  const std::string labels =
      svg_of({kDimer, "--split", "6", "--no-frames", "--no-contacts", "--labels"});
  for (const char* name : {"C1", "O2", "N9", "H12"})
    EXPECT_TRUE(has(labels, std::string(">") + name + "</text>")) << name;
  const std::string dark = svg_of({kDimer, "--split", "6", "--theme", "dark", "--size", "123x456"});
  EXPECT_TRUE(has(dark, "width=\"123\" height=\"456\" viewBox=\"0 0 123 456\""));
  EXPECT_FALSE(has(dark, "<rect width=\"123\" height=\"456\" fill=\"#ffffff\"/>"));
}

TEST(Draw, ShowsOneMoleculeWithItsOwnFrame) {
  const std::string water = svg_of({kWater});
  EXPECT_TRUE(has(water, "<desc id=\"description\">H2O with its principal axes.</desc>"));
  EXPECT_FALSE(has(water, ">X</text>"));
  // An atom has none.
  EXPECT_TRUE(has(svg_of({kArgon}), "<desc id=\"description\">Ar.</desc>"));
  EXPECT_TRUE(has(svg_of({kWater, "--no-frames"}), "<desc id=\"description\">H2O.</desc>"));
  const TemporaryFolder folder;
  // Two molecules in a file that does not tell where the second begins are no molecule.
  const Outcome refused = drawn(folder, {kDimer});
  EXPECT_EQ(refused.status, 2);
  EXPECT_TRUE(has(refused.messages, "where molecule 2 begins is not known")) << refused.messages;
}

TEST(Draw, ReadsStandardInput) {
  const TemporaryFolder folder;
  folder.write("pair.xyz", "2\n\nHe 0 0 0\nNe 0 0 5\n");
  const Outcome outcome =
      run_command(folder, {"draw", "-", "--split", "1", "-o", "out.svg"}, Screen::kept,
                  [input = (folder.path() / "pair.xyz").string()] {
                    redirect(STDIN_FILENO, input.c_str(), O_RDONLY);
                  });
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_TRUE(has(read(folder, "out.svg"), "<title id=\"title\">standard input</title>"));
}

struct Refused {
  Words words;
  std::string message;
};

TEST(Draw, RefusesWhatItCannotDraw) {
  const TemporaryFolder folder;
  folder.write("there.svg", "mine");
  folder.write("dimer.svg", file_text(kDimer));
  for (const auto& [words, message] :
       {Refused{{kDimer, "--split", "6", "-o", "there.svg"}, "there.svg"},
        Refused{{"dimer.svg", "--split", "6", "-o", "dimer.svg", "--overwrite"}, "dimer.svg"},
        Refused{{kDimer, "--split", "6", "--like", "dimer.svg", "-o", "dimer.svg", "--overwrite"},
                "dimer.svg"},
        Refused{{kDimer, "--split", "6", "-o", "picture.jpg"},
                "picture.jpg: expected a name that ends in .svg"},
        Refused{{kDimer, "--split", "6", "-o", "no/folder.svg"}, "no"},
        Refused{{kDimer, "--split", "6", "--size", "800"},
                "expected WIDTHxHEIGHT in pixels, each from 50 to 10000 (800x600), found \"800\""},
        Refused{{kDimer, "--split", "6", "--size", "10x600"}, "found \"10x600\""},
        Refused{{kDimer, "--split", "6", "--size", "800x600x"}, "found \"800x600x\""},
        Refused{{kDimer, "--split", "6", "--view", "top"},
                "expected a view, x, y, z, iso, or AZIMUTH,ELEVATION"},
        Refused{{kDimer, "--split", "6", "--theme", "blue"}, "--theme"},
        Refused{{kDimer, "--split", "6", "--frame", "0"},
                "--frame: a picture shows one pair; expected a number from 1, found \"0\""},
        Refused{{kDimer, "--split", "6", "--frame", "1:2"}, "found \"1:2\""},
        Refused{{kArgon, kWater}, "--r"}}) {
    const Outcome outcome = drawn(folder, words);
    EXPECT_EQ(outcome.status, 2) << message;
    EXPECT_TRUE(has(outcome.messages, message)) << outcome.messages;
    EXPECT_EQ(outcome.screen, "");
  }
  EXPECT_EQ(read(folder, "there.svg"), "mine");
  EXPECT_EQ(read(folder, "dimer.svg"), file_text(kDimer));
  EXPECT_EQ(drawn(folder, {kDimer, "--split", "6", "-o", "there.svg", "--overwrite"}).status, 0);
  EXPECT_TRUE(read(folder, "there.svg").starts_with("<svg "));
}

TEST(Draw, WritesTheSceneInSpace) {
  const TemporaryFolder folder;
  EXPECT_EQ(drawn(folder, {kDimer, "--split", "6", "-o", "pair.bild"}).status, 0);
  const std::string bild = read(folder, "pair.bild");
  EXPECT_TRUE(bild.starts_with(".comment formamide-dimer.xyz\n"));
  std::size_t spheres = 0, arrows = 0;
  for (const std::string& line : lines_of(bild)) {
    spheres += line.starts_with(".sphere ") ? 1 : 0;
    arrows += line.starts_with(".arrow ") ? 1 : 0;
  }
  EXPECT_EQ(spheres, 12U);
  EXPECT_EQ(arrows, 6U);
}

// --- pixels -------------------------------------------------------------------------------------

class Pixels {
 public:
  explicit Pixels(const std::string& file)
      : surface_(cairo_image_surface_create_from_png(file.c_str()), cairo_surface_destroy) {}

  [[nodiscard]] int width() const { return cairo_image_surface_get_width(surface_.get()); }
  [[nodiscard]] int height() const { return cairo_image_surface_get_height(surface_.get()); }

  /// Red, green, blue from 0 to 255.
  [[nodiscard]] std::array<int, 3> at(int x, int y) const {
    const auto* const row = cairo_image_surface_get_data(surface_.get()) +
                            y * cairo_image_surface_get_stride(surface_.get());
    const auto pixel = reinterpret_cast<const std::uint32_t*>(row)[x];
    return {static_cast<int>(pixel >> 16U & 255U), static_cast<int>(pixel >> 8U & 255U),
            static_cast<int>(pixel & 255U)};
  }

 private:
  std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface_;
};

/// Seen along Z, the only atoms of two are where their coordinates say: helium at the centre of
/// molecule 2's frame, oxygen 4 Angstrom to its right.
TEST(Draw, PaintsAtomsWhereTheyAre) {
  const TemporaryFolder folder;
  folder.write("two.xyz", "2\n\nO 4 0 0\nHe 0 0 0\n");
  const Words words{"two.xyz", "--split", "1",      "--r", "4",           "--theta",      "90",
                    "--phi",   "0",       "--view", "z",   "--no-frames", "--no-contacts"};
  const Outcome outcome = drawn(folder, words + Words{"-o", "two.png", "--size", "400x300"});
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  const Pixels pixels((folder.path() / "two.png").string());
  ASSERT_EQ(pixels.width(), 400);
  ASSERT_EQ(pixels.height(), 300);
  EXPECT_EQ(pixels.at(2, 2), (std::array{255, 255, 255}));
  EXPECT_EQ(pixels.at(200, 20), (std::array{255, 255, 255}));
  int left = 400, right = -1, reddest = -1;
  for (int x = 0; x < 400; ++x) {
    const auto [red, green, blue] = pixels.at(x, 150);
    if (red + green + blue == 3 * 255) continue;
    left = std::min(left, x);
    right = std::max(right, x);
    if (red > 230 && green < 60 && blue < 60) reddest = x;
  }
  EXPECT_GT(left, 20);
  EXPECT_LT(left, 80);
  EXPECT_LT(right, 380);
  EXPECT_GT(right, 320);
  EXPECT_GT(reddest, 300) << "oxygen is red, and at the right";
}

TEST(Draw, MakesNoPixelsOfThingsThatWouldTakeGigabytes) {
  const TemporaryFolder folder;
  std::string atoms = "40001\n\nAr 0 0 0\n";
  for (int k = 0; k < 40000; ++k)
    atoms += "C " + std::to_string(9 + k % 200) + " " + std::to_string(k / 200 % 20) + " " +
             std::to_string(k / 4000) + "\n";
  folder.write("many.xyz", atoms);
  const Outcome outcome = drawn(folder, {"many.xyz", "--split", "1", "-o", "many.png"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(has(outcome.messages, "write an SVG or a BILD file\n")) << outcome.messages;
  EXPECT_EQ(drawn(folder, {"many.xyz", "--split", "1", "-o", "many.bild"}).status, 0);
}

TEST(Draw, SaysWhereItLooksForItsPictures) {
  const TemporaryFolder folder;
  ::setenv("DRAVO_PNG_MODULE", "/no/such/module", 1);
  const Outcome outcome = run_command(folder, {"draw", kWater, "-o", "water.png"});
  ::setenv("DRAVO_PNG_MODULE", DRAVO_BUILT_PNG_MODULE, 1);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages,
            "dravo: the module dravo-png.so is not there: looked for /no/such/module; the variable "
            "DRAVO_PNG_MODULE can tell its path\n");
  EXPECT_TRUE(folder.outputs().empty());
}

}  // namespace
}  // namespace dravo::test
