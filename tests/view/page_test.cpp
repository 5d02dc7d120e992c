/// The page of a pair: what its data say, and that nothing in them can do anything else.
#include "view/page.hpp"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <vector>

#include "dravo/identify.hpp"
#include "end_to_end/program.hpp"
#include "support/pairs.hpp"
#include "support/view_pages.hpp"

namespace dravo::test {
namespace {

Pair example(const std::string& file, const std::string& second = "", std::int32_t n1 = 0) {
  PairRequest request{.file = DRAVO_EXAMPLES "/" + file};
  if (!second.empty()) request.second_file = DRAVO_EXAMPLES "/" + second;
  if (n1 > 0) request.split = n1;
  return read_pair(request).pair;
}

std::vector<Pair> pairs_of_all_shapes() {
  return {example("dimethyl-sulfoxide-ethanol/QN-input-GEOMETRY.xyz"),
          example("watson-crick-pair/watson-crick-pair.xyz", "", 15),
          example("water-dimer/water-dimer.xyz", "", 3),
          example("benzene-dimer/benzene-dimer.xyz", "", 12),
          example("argon-hcn/hcn.xyz", "argon-hcn/hcn.xyz"),
          example("argon-hcn/argon.xyz", "argon-hcn/hcn.xyz"),
          example("argon-hcn/hcn.xyz", "water-dimer/water.xyz")};
}

std::vector<PoseDegrees> some_poses() {
  std::vector<PoseDegrees> poses{{4.0, 0.0, 0.0, 0.0, 0.0, 0.0},
                                 {3.0, 180.0, 20.0, 30.0, 180.0, 40.0},
                                 {0.0, 90.0, 350.0, 359.0, 90.0, 1.0},
                                 {5.0, 90.0, 0.0, 0.0, 0.0, 123.0}};
  std::mt19937 random(20240229);
  std::uniform_real_distribution<double> length(0.0, 9.0), half(0.0, 180.0), turn(0.0, 360.0);
  for (int k = 0; k < 50; ++k)
    poses.push_back(
        {length(random), half(random), turn(random), turn(random), half(random), turn(random)});
  return poses;
}

ViewData data_for(const Pair& pair, const PoseDegrees& pose = {.r = 4.0}) {
  return view_data(Placer(pair, {.placing = Placing::exact}).inside(), pose);
}

ViewData waters() { return data_for(example("water-dimer/water-dimer.xyz", "", 3)); }

TEST(DataOfAPage, PlaceEachPairAsThePlacerDoes) {
  for (const Pair& pair : pairs_of_all_shapes()) {
    const Placer placer(pair, {.placing = Placing::exact});
    const PageJson data = data_of(view_page(view_data(placer.inside(), {.r = 4.0})));
    for (const PoseDegrees& pose : some_poses())
      EXPECT_LT(farthest_apart(atoms_of(data, pose), placer.positions(pose)), 1e-9);
  }
}

TEST(DataOfAPage, PlaceAPairOfQnDravoAsItDoes) {
  const Pair pair = example("dimethyl-sulfoxide-ethanol/QN-input-GEOMETRY.xyz");
  const Placer placer(pair, {.placing = Placing::as_qn_dravo});
  const PageJson data = data_of(view_page(view_data(placer.inside(), {.r = 4.0})));
  const PoseDegrees pose{5.5, 84.0, 11.0, 214.0, 152.0, 306.0};  // nothing is nudged
  EXPECT_LT(farthest_apart(atoms_of(data, pose), placer.positions(pose)), 1e-9);
}

TEST(DataOfAPage, TellShapesBondsAndElements) {
  const PageJson data =
      data_of(view_page(data_for(example("argon-hcn/argon.xyz", "argon-hcn/hcn.xyz"))));
  EXPECT_EQ(data["molecules"][0]["shape"], "atom");
  EXPECT_EQ(data["molecules"][1]["shape"], "linear");
  EXPECT_EQ(data["molecules"][0]["bonds"].dump(), "[]");
  EXPECT_EQ(data["molecules"][1]["bonds"].size(), 2U) << "H-C and C-N";
  EXPECT_EQ(data["idle"].dump(), R"(["alpha","beta","gamma"])");
  EXPECT_EQ(data["elements"]["Ar"]["number"], 18);
  EXPECT_EQ(data["elements"]["Ar"]["vdw"], 1.88) << "Bondi";
  EXPECT_EQ(data["elements"]["N"]["colour"], "#3050f8") << "Jmol";
  EXPECT_EQ(data["poses"], PageJson());
}

TEST(DataOfAPage, LeaveARadiusOutThatNobodyKnows) {
  const PageJson data = data_of(
      view_page(data_for(pair_of({{"Rn", {}}}, {{"H", {0, 0, 0.37}}, {"H", {0, 0, -0.37}}}))));
  EXPECT_TRUE(data["elements"]["Rn"]["vdw"].is_null());
  EXPECT_EQ(data["elements"]["H"]["vdw"], 1.2) << "Bondi";
}

// --- texts that somebody else chose -----------------------------------------------------------

const std::vector<std::string> kHostile{"</script><img src=x onerror=alert(1)>.xyz",
                                        "<!--<script>",
                                        "\"'&<>;--> %DATA% %TITLE% @SCRIPT@",
                                        "\\u003c/script\\u003e",
                                        "control\x01\x1b[2J\x7f and \xE2\x80\xA8 line",
                                        "no utf-8: \xFF\xC0\x80\xED\xA0\x80 end",
                                        std::string("nul\0byte", 8)};

TEST(HostileText, StaysTextInTheData) {
  for (const std::string& text : kHostile) {
    ViewData data = waters();
    data.title = data.description = data.command = text;
    data.poses = ViewPoses{.kind = "scan",
                           .name = text,
                           .of = 2,
                           .columns = {{.name = text, .words = {text, "b"}}},
                           .parameters = {text, text, text, text, text, text},
                           .x = text,
                           .y = text,
                           .colour = text};
    const std::string json = data_text(view_page(data));
    EXPECT_EQ(json.find('<'), std::string::npos);
    const PageJson read = PageJson::parse(json);
    EXPECT_EQ(read["poses"]["columns"][0]["values"]["list"].size(), 2U);
    EXPECT_EQ(read["poses"]["x"], read["command"]);
    if (text.find('\xFF') == std::string::npos) {
      EXPECT_EQ(read["command"], text);
    }
    const std::string title = read["title"];
    for (const char c : title) EXPECT_TRUE(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F);
  }
}

/// What is left of the page when its title and its data are cut out.
std::string around_texts(std::string page) {
  const std::size_t data = page.find(kDataBegin) + kDataBegin.size();
  page.erase(data, page.find("</script", data) - data);
  for (const std::string element : {"<title>", "<h1 id=\"title\">"}) {
    const std::size_t begin = page.find(element);
    if (begin == std::string::npos) continue;
    page.erase(begin + element.size(), page.find("</", begin) - begin - element.size());
  }
  return page;
}

TEST(HostileText, ChangesNothingAroundTitleAndData) {
  const std::string usual = around_texts(view_page(waters()));
  for (const std::string& text : kHostile) {
    ViewData data = waters();
    data.title = data.description = data.command = text;
    EXPECT_TRUE(around_texts(view_page(data)) == usual) << text;
  }
}

TEST(HostileText, IsEscapedInTheTitle) {
  ViewData data = waters();
  data.title = kHostile[0];
  EXPECT_EQ(text_between(view_page(data), "<title>", "</title>"),
            "&lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;.xyz");
  data.title = "\"it's\" & \x1b";
  EXPECT_EQ(text_between(view_page(data), "<title>", "</title>"), "&quot;it&#39;s&quot; &amp; ?");
}

// --- the page itself --------------------------------------------------------------------------

/// As a Content-Security-Policy has it, by the program of the system.
std::string hash_of(const std::string& text) {
  const TemporaryFolder folder;
  folder.write("text", text);
  const std::string hex = run_in(folder, {"/usr/bin/sha256sum", "text"}).screen.substr(0, 64);
  std::vector<std::byte> bytes;
  for (std::size_t k = 0; k < hex.size(); k += 2)
    bytes.push_back(static_cast<std::byte>(std::stoi(hex.substr(k, 2), nullptr, 16)));
  folder.write("bytes", std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
  const std::string base64 = run_in(folder, {"/usr/bin/base64", "bytes"}).screen;
  return base64.substr(0, base64.size() - 1);
}

TEST(PolicyOfThePage, AllowsItsScriptAndStyleAndNothingElse) {
  const std::string page = view_page(waters());
  const std::string policy =
      text_between(page, "<meta http-equiv=\"Content-Security-Policy\" content=\"", "\">");
  EXPECT_TRUE(policy.starts_with("default-src 'none'; ")) << policy;
  EXPECT_EQ(
      text_between(policy, "script-src ", ";"),
      "'sha256-" + hash_of(text_between(page, "<script type=\"module\">", "</script>")) + "'");
  EXPECT_EQ(text_between(policy, "style-src ", ";"),
            "'sha256-" + hash_of(text_between(page, "<style>", "</style>")) + "'");
  EXPECT_EQ(text_between(policy + ";", "img-src ", ";"), "data: blob:");
  EXPECT_EQ(policy.find("unsafe"), std::string::npos);
  EXPECT_EQ(policy.find('*'), std::string::npos);
  EXPECT_EQ(page.find(" style=\""), std::string::npos) << "which the policy forbids";
  EXPECT_EQ(page.find(" onclick="), std::string::npos) << "which the policy forbids";
}

TEST(Page, NamesNothingOutside) {
  const std::string page = view_page(waters());
  for (const std::string outside : {"https:", "@import", " src="})
    EXPECT_EQ(page.find(outside), std::string::npos) << outside;
  for (std::size_t k = page.find("url("); k != std::string::npos; k = page.find("url(", k + 1))
    EXPECT_EQ(page.substr(k, 5), "url(#") << "a colour of a drawing";
  // The names of XML's namespaces are no places.
  for (std::size_t k = page.find("http:"); k != std::string::npos; k = page.find("http:", k + 1))
    EXPECT_EQ(page.substr(k, 18), "http://www.w3.org/");
  for (const std::string place : {"%TITLE%", "%DATA%", "@STYLE@", "@SCRIPT@", "_HASH@"})
    EXPECT_EQ(page.find(place), std::string::npos) << place;
}

TEST(Page, IsWhole) {
  const std::string page = view_page(waters());
  EXPECT_TRUE(page.starts_with("<!DOCTYPE html>\n"));
  EXPECT_TRUE(page.ends_with("</html>\n"));
  EXPECT_LT(page.size(), 300000U);
}

TEST(FittedPage, HasAsManyPosesAsFit) {
  ViewData data = waters();
  ViewPoses poses{.kind = "scan",
                  .name = "scan",
                  .of = 90000,
                  .columns = {},
                  .parameters = {},
                  .x = "a",
                  .y = "",
                  .colour = "a"};
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> any(1.0, 2.0);
  for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n"}) {
    poses.columns.push_back({.name = name, .exact = true});
    for (int k = 0; k < 90000; ++k) poses.columns.back().numbers.push_back(any(random));
  }
  poses.columns[0].numbers[44444] = 0.5;
  data.poses = poses;
  const std::string page = fitted_page(data);
  EXPECT_LE(page.size(), kLargestPage);
  EXPECT_GT(page.size(), kLargestPage * 9 / 10);
  const PageJson read = data_of(page)["poses"];
  EXPECT_EQ(read["of"], 90000);
  EXPECT_LT(read["shown"], 90000);
  const std::vector<PageJson> values = values_in(read, "a");
  EXPECT_EQ(values[0], poses.columns[0].numbers[0]);
  EXPECT_EQ(*std::min_element(values.begin(), values.end()), 0.5);
}

}  // namespace
}  // namespace dravo::test
