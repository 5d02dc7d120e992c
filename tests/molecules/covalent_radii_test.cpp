#include "molecules/covalent_radii.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace dravo::test {
namespace {

constexpr int kH = 1, kC = 6, kO = 8, kI = 53, kU = 92;

TEST(CovalentRadius, IsThePublishedOne) {
  EXPECT_EQ(covalent_radius(kH), 0.31);
  EXPECT_EQ(covalent_radius(kC), 0.76);
  EXPECT_EQ(covalent_radius(kI), 1.39);
  EXPECT_EQ(covalent_radius(kU), 1.96);
}

TEST(CovalentRadius, OfNoElementIsAnError) {
  for (const int z : {-1, 0, 93}) EXPECT_THROW(covalent_radius(z), std::out_of_range) << z;
}

TEST(Bonded, UpToTheRadiiAndTheTolerance) {
  EXPECT_EQ(longest_bond(0.25, 0.5), 0.75 + 0.4);
  EXPECT_TRUE(bonded(kO, kH, 0.96));
  EXPECT_TRUE(bonded(kH, kO, 1.37 - 1e-9));
  EXPECT_FALSE(bonded(kH, kO, 1.37 + 1e-9));
  EXPECT_FALSE(bonded(kC, kC, 2.5));  // neighbours of one atom in a chain
  EXPECT_TRUE(bonded(kI, kI, 2.67));  // the molecule
  EXPECT_FALSE(bonded(kI, kI, 3.5));  // neighbours in the crystal
}

}  // namespace
}  // namespace dravo::test
