/// The made molecules have the symmetry that they were made for, and no more.
#include "support/made_molecules.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "dravo/frame.hpp"
#include "inertia/centre_of_mass.hpp"
#include "inertia/inertia_tensor.hpp"
#include "molecules/pair_table.hpp"
#include "support/literal_symmetries.hpp"
#include "support/turned.hpp"
#include "support/turns.hpp"

namespace dravo::test {
namespace {

/// All products of the generators of a finite group.
std::vector<Matrix3> all_operations(const std::vector<Matrix3>& generators) {
  const auto difference = [](const Matrix3& a, const Matrix3& b) {
    double largest = 0.0;
    for (std::size_t k = 0; k < 3; ++k) largest = std::max(largest, modulus(a.row[k] - b.row[k]));
    return largest;
  };
  std::vector<Matrix3> operations{{{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}}};
  for (std::size_t i = 0; i < operations.size(); ++i)
    for (const Matrix3& generator : generators) {
      const Matrix3 next = product(generator, operations[i]);
      if (std::none_of(operations.begin(), operations.end(),
                       [&](const Matrix3& known) { return difference(known, next) < 1e-6; }))
        operations.push_back(next);
    }
  return operations;
}

/// Shortest and longest distance of two atoms.
std::pair<double, double> range_of_distances(const Molecule& molecule) {
  const auto& r = molecule.positions();
  std::pair range{std::numeric_limits<double>::infinity(), 0.0};
  for (std::size_t i = 0; i < r.size(); ++i)
    for (std::size_t j = 0; j < i; ++j) {
      range.first = std::min(range.first, modulus(r[i] - r[j]));
      range.second = std::max(range.second, modulus(r[i] - r[j]));
    }
  return range;
}

TEST(PointGroups, HaveTheirOrders) {
  // The proper operations are all of the group or half of it.
  for (const auto& [name, group] : point_groups()) {
    if (group.proper_order == kInfinitelyMany) continue;
    const std::vector<Matrix3> operations = all_operations(group.generators);
    EXPECT_EQ(count_of_proper(operations), group.proper_order) << name;
    const bool proper_only = std::string_view("COTID").find(name[0]) != std::string_view::npos &&
                             name.find_first_of("vhdis") == std::string_view::npos;
    EXPECT_EQ(operations.size(),
              static_cast<std::size_t>((proper_only ? 1 : 2) * group.proper_order))
        << name;
  }
}

TEST(MadeMolecules, AreWhatTheGeneratorsLeaveAsTheyAre) {
  for (const MadeMolecule& one : made_molecules())
    for (const Matrix3& generator : point_groups().at(one.group).generators)
      EXPECT_LT(largest_mismatch(moved(one.molecule, generator), one.molecule), 1e-13) << one.name;
}

TEST(MadeMolecules, HaveNoFurtherSymmetry) {
  for (const MadeMolecule& one : made_molecules()) {
    const std::vector<Matrix3> found = literal_symmetries(one.molecule, 0.01);
    EXPECT_EQ(count_of_proper(found), one.proper_order) << one.name;
    if (one.proper_order != kInfinitelyMany) {
      EXPECT_EQ(found.size(), all_operations(point_groups().at(one.group).generators).size())
          << one.name;
    }
  }
}

TEST(MadeMolecules, HaveTheirAtomsApart) {
  for (const MadeMolecule& one : made_molecules()) {
    const auto [shortest, longest] = range_of_distances(one.molecule);
    EXPECT_GE(shortest, 0.7) << one.name;
    if (one.name.find("by accident") == std::string::npos) continue;
    EXPECT_GE(shortest, 2.0) << one.name;
    EXPECT_LE(longest, 5.0) << one.name;
  }
}

TEST(MadeMolecules, HaveTheNumberOfAtomsOfTheirFormula) {
  const std::vector<std::pair<const char*, int>> cases{{"cubane", 16},
                                                       {"neopentane", 17},
                                                       {"fullerene", 60},
                                                       {"benzene", 12},
                                                       {"fullerene, bonds equal", 60},
                                                       {"eclipsed ferrocene", 21},
                                                       {"octasulfur", 8},
                                                       {"staggered ferrocene", 21},
                                                       {"boric acid", 7},
                                                       {"twisted ethane", 8},
                                                       {"staggered ethane", 8},
                                                       {"eclipsed ethane", 8},
                                                       {"allene", 7},
                                                       {"sulfur hexafluoride", 7},
                                                       {"orthosilicic acid", 9},
                                                       {"hydrogen cyanide", 3},
                                                       {"snub dodecahedron of carbon", 60}};
  for (const auto& [name, atoms] : cases) EXPECT_EQ(made(name).molecule.size(), atoms) << name;
}

TEST(MadeMolecules, OfFullerenesHaveThreeBondsAtEachAtom) {
  for (const auto& [name, pentagon, hexagon] :
       {std::tuple{"fullerene", 1.458, 1.401}, {"fullerene, bonds equal", 1.44, 1.44}}) {
    const auto& r = made(name).molecule.positions();
    for (const Vec3& p : r) {
      std::vector<double> distances;
      for (const Vec3& q : r) distances.push_back(modulus(p - q));
      std::sort(distances.begin(), distances.end());
      EXPECT_NEAR(distances[1], hexagon, 1e-12);
      EXPECT_NEAR(distances[2], pentagon, 1e-12);
      EXPECT_NEAR(distances[3], pentagon, 1e-12);
      EXPECT_GT(distances[4], 2.0);
    }
  }
}

std::array<double, 3> moments_of(const Molecule& molecule) {
  const OwnedTable owned = table_of(molecule);
  const RowRange rows{0, molecule.size()};
  const Vec3 centre = centre_of_mass(owned.table(), rows);
  return principal_axes(inertia_tensor(owned.table(), rows, centre)).moments;
}

TEST(TopsByAccident, HaveEqualMoments) {
  int tops = 0;
  for (const MadeMolecule& one : made_molecules()) {
    if (one.name.find("by accident") == std::string::npos) continue;
    ++tops;
    const std::array<double, 3> moments = moments_of(one.molecule);
    const std::string type(name_of(rotor_type(moments)));
    EXPECT_EQ(type.substr(0, type.find(' ')), one.name.substr(0, one.name.find(' '))) << one.name;
    const bool prolate = type.starts_with("prolate");
    const bool spherical = type.starts_with("spherical");
    if (!prolate) {
      EXPECT_NEAR(moments[0] / moments[1], 1.0, 1e-13) << one.name;
    }
    if (prolate || spherical) {
      EXPECT_NEAR(moments[1] / moments[2], 1.0, 1e-13) << one.name;
    }
    // Only a threefold axis, or an S4, explains equal moments.
    EXPECT_LE(one.proper_order, 2) << one.name;
  }
  EXPECT_EQ(tops, 11);
}

}  // namespace
}  // namespace dravo::test
