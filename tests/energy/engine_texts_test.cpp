#include "energy/engine_texts.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "energy/command_engine.hpp"

namespace dravo::test {
namespace {

std::string cause_in(const std::string& message) {
  XtbReply reply{};
  std::copy_n(message.begin(), std::min(message.size(), reply.message.size()),
              reply.message.begin());
  return cause_of(reply);
}

TEST(CauseOfAFailure, IsTheLastLineOfAReply) {
  EXPECT_EQ(cause_in("-3- a: this failed\n-1- scf: no convergence \n\n"),
            "libxtb: scf: no convergence");
  EXPECT_EQ(cause_in("scf: no convergence\r\n"), "libxtb: scf: no convergence");
}

TEST(CauseOfAFailure, MayBeMissing) {
  for (const char* message : {"", " ", "\n\n", " \t\r\n"})
    EXPECT_EQ(cause_in(message), "libxtb does not say why") << message;
}

TEST(CauseOfAFailure, IsShownAsTextAndNotWhole) {
  EXPECT_EQ(cause_in("\x1b[31mred\rback\xFF"), "libxtb: ?[31mred back?");
  EXPECT_EQ(cause_in(std::string(5000, 'x')), "libxtb: " + std::string(200, 'x'));
}

std::string complaint_of(const std::string& printed) {
  std::istringstream in(printed);
  return complaint_in(in);
}

TEST(ComplaintOfAProcess, IsItsFirstLineWithAnError) {
  EXPECT_EQ(complaint_of("starts\nan error: \x1b[1m9\nERROR\n"), ": an error: ?[1m9");
  EXPECT_EQ(complaint_of("all is well\n"), "");
}

Printed printed_by(const std::string& text, const char* expression) {
  std::istringstream in(text);
  return read_printed(in, energy_expression(expression));
}

TEST(PrintedEnergy, IsTheLastThatFits) {
  const Printed printed = printed_by("E = -1.5\nE = -2.5D+01\ndone\n \n", "E = (.*)");
  EXPECT_EQ(printed.energy, -25.0);
  EXPECT_EQ(printed.last_line, "done");
}

TEST(PrintedEnergy, IsAFiniteNumberOrNone) {
  for (const char* text : {"E = -1\nE = nan\n", "E = inf", "E = 1e999", "E = ****", ""})
    EXPECT_FALSE(printed_by(text, "E = (.*)").energy) << text;
}

}  // namespace
}  // namespace dravo::test
