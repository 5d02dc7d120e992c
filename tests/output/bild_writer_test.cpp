#include "output/bild_writer.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace dravo {
namespace {

std::string bild_of(const Vec3& drawn_centre, const MoleculeFrame& molecule1) {
  RecordStream bild;
  write_bild(bild, drawn_centre, molecule1);
  return bild.text();
}

/// Lines from 17 on, where the numbers stand.
std::vector<std::string> derived_frame(const Vec3& drawn_centre, const MoleculeFrame& molecule1) {
  std::vector<std::string> lines;
  const std::string text = bild_of(drawn_centre, molecule1);
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = text.find('\n', begin);
    lines.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  EXPECT_EQ(lines.size(), 23U);
  lines.erase(lines.begin(), lines.begin() + 16);
  return lines;
}

TEST(BildWriter, WholeFile) {
  // Tips in the order z, y, x.
  MoleculeFrame molecule1;
  molecule1.tips = {Vec3{2.234, -0.5, 2.0}, Vec3{1.234, 0.5, 2.0}, Vec3{1.234, -0.5, 3.0}};
  EXPECT_EQ(bild_of({1.234, -0.5, 2.0}, molecule1),
            ".comment - This file shows X,Y,Z ref.  and xyz der.\n"
            ".comment - axes mounted over principal axes of inertia\n"
            ".comment - of the molecules in the supramol. system \n"
            ".comment - molecule 2 Reference system XYZ \n"
            ".comment - Y Blue -IA, X Green -IB), Z Red -IC\n"
            ".comment -      IA<IB<IC\n"
            ".sphere 0 0 0 0.2\n"
            ".color green\n"
            ".arrow 0 0 0 10.0 0 0 \n"
            ".color blue\n"
            ".arrow 0 0 0 0 10.0 0\n"
            ".color red \n"
            ".arrow 0 0 0 0 0 10.0\n"
            ".comment - molecule 1 (Derived system xyz: \n"
            ".comment - z blue (IA), y green (IB), x red (IC):\n"
            ".comment - IA<IB<IC \n"
            ".sphere   1.234  -0.500   2.000  0.2\n"
            ".color blue\n"
            ".arrow   1.234  -0.500   2.000   2.234  -0.500   2.000\n"
            ".color green\n"
            ".arrow   1.234  -0.500   2.000   1.234   0.500   2.000\n"
            ".color red \n"
            ".arrow   1.234  -0.500   2.000   1.234  -0.500   3.000\n");
}

TEST(BildWriter, ArrowsStartAtTheDrawnCentreNotTheCentreOfMass) {
  MoleculeFrame molecule1;
  molecule1.cm = {7.0, 7.0, 7.0};
  const auto lines = derived_frame({0.25, 0.0, -0.25}, molecule1);
  EXPECT_EQ(lines[0], ".sphere   0.250   0.000  -0.250  0.2");
  for (const std::size_t arrow : {2U, 4U, 6U})
    EXPECT_EQ(lines[arrow], ".arrow   0.250   0.000  -0.250   0.000   0.000   0.000");
}

TEST(BildWriter, CoordinatesThatNeedMoreThanEightColumnsBecomeAsterisks) {
  MoleculeFrame molecule1;
  molecule1.tips = {Vec3{9999.5, 10000.0, 1.0}, Vec3{-999.5, -1000.0, 1.0},
                    Vec3{9999.9996, -999.9996, 1.0}};
  const auto lines = derived_frame({10000.0, -1000.0, 9999.5}, molecule1);
  EXPECT_EQ(lines[0], ".sphere****************9999.500  0.2");
  EXPECT_EQ(lines[2], ".arrow****************9999.5009999.500********   1.000");
  EXPECT_EQ(lines[4], ".arrow****************9999.500-999.500********   1.000");
  // Rounding decides, not the value: both need a digit more after it.
  EXPECT_EQ(lines[6], ".arrow****************9999.500****************   1.000");
}

TEST(BildWriter, SmallAndUndefinedCoordinates) {
  MoleculeFrame molecule1;
  molecule1.tips[0] = {-0.0001, 0.0004, -0.0006};
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const auto lines = derived_frame({nan, 0.0, 0.0}, molecule1);
  EXPECT_EQ(lines[0], ".sphere     NaN   0.000   0.000  0.2");
  EXPECT_EQ(lines[2], ".arrow     NaN   0.000   0.000  -0.000   0.000  -0.001");
}

}  // namespace
}  // namespace dravo
