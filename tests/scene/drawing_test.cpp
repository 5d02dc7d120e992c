#include "dravo/drawing.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <variant>
#include <vector>

#include "scene/colours.hpp"
#include "scene/element_colours.hpp"
#include "scene/projection.hpp"
#include "support/message_of.hpp"

namespace dravo::test {
namespace {

/// A scale of 10 pixels for an Angstrom, with the origin at (100, 50).
Paper paper_of(const ViewDirection& view) { return {view_rows(view), 10.0, {100.0, 50.0}, 12.0}; }

Point point_of(const Vec3& p, const char* view) {
  Scene scene;
  scene.balls.push_back({p, 0.5, 6});
  const Projection projection = projected(scene, paper_of(ViewDirection::of_text(view)));
  return std::get<Disc>(projection.marks.at(0).shape).centre;
}

struct Seen {
  const char* view;
  Vec3 point;
  Point at;
};

/// Who looks from the tip of an axis sees it as a point; pixels go downwards.
TEST(View, OfAnAxisIsFromItsTip) {
  for (const auto& [view, p, at] :
       {Seen{"z", {1, 0, 0}, {110, 50}}, Seen{"z", {0, 1, 0}, {100, 40}},
        Seen{"z", {0, 0, 1}, {100, 50}}, Seen{"x", {1, 0, 0}, {100, 50}},
        Seen{"x", {0, 1, 0}, {110, 50}}, Seen{"x", {0, 0, 1}, {100, 40}},
        Seen{"y", {1, 0, 0}, {90, 50}}, Seen{"y", {0, 1, 0}, {100, 50}},
        Seen{"y", {0, 0, 1}, {100, 40}}, Seen{"0,90", {0, 1, 0}, {110, 50}},
        Seen{"180, 0", {0, 1, 0}, {90, 50}}}) {
    const Point found = point_of(p, view);
    EXPECT_NEAR(found.x, at.x, 1e-9) << view;
    EXPECT_NEAR(found.y, at.y, 1e-9) << view;
  }
}

TEST(View, IsANameOrTwoAngles) {
  for (const char* text :
       {"", "w", "30", "30,", ",20", "30,91", "30,-90.5", "nan,0", "inf,0", "1,2,3"})
    EXPECT_NE(message_of<InvalidInput>([&] {
                (void)ViewDirection::of_text(text);
              }).find("expected a view, x, y, z, iso, or AZIMUTH,ELEVATION"),
              std::string::npos)
        << text;
}

TEST(Projection, PaintsWhatIsBehindFirst) {
  Scene scene;
  for (const double z : {2.0, -1.0, 5.0, 0.0}) scene.balls.push_back({{0, 0, z}, 0.1 * z + 1.0, 6});
  const Projection projection = projected(scene, paper_of(ViewDirection::of_text("z")));
  std::vector<double> radii;
  for (const Mark& mark : projection.marks) radii.push_back(std::get<Disc>(mark.shape).radius);
  EXPECT_TRUE(std::is_sorted(radii.begin(), radii.end()));
}

TEST(Projection, LetsASticksEndOverlapWhatItComesFrom) {
  Scene scene;
  scene.balls.push_back({{0, 0, 0}, 0.3, 6});
  scene.sticks.push_back({{0, 0, 0}, {0, 0, 1}, 6});   // towards who looks: in front of its ball
  scene.sticks.push_back({{0, 0, 0}, {0, 0, -1}, 6});  // away: behind it
  const Projection projection = projected(scene, paper_of(ViewDirection::of_text("z")));
  ASSERT_EQ(projection.marks.size(), 3U);
  EXPECT_TRUE(std::holds_alternative<Rod>(projection.marks[0].shape));
  EXPECT_TRUE(std::holds_alternative<Disc>(projection.marks[1].shape));
  EXPECT_TRUE(std::holds_alternative<Rod>(projection.marks[2].shape));
}

TEST(Projection, DashesHaveGapsAndTheLengthOfTheLine) {
  Scene scene;
  scene.lines.push_back({{0, 0, 0}, {2, 0, 0}, Ink::contact, true});
  const Projection projection = projected(scene, paper_of(ViewDirection::of_text("z")));
  ASSERT_GT(projection.marks.size(), 3U);
  double painted = 0.0, left = 1e9, right = -1e9;
  for (const Mark& mark : projection.marks) {
    const Stroke& dash = std::get<Stroke>(mark.shape);
    painted += dash.to.x - dash.from.x;
    left = std::min(left, dash.from.x);
    right = std::max(right, dash.to.x);
  }
  EXPECT_NEAR(left, 100.0, 1e-9);
  EXPECT_GT(right, 115.0);
  EXPECT_LE(right, 120.0);
  EXPECT_GT(painted, 0.4 * 20.0);
  EXPECT_LT(painted, 0.7 * 20.0);
}

TEST(Projection, MovesWordsThatWouldCoverOthers) {
  Scene scene;
  for (const char* text : {"one", "two", "three"}) scene.captions.push_back({{}, text, Ink::text});
  scene.captions.push_back({{20, 0, 0}, "far", Ink::text});
  const auto words = projected(scene, paper_of(ViewDirection::of_text("z"))).words;
  ASSERT_EQ(words.size(), 4U);
  EXPECT_NEAR(words[0].middle.y, 50.0, 1e-9);
  EXPECT_NEAR(words[3].middle.y, 50.0, 1e-9);
  for (std::size_t a = 0; a < 3; ++a)
    for (std::size_t b = 0; b < a; ++b)
      EXPECT_GE(std::abs(words[a].middle.y - words[b].middle.y), 12.0);
}

/// Words that touch several squares of those that are looked at, in all of them.
TEST(Projection, MovesLongWordsThatWouldCoverAnEndOfOthers) {
  Scene scene;
  scene.captions.push_back({{}, "a rather long caption", Ink::text});
  scene.captions.push_back({{7, 0, 0}, "at its end", Ink::text});
  scene.captions.push_back({{-7, 0, 0}, "before it", Ink::text});
  const Paper paper = paper_of(ViewDirection::of_text("z"));
  const auto words = projected(scene, paper).words;
  ASSERT_EQ(words.size(), 3U);
  for (std::size_t a = 1; a < 3; ++a) {
    ASSERT_LT(std::abs(words[a].middle.x - words[0].middle.x), 15.0 * 0.56 * paper.font);
    EXPECT_GE(std::abs(words[a].middle.y - words[0].middle.y), paper.font);
  }
}

/// If each were compared with all others, this would take hours.
TEST(Projection, FindsRoomForManyWords) {
  Scene scene;
  for (int k = 0; k < 200000; ++k)
    scene.captions.push_back({{k % 500 - 250.0, k / 500 - 200.0, 0}, "Cl100000", Ink::text});
  EXPECT_EQ(projected(scene, paper_of(ViewDirection::of_text("z"))).words.size(), 200000U);
}

TEST(Paper, HoldsTheWholeSceneInAnySize) {
  Scene scene;
  scene.balls.push_back({{-3, 1, 2}, 0.5, 8});
  scene.balls.push_back({{6, -2, 0}, 0.5, 1});
  scene.arrows.push_back({{0, 0, 0}, {0, 7, 1}, Ink::middle});
  for (const auto& [width, height] : {std::pair{800.0, 600.0}, {200.0, 900.0}, {60.0, 50.0}})
    for (const char* view : {"x", "y", "z", "iso", "200,-70"}) {
      const Paper paper =
          fitted_paper(scene, view_rows(ViewDirection::of_text(view)), width, height);
      for (const Mark& mark : projected(scene, paper).marks)
        if (const Disc* const disc = std::get_if<Disc>(&mark.shape)) {
          EXPECT_GE(disc->centre.x - disc->radius, 0.0);
          EXPECT_LE(disc->centre.x + disc->radius, width);
          EXPECT_GE(disc->centre.y - disc->radius, 0.0);
          EXPECT_LE(disc->centre.y + disc->radius, height);
        }
    }
}

// --- SVG ----------------------------------------------------------------------------------------

TEST(Svg, IsWrittenAsItStandsHere) {
  Scene scene;
  scene.balls.push_back({{0, 0, 0}, 0.5, 8});
  scene.captions.push_back({{0, 0, 0}, "O1", Ink::text});
  // Four Angstrom fill what the margins leave of the height: 360 - 2 * 1.4 * 11 = 329.2 pixels,
  // that is 82.3 for an Angstrom.
  EXPECT_EQ(svg_of(scene, {.view = ViewDirection::of_text("z"),
                           .width = 480,
                           .height = 360,
                           .title = "a",
                           .description = "b"}),
            "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"480\" height=\"360\" "
            "viewBox=\"0 0 480 360\" role=\"img\" aria-labelledby=\"title description\">\n"
            "<title id=\"title\">a</title>\n"
            "<desc id=\"description\">b</desc>\n"
            "<defs>\n"
            "<radialGradient id=\"e8\" cx=\"0.35\" cy=\"0.35\" r=\"0.7\">"
            "<stop offset=\"0\" stop-color=\"#ffc3c3\"/>"
            "<stop offset=\"0.45\" stop-color=\"#ff0d0d\"/>"
            "<stop offset=\"1\" stop-color=\"#990808\"/></radialGradient>\n"
            "</defs>\n"
            "<rect width=\"480\" height=\"360\" fill=\"#ffffff\"/>\n"
            "<g stroke-linecap=\"round\">\n"
            "<circle cx=\"240\" cy=\"180\" r=\"41.15\" fill=\"url(#e8)\" stroke=\"#3a3a3a\" "
            "stroke-width=\"0.8\"/>\n"
            "</g>\n"
            "<g font-family=\"sans-serif\" font-size=\"11\" text-anchor=\"middle\" "
            "paint-order=\"stroke\" stroke=\"#ffffff\" stroke-width=\"3\" "
            "stroke-linejoin=\"round\">\n"
            "<text x=\"240\" y=\"183.85\" fill=\"#1a1a1a\">O1</text>\n"
            "</g>\n"
            "</svg>\n");
}

TEST(Svg, TakesNoTextForMarkup) {
  Scene scene;
  scene.captions.push_back({{}, "<b>&", Ink::text});
  const std::string svg = svg_of(
      scene, {.title = "</title><script>alert(\"1\")</script>", .description = "a & b \x01\n"});
  EXPECT_EQ(svg.find("<script"), std::string::npos);
  EXPECT_EQ(svg.find("<b>"), std::string::npos);
  EXPECT_NE(svg.find("<title id=\"title\">&lt;/title&gt;&lt;script&gt;alert(&quot;1&quot;)"
                     "&lt;/script&gt;</title>"),
            std::string::npos);
  EXPECT_NE(svg.find(">a &amp; b ?"
                     "?</desc>"),
            std::string::npos);
  EXPECT_NE(svg.find(">&lt;b&gt;&amp;</text>"), std::string::npos);
}

/// A file name may have bytes that no reader of XML takes.
TEST(Drawing, HasTitlesThatAreUtf8) {
  const Drawing drawing{.title = "no\xFFutf8 \uFFFE\uFFFF \u00f6"};
  EXPECT_NE(svg_of({}, drawing)
                .find(">no?utf8 ?"
                      "? \u00f6</title>"),
            std::string::npos);
  EXPECT_TRUE(bild_of({}, drawing).starts_with(".comment no?utf8 "));
}

TEST(Svg, HasADarkBackgroundWhenAsked) {
  const std::string dark = svg_of({}, {.theme = Theme::dark});
  EXPECT_NE(dark.find("fill=\"" + hex_of(palette_of(Theme::dark).background)), std::string::npos);
  EXPECT_EQ(dark.find("#ffffff"), std::string::npos);
}

// --- colours ------------------------------------------------------------------------------------

/// Relative luminance and contrast of the Web Content Accessibility Guidelines 2.1.
double luminance(std::uint32_t colour) {
  const auto part = [&](unsigned shift) {
    const double value = ((colour >> shift) & 0xFFU) / 255.0;
    return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * part(16) + 0.7152 * part(8) + 0.0722 * part(0);
}

double contrast(std::uint32_t a, std::uint32_t b) {
  const auto [dark, light] = std::minmax(luminance(a), luminance(b));
  return (light + 0.05) / (dark + 0.05);
}

TEST(Palettes, CanBeReadOnTheirBackground) {
  for (const Theme theme : {Theme::light, Theme::dark}) {
    const Palette& palette = palette_of(theme);
    for (std::size_t ink = 0; ink < palette.inks.size(); ++ink)
      EXPECT_GE(contrast(palette.inks[ink], palette.background), 3.0) << hex_of(palette.inks[ink]);
  }
}

TEST(ElementColours, AreThoseOfJmol) {
  EXPECT_EQ(element_colour(1), 0xFFFFFFU);
  EXPECT_EQ(element_colour(6), 0x909090U);
  EXPECT_EQ(element_colour(7), 0x3050F8U);
  EXPECT_EQ(element_colour(8), 0xFF0D0DU);
  EXPECT_EQ(element_colour(17), 0x1FF01FU);
  EXPECT_EQ(element_colour(35), 0xA62929U);
  EXPECT_EQ(element_colour(53), 0x940094U);
  EXPECT_EQ(element_colour(79), 0xFFD123U);
  EXPECT_EQ(element_colour(92), 0x008FFFU);
}

// --- BILD ---------------------------------------------------------------------------------------

TEST(Bild, IsWrittenAsItStandsHere) {
  Scene scene;
  scene.balls.push_back({{0, 0, 1}, 0.3, 8});
  scene.sticks.push_back({{0, 0, 1}, {0, 0.5, 1}, 8});
  scene.arrows.push_back({{0, 0, 0}, {0, 0, 4}, Ink::largest});
  scene.lines.push_back({{0, 0, 0}, {1, 0, 0}, Ink::text, false});
  scene.captions.push_back({{0, 0, 4.3}, "Z", Ink::largest});
  EXPECT_EQ(bild_of(scene, {.title = "two\nlines"}),
            ".comment two?lines\n"
            ".color 1.000 0.051 0.051\n"
            ".sphere 0.0000 0.0000 1.0000 0.3000\n"
            ".cylinder 0.0000 0.0000 1.0000 0.0000 0.5000 1.0000 0.1100\n"
            ".color 0.102 0.102 0.102\n"
            ".cylinder 0.0000 0.0000 0.0000 1.0000 0.0000 0.0000 0.0300\n"
            ".color 0.835 0.369 0.000\n"
            ".arrow 0.0000 0.0000 0.0000 0.0000 0.0000 4.0000 0.0600 0.1600 0.9000\n"
            ".cmov 0.0000 0.0000 4.3000\n"
            "Z\n");
}

TEST(Bild, DrawsAnArcOfChords) {
  Scene scene;
  scene.arcs.push_back({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 2.0, 90.0, Ink::place});
  const std::string bild = bild_of(scene);
  EXPECT_NE(bild.find(".cylinder 2.0000 0.0000 0.0000 "), std::string::npos);
  EXPECT_NE(bild.find(" 0.0000 2.0000 0.0000 0.0300\n"), std::string::npos);
}

}  // namespace
}  // namespace dravo::test
