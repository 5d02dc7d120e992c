#include "quantum/user_template.hpp"

#include <gtest/gtest.h>

#include <string>

#include "dravo/error.hpp"
#include "quantum/small_pairs.hpp"
#include "support/message_of.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

class UserTemplates : public ::testing::Test {
 protected:
  TemporaryFolder folder_;

  [[nodiscard]] std::string file(const std::string& name = "t.inp") const {
    return (folder_.path() / name).string();
  }

  [[nodiscard]] UserTemplate made(const std::string& text,
                                  const std::string& name = "t.inp") const {
    folder_.write(name, text);
    return {file(name), "index,r,theta,shortest"};
  }

  /// Of pose 17.
  [[nodiscard]] std::string filled(const std::string& text) const {
    QuantumJob job = job_of(QuantumProgram::user, "mp2", "cc-pvdz");
    job.keywords = {"one 1", "two 2"};
    job.charges = {-1, 3};
    job.multiplicities = {2, 3};
    job.cores = 8;
    return made(text).text(job, {17, hydroxyl_and_water()}, "17,3.25,,1.9e-1");
  }

  [[nodiscard]] std::string refusal(const std::string& text) const {
    return message_of<InvalidInput>([&] { (void)made(text); });
  }
};

TEST_F(UserTemplates, HaveEveryName) {
  EXPECT_EQ(filled("{index} {method} {basis} {cores}\n"), "17 mp2 cc-pvdz 8\n");
  EXPECT_EQ(filled("{keywords}\n"), "one 1\ntwo 2\n");
  EXPECT_EQ(filled("{charge} {charge_1} {charge_2}"), "2 -1 3");
  EXPECT_EQ(filled("{multiplicity} {multiplicity_1} {multiplicity_2}"), "4 2 3");
  EXPECT_EQ(filled("{atoms} {atoms_1} {atoms_2}"), "5 2 3");
  const std::string first = R"(O        0.00000000      0.00000000      0.00000000
H        0.97000000      0.00000000      0.00000000)";
  const std::string second = R"(O        2.90000000      0.00000000      0.00000000
H        3.20000000      0.10000000      0.90000000
H        3.20000000      0.90000000     -0.10000000)";
  EXPECT_EQ(filled("<{symbols_xyz_1}>"), "<" + first + ">");
  EXPECT_EQ(filled("<{symbols_xyz_2}>"), "<" + second + ">");
  EXPECT_EQ(filled("{symbols_xyz}\n"), first + "\n" + second + "\n");
}

TEST_F(UserTemplates, HaveTheColumnsOfTheTable) {
  EXPECT_EQ(filled("r={r};theta={theta};{shortest}{r}"), "r=3.25;theta=;1.9e-13.25");
}

TEST_F(UserTemplates, KeepOtherBraces) {
  for (const char* const text :
       {"", "{", "}", "{}", "{ r }", "{r", "r}", "{r-1}", "{%.3f}", "\\frac{1+2}{r'}", "{{", "}}{",
        "no end of line", "a\r\nb\r\n", "\n\n"})
    EXPECT_EQ(filled(text), text);
  EXPECT_EQ(filled("{{r}}"), "{r}");
  EXPECT_EQ(filled("{{{r}}}"), "{{r}}");
  EXPECT_EQ(filled("{{r}} {r} {{anything}}{{r}}{index}"), "{r} 3.25 {anything}{r}17");
  EXPECT_EQ(filled("{ {r} }"), "{ 3.25 }");
  EXPECT_EQ(filled("{{r} }"), "{3.25 }");
  EXPECT_EQ(filled("{a{r}"), "{a3.25");
}

TEST_F(UserTemplates, AreRefusedForANameThatStandsForNothing) {
  EXPECT_EQ(
      refusal("one\n  {r} {radius}\nthree {nothing}\n"),
      file() +
          ":2: {radius} stands for nothing; there are index, method, basis, keywords, charge, "
          "charge_1, charge_2, multiplicity, multiplicity_1, multiplicity_2, atoms, atoms_1, "
          "atoms_2, symbols_xyz, symbols_xyz_1, symbols_xyz_2, cores, r, theta, shortest\n"
          "  {r} {radius}\n"
          "      ^^^^^^^^");
  EXPECT_TRUE(refusal("{R}").starts_with(file() + ":1: {R} stands for nothing"));
  EXPECT_THROW((void)UserTemplate(file("none"), "index"), IoFailure);
}

/// The ending of the input files. Names of other files of a pose are none of theirs.
TEST_F(UserTemplates, HaveEndings) {
  EXPECT_EQ(made("", "a.b.gjf").ending(), ".gjf");
  EXPECT_EQ(made("", "job.f90").ending(), ".f90");
  EXPECT_EQ(made("", "plain").ending(), ".inp");
  EXPECT_EQ(made("", "a.out").ending(), ".inp") << "outputs have it";
  EXPECT_EQ(made("", "a.xyz").ending(), ".inp") << "pose.xyz has it";
  EXPECT_EQ(made("", "a.").ending(), ".inp");
  EXPECT_EQ(made("", "a.in put").ending(), ".inp") << "scripts separate words by blanks";
  EXPECT_EQ(made("", "a.it's").ending(), ".inp") << "scripts quote it";
  EXPECT_EQ(made("", "a.failed").ending(), ".inp") << "what failed has it";
  EXPECT_EQ(made("", "a.running").ending(), ".inp") << "what runs has it";
}

}  // namespace
}  // namespace dravo::test
