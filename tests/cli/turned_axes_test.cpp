/// Where molecule 1's axes point after the turn, as docs/conventions.md states it.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

#include "cli/command.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;

using Point = std::array<double, 3>;

struct Atom {
  std::string element;
  Point at;
};

std::vector<Atom> atoms_of(const std::string& xyz) {
  const Lines lines = lines_of(xyz);
  std::vector<Atom> atoms(6);
  for (std::size_t i = 0; i < atoms.size(); ++i)
    std::istringstream(lines.at(i + 2)) >> atoms[i].element >> atoms[i].at[0] >> atoms[i].at[1] >>
        atoms[i].at[2];
  return atoms;
}

/// A direction in the plane of formamide, as shares of its bonds from O to C and from O to N: these
/// shares stay the same when the molecule is turned.
struct InPlane {
  double along_C, along_N;

  [[nodiscard]] Point in(const std::vector<Atom>& atoms) const {
    Point p{};
    for (std::size_t i = 0; i < 3; ++i)
      p.at(i) = along_C * (atoms[0].at.at(i) - atoms[1].at.at(i)) +
                along_N * (atoms[2].at.at(i) - atoms[1].at.at(i));
    return p;
  }
};

InPlane shares_of(double x, double y, const std::vector<Atom>& atoms) {
  const double cx = atoms[0].at[0] - atoms[1].at[0], cy = atoms[0].at[1] - atoms[1].at[1];
  const double nx = atoms[2].at[0] - atoms[1].at[0], ny = atoms[2].at[1] - atoms[1].at[1];
  const double area = cx * ny - cy * nx;
  return {(x * ny - y * nx) / area, (cx * y - cy * x) / area};
}

/// z, the axis of the smallest moment, and y, both towards oxygen, of formamide in the plane z = 0,
/// with standard atomic weights.
struct OwnAxes {
  InPlane z, y;
};

OwnAxes own_axes(const std::vector<Atom>& atoms) {
  const std::map<std::string, double> weights{
      {"H", 1.008}, {"C", 12.011}, {"N", 14.007}, {"O", 15.999}};
  double mass = 0.0, mx = 0.0, my = 0.0, difference = 0.0, product = 0.0;
  for (const auto& [element, at] : atoms) {
    mass += weights.at(element);
    mx += weights.at(element) * at[0];
    my += weights.at(element) * at[1];
  }
  for (const auto& [element, at] : atoms) {
    const double x = at[0] - mx / mass, y = at[1] - my / mass;
    difference += weights.at(element) * (x * x - y * y);
    product += weights.at(element) * x * y;
  }
  // The longest extent of the masses is the axis of the smallest moment.
  const double angle = 0.5 * std::atan2(2.0 * product, difference);
  const double ox = atoms[1].at[0] - mx / mass, oy = atoms[1].at[1] - my / mass;
  const double c = std::cos(angle), s = std::sin(angle);
  const double along_z = c * ox + s * oy < 0.0 ? -1.0 : 1.0;
  const double along_y = -s * ox + c * oy < 0.0 ? -1.0 : 1.0;
  return {shares_of(along_z * c, along_z * s, atoms), shares_of(-along_y * s, along_y * c, atoms)};
}

Point cross(const Point& a, const Point& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

void expect_direction(const Point& found, double polar, double azimuth, const std::string& pose) {
  const Point expected{std::sin(polar) * std::cos(azimuth), std::sin(polar) * std::sin(azimuth),
                       std::cos(polar)};
  for (std::size_t i = 0; i < 3; ++i)
    EXPECT_NEAR(found.at(i), expected.at(i), 1e-6) << pose << ' ' << i;
}

std::vector<Atom> placed(double theta, double phi, double alpha, double beta, double gamma) {
  Words words{"place", DRAVO_EXAMPLES "/formamide-dimer/formamide-dimer.xyz", "--split", "6"};
  const std::array names{"--theta", "--phi", "--alpha", "--beta", "--gamma"};
  const std::array values{theta, phi, alpha, beta, gamma};
  words = words + Words{"--r", "8"};
  for (std::size_t k = 0; k < names.size(); ++k)
    words = words + Words{names.at(k), std::to_string(values.at(k))};
  const Outcome outcome = run_command(TemporaryFolder(), words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  return atoms_of(outcome.screen);
}

class TurnedAxes : public ::testing::Test {
 protected:
  OwnAxes own =
      own_axes(atoms_of(file_text(DRAVO_EXAMPLES "/formamide-dimer/formamide-dimer.xyz")));
};

TEST_F(TurnedAxes, ZHasThePolarAngleBetaAndTheAzimuth180MinusGamma) {
  for (const double alpha : {0.0, 77.0})
    for (const double beta : {20.0, 90.0, 152.0})
      for (const double gamma : {0.0, 35.0, 90.0, 180.0, 306.0}) {
        const Point z = own.z.in(placed(40, 200, alpha, beta, gamma));
        expect_direction(z, beta * kDegree, (180.0 - gamma) * kDegree, std::to_string(gamma));
      }
}

TEST_F(TurnedAxes, SeeZOfMolecule2AtThePolarAngleBetaAndTheAzimuthAlpha) {
  for (const double alpha : {0.0, 77.0, 214.0})
    for (const double beta : {20.0, 152.0}) {
      const auto atoms = placed(90, 0, alpha, beta, 306);
      const Point z = own.z.in(atoms), y = own.y.in(atoms), x = cross(y, z);
      expect_direction({x[2], y[2], z[2]}, beta * kDegree, alpha * kDegree, std::to_string(alpha));
    }
}

/// The rows of the page for z away from molecule 2 and towards it.
TEST_F(TurnedAxes, ZPointsAwayFromMolecule2OrTowardsIt) {
  const double theta = 50.0, phi = 70.0;
  expect_direction(own.z.in(placed(theta, phi, 10, theta, 180 - phi)), theta * kDegree,
                   phi * kDegree, "away");
  expect_direction(own.z.in(placed(theta, phi, 10, 180 - theta, 360 - phi)),
                   (180 - theta) * kDegree, (180 + phi) * kDegree, "towards");
}

}  // namespace
}  // namespace dravo::test
