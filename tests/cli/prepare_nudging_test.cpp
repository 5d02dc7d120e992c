/// Values that a run will not take as they are: `dravo prepare` says so, and a run does so.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/prepared.hpp"
#include "support/memory_run.hpp"
#include "support/regular_expression.hpp"

namespace dravo::test {
namespace {

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180.0;

using Triple = std::array<double, 3>;
using Matrix = std::array<Triple, 3>;

/// r, theta, phi, alpha, beta, gamma in degrees.
using Values = std::array<double, 6>;

/// The rotation that the three Euler angles stand for, written out.
Matrix euler_rotation(const Values& v) {
  const double a = v[3] * kRadiansPerDegree, b = v[4] * kRadiansPerDegree,
               g = v[5] * kRadiansPerDegree;
  const double ca = std::cos(a), sa = std::sin(a), cb = std::cos(b), sb = std::sin(b),
               cg = std::cos(g), sg = std::sin(g);
  return {{{ca * cb * cg - sa * sg, sa * cb * cg + ca * sg, -sb * cg},
           {-ca * cb * sg - sa * cg, ca * cg - sa * cb * sg, sb * sg},
           {ca * sb, sa * sb, cb}}};
}

Triple centre_of(const Values& v) {
  const double theta = v[1] * kRadiansPerDegree, phi = v[2] * kRadiansPerDegree;
  return {v[0] * std::sin(theta) * std::cos(phi), v[0] * std::sin(theta) * std::sin(phi),
          v[0] * std::cos(theta)};
}

/// Where an atom of molecule 1 that stands at `p` with the values `from` stands with `to`.
Triple placed(const Vec3& p, const Values& from, const Values& to) {
  const Matrix A = euler_rotation(from), B = euler_rotation(to);
  const Triple c = centre_of(from);
  const Triple turned{p.x - c[0], p.y - c[1], p.z - c[2]};
  Triple original{};
  for (std::size_t k = 0; k < 3; ++k)
    for (std::size_t i = 0; i < 3; ++i) original[k] += A[i][k] * turned[i];
  Triple place = centre_of(to);
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t k = 0; k < 3; ++k) place[i] += B[i][k] * original[k];
  return place;
}

constexpr std::array<const char*, 6> kNames{"r", "theta", "phi", "alpha", "beta", "gamma"};

/// The values with those replaced that the messages announce, which are single-precision numbers.
Values as_announced(Values values, const std::string& messages) {
  for (const std::string& line : lines_of(messages)) {
    const Lines part = groups_of(line, "dravo: (.*) will be used as ([^:]*): .*");
    if (part.empty()) continue;
    const auto words_of = [](std::string text) {
      for (const std::string between : {", ", " and "})
        for (std::size_t at = 0; (at = text.find(between)) != std::string::npos;)
          text.replace(at, between.size(), "|");
      return parts_of(text, '|');
    };
    const Lines replaced = words_of(part[1]), used = words_of(part[2]);
    EXPECT_EQ(replaced.size(), used.size());
    for (std::size_t k = 0; k < kNames.size(); ++k)
      for (std::size_t i = 0; i < used.size(); ++i)
        if (replaced[i].starts_with(std::string(kNames[k]) + " ")) values[k] = std::stof(used[i]);
  }
  return values;
}

WrittenGeometry placed_by_run(const std::string& input) {
  for (const auto& [name, text] : run_in_memory(input).files)
    if (name.ends_with("-QN-DRAVO.xyz") || name.ends_with("IDENTIFED.xyz"))
      return parse_geometry(text);
  throw std::runtime_error("no pair was written");
}

struct Nudging {
  const char* name;
  std::map<std::string, std::string> given;  ///< beside plain values
  Lines remarks;
};

void PrintTo(const Nudging& nudging, std::ostream* out) { *out << nudging.name; }

constexpr auto kAllZero =
    "theta 0, phi 0, alpha 0 and gamma 0 will be used as 0.049, 0.049, 0.09 and 0.09: phi has no "
    "meaning at theta 0; angles are kept off 0; beta rounds to 0, where only alpha + gamma counts";

const std::vector<Nudging> kNudgings{
    {"nothing is singular", {}, {}},
    {"theta 0", {{"theta", "0"}}, {"theta 0 will be used as 0.049: phi has no meaning at theta 0"}},
    {"theta just above 0",
     {{"theta", "0.0499"}},
     {"theta 0.0499 will be used as 0.049: phi has no meaning at theta 0"}},
    {"theta 0.06 stays", {{"theta", "0.06"}}, {}},
    {"theta 180",
     {{"theta", "180"}},
     {"theta 180 will be used as 179.99: phi has no meaning at theta 180"}},
    {"theta just below 180",
     {{"theta", "179.92"}},
     {"theta 179.92 will be used as 179.99: phi has no meaning at theta 180"}},
    {"theta 179.9 stays", {{"theta", "179.9"}}, {}},
    {"phi 0", {{"phi", "0"}}, {"phi 0 will be used as 0.049: angles are kept off 0"}},
    {"phi 1e-17", {{"phi", "1e-17"}}, {"phi 1e-17 will be used as 0.049: angles are kept off 0"}},
    {"phi -0", {{"phi", "-0"}}, {"phi -0 will be used as 0.049: angles are kept off 0"}},
    {"phi 360 stays", {{"phi", "360"}}, {}},
    {"alpha 0", {{"alpha", "0"}}, {"alpha 0 will be used as 0.09: angles are kept off 0"}},
    {"alpha 0.1, just below the single-precision limit",
     {{"alpha", "0.1"}},
     {"alpha 0.1 will be used as 0.09: angles are kept off 0"}},
    {"alpha 0.11 stays", {{"alpha", "0.11"}}, {}},
    {"alpha 0.09 is what is used", {{"alpha", "0.09"}}, {}},
    {"beta 180",
     {{"beta", "180"}},
     {"beta 180 will be used as 179.99: alpha and gamma are not separate angles at beta 180"}},
    {"beta just below 180",
     {{"beta", "179.95"}},
     {"beta 179.95 will be used as 179.99: alpha and gamma are not separate angles at beta 180"}},
    {"gamma 0", {{"gamma", "0"}}, {"gamma 0 will be used as 0.09: angles are kept off 0"}},
    {"beta 0 stays and fixes gamma",
     {{"beta", "0"}},
     {"gamma 306 will be used as 0.09: beta rounds to 0, where only alpha + gamma counts"}},
    {"beta 0.4 stays and fixes gamma",
     {{"beta", "0.4"}, {"gamma", "0"}},
     {"gamma 0 will be used as 0.09: beta rounds to 0, where only alpha + gamma counts"}},
    {"beta 0.5 leaves gamma", {{"beta", "0.5"}}, {}},
    {"all angles 0",
     {{"theta", "0"}, {"phi", "0"}, {"alpha", "0"}, {"beta", "0"}, {"gamma", "0"}},
     {kAllZero}},
    {"two angles for one reason",
     {{"phi", "0"}, {"alpha", "0"}},
     {"phi 0 and alpha 0 will be used as 0.049 and 0.09: angles are kept off 0"}},
};

class NudgedValues : public ::testing::TestWithParam<Nudging> {};

TEST_P(NudgedValues, AreAnnouncedAndAreWhatARunUses) {
  constexpr Values kPlain{6.5, 84.0, 11.0, 214.0, 152.0, 306.0};
  const XyzDimer folder;
  Words words{"prepare", "pair.xyz", "--split", "6", "--r", "6.5"};
  Values given = kPlain;
  for (std::size_t k = 1; k < kNames.size(); ++k) {
    const auto found = GetParam().given.find(kNames[k]);
    if (found != GetParam().given.end()) given[k] = std::stod(found->second);
    words =
        words + Words{std::string("--") + kNames[k],
                      found != GetParam().given.end() ? found->second : std::to_string(kPlain[k])};
  }
  const Outcome outcome = run_command(folder, words);
  std::string expected;
  for (const std::string& remark : GetParam().remarks) expected += "dravo: " + remark + '\n';
  ASSERT_EQ(outcome.messages, expected + kWritten);
  ASSERT_EQ(outcome.status, 0);

  const WrittenGeometry plain = placed_by_run(bundled("formamide-dimer"));
  const WrittenGeometry pair = placed_by_run(input_in(folder));
  const Values used = as_announced(given, outcome.messages);
  // A thousandth of a degree moves the centre of molecule 1, and the atoms about it, by some 1e-5.
  constexpr double kPrinted = 1e-7;
  for (std::size_t i = 0; i < 6; ++i) {
    const Triple place = placed(plain.positions[i], kPlain, used);
    EXPECT_NEAR(pair.positions[i].x, place[0], kPrinted) << "atom " << i + 1;
    EXPECT_NEAR(pair.positions[i].y, place[1], kPrinted) << "atom " << i + 1;
    EXPECT_NEAR(pair.positions[i].z, place[2], kPrinted) << "atom " << i + 1;
  }
}

INSTANTIATE_TEST_SUITE_P(Values, NudgedValues, ::testing::ValuesIn(kNudgings));

TEST(ValuesNotGivenForTwoFiles, AreZeroInTheFileAndNudgedInTheRun) {
  const TemporaryFolder folder;
  folder.write("one.xyz", xyz(atoms_of("formamide-dimer", 1, 6)));
  folder.write("two.xyz", xyz(atoms_of("formamide-dimer", 7, 12)));
  const Outcome outcome = run_command(folder, {"prepare", "one.xyz", "two.xyz", "--r", "4"});
  EXPECT_EQ(outcome.messages, "dravo: " + std::string(kAllZero) + "\n" + kWritten);
  EXPECT_EQ(parse_sample(input_in(folder)).parameters,
            (std::array<std::string, 6>{"4", "0", "0", "0", "0", "0"}));
}

}  // namespace
}  // namespace dravo::test
