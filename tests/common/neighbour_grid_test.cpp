#include "common/neighbour_grid.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <set>
#include <vector>

#include "support/not_finite.hpp"

namespace dravo::test {
namespace {

using Random = std::mt19937_64;
using Points = std::vector<Vec3>;
using RowNumbers = std::vector<std::int32_t>;

double uniform(Random& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

Points cloud(Random& random, std::size_t count, const Vec3& edges, const Vec3& centre = {}) {
  Points points;
  for (std::size_t k = 0; k < count; ++k)
    points.push_back(centre + Vec3{edges.x * uniform(random, -0.5, 0.5),
                                   edges.y * uniform(random, -0.5, 0.5),
                                   edges.z * uniform(random, -0.5, 0.5)});
  return points;
}

/// `hypot` neither overflows nor underflows.
double distance(const Vec3& a, const Vec3& b) {
  return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

/// The points up to `reach` from a place that the grid finds, and how many it looks at.
struct FoundAtoms {
  RowNumbers rows;
  std::size_t looked_at = 0;
};

FoundAtoms near(const NeighbourGrid& grid, const Vec3& place, double reach) {
  FoundAtoms found;
  for (const std::int32_t cell : grid.cells_around(place))
    for (const auto& [position, row] : grid.members(cell)) {
      ++found.looked_at;
      if (distance(position, place) <= reach) found.rows.push_back(row);
    }
  std::sort(found.rows.begin(), found.rows.end());
  return found;
}

RowNumbers near_one_by_one(const Points& points, const Vec3& place, double reach) {
  RowNumbers rows;
  for (std::size_t k = 0; k < points.size(); ++k)
    if (distance(points[k], place) <= reach) rows.push_back(static_cast<std::int32_t>(k));
  return rows;
}

/// Every finite point is in one cell, once and where it was, by ascending rows.
void expect_all_in_cells(const Points& points, const NeighbourGrid& grid) {
  std::set<std::int32_t> rows;
  for (std::int32_t cell = 0; cell < grid.cells(); ++cell) {
    const auto members = grid.members(cell);
    EXPECT_FALSE(members.empty()) << cell;
    EXPECT_EQ(members.data(), grid.members().data() + grid.stretch(cell).begin);
    EXPECT_TRUE(std::is_sorted(members.begin(), members.end(),
                               [](const auto& a, const auto& b) { return a.row < b.row; }));
    for (const auto& [position, row] : members) {
      EXPECT_TRUE(rows.insert(row).second) << "twice: " << row;
      EXPECT_EQ(position, points[static_cast<std::size_t>(row)]);
    }
  }
  std::set<std::int32_t> finite;
  for (std::size_t k = 0; k < points.size(); ++k)
    if (std::isfinite(points[k].x) && std::isfinite(points[k].y) && std::isfinite(points[k].z))
      finite.insert(static_cast<std::int32_t>(k));
  EXPECT_EQ(rows, finite);
  EXPECT_EQ(grid.members().size(), finite.size());
}

/// Around all points and all of `places`. Returns how many pairs are near.
std::size_t expect_those_one_by_one(const Points& points, double reach, const Points& places = {}) {
  const NeighbourGrid grid(points, reach);
  expect_all_in_cells(points, grid);
  std::size_t pairs = 0;
  for (const Points& list : {points, places})
    for (const Vec3& place : list) {
      const RowNumbers rows = near(grid, place, reach).rows;
      pairs += rows.size();
      EXPECT_EQ(rows, near_one_by_one(points, place, reach))
          << place.x << ' ' << place.y << ' ' << place.z;
    }
  return pairs;
}

TEST(NeighbourGrid, FindsWhatALoopFindsInRandomClouds) {
  Random random(1);
  std::size_t pairs = 0;
  for (const double reach : {0.3, 1.9, 4.8, 100.0})
    for (const Vec3& edges : {Vec3{20, 20, 20}, Vec3{300, 1, 1}, Vec3{1, 60, 60}, Vec3{0, 0, 90}})
      for (const double centre : {0.0, -500.0, 12345.678})
        pairs +=
            expect_those_one_by_one(cloud(random, 200, edges, {centre, -centre, centre}), reach,
                                    cloud(random, 50, 1.5 * edges, {centre, -centre, centre}));
  EXPECT_GT(pairs, 4 * 4 * 3 * 400U) << "or else the clouds show little";
}

TEST(NeighbourGrid, FindsPointsOnFacesEdgesAndCornersOfCells) {
  // Coordinates are multiples of the reach, and of the edge for edges of up to a hundredth more:
  // neighbours are as far apart as the reach, to the last bits.
  for (const double longer : {1.0, 1.0 + 1e-15, 1.0 - 1e-15, 1.0001, 1.001, 1.01})
    for (const double reach : {1.0, 1.9, 2.0, 1.0 / 3.0}) {
      const double step = longer * reach;
      Points lattice;
      for (int x = -3; x <= 3; ++x)
        for (int y = -3; y <= 3; ++y)
          for (int z = -3; z <= 3; ++z) lattice.push_back({step * x, step * y, step * z});
      const std::size_t pairs = expect_those_one_by_one(lattice, reach);
      EXPECT_GE(pairs, lattice.size());
      if (longer == 1.0 && reach == 2.0) {
        EXPECT_EQ(pairs, 343U + 3 * 2 * 6 * 49);  // itself, and both ways along each line
      }
    }
}

TEST(NeighbourGrid, FindsPairsAsFarApartAsTheReachInAnyDirection) {
  Random random(2);
  constexpr double kReach = 2.7;
  for (int repeat = 0; repeat < 2000; ++repeat) {
    const Vec3 centre{uniform(random, -40, 40), uniform(random, -40, 40), uniform(random, -40, 40)};
    const Vec3 aside{uniform(random, -1, 1), uniform(random, -1, 1), uniform(random, -1, 1)};
    const Points pair{centre, centre + (kReach * (1.0 - 1e-12) / modulus(aside)) * aside};
    EXPECT_EQ(near(NeighbourGrid(pair, kReach), pair[0], kReach).rows, (RowNumbers{0, 1}));
    EXPECT_EQ(near(NeighbourGrid(pair, kReach), pair[1], kReach).rows, (RowNumbers{0, 1}));
  }
}

TEST(NeighbourGrid, FindsPairsThatRoundingWouldPullApart) {
  // One point just below the origin or 2^n reaches, the other as far as the reach from it: divided
  // by the reach, the second may round up to the multiple after the next.
  Random random(7);
  std::size_t near_ones = 0;
  for (int repeat = 0; repeat < 2000; ++repeat) {
    const double reach = uniform(random, 0.5, 5.0);
    for (int n = 0; n < 40; ++n) {
      const double below = n == 0 ? -1e-20 : std::nextafter(std::ldexp(reach, n), 0.0);
      const Points pair{{below, 0.0, 0.0}, {below + reach, 0.0, 0.0}};
      const RowNumbers rows = near_one_by_one(pair, pair[0], reach);
      ASSERT_EQ(near(NeighbourGrid(pair, reach), pair[0], reach).rows, rows) << reach << ' ' << n;
      near_ones += rows.size() - 1;
    }
  }
  EXPECT_GT(near_ones, 20000U);
}

TEST(NeighbourGrid, HasOneCellForPointsOfOnePlaceInWhateverOrderTheyCome) {
  constexpr std::int32_t kPlaces = 500, kRounds = 7;
  Random random(8);
  Points places = cloud(random, kPlaces, {1e6, 1e6, 1e6});
  for (Vec3& p : places)  // no two of them nearer than the reach
    p = {10.0 * std::round(p.x / 10.0), 10.0 * std::round(p.y / 10.0),
         10.0 * std::round(p.z / 10.0)};
  Points points;
  for (std::int32_t round = 0; round < kRounds; ++round)
    points.insert(points.end(), places.begin(), places.end());
  const NeighbourGrid grid(points, 3.0);
  expect_all_in_cells(points, grid);
  ASSERT_EQ(grid.cells(), kPlaces);
  for (std::int32_t cell = 0; cell < kPlaces; ++cell)
    EXPECT_EQ(grid.members(cell).size(), static_cast<std::size_t>(kRounds));
}

TEST(NeighbourGrid, TakesCoordinatesOfAnySize) {
  // From 1e16 on the coordinates are coarser than the reach; from 2e12 on cells are shared.
  Random random(3);
  for (const double far : {1e6, -1e9, 1.9e12, 2.1e12, -1e15, 1e16, 1e150, -1e300, 1.7e308}) {
    Points points;
    for (const Vec3& centre : {Vec3{far, far, far}, Vec3{-far, far, 0.0}, Vec3{0.0, -1.0, far}})
      for (const Vec3& p : cloud(random, 60, {6, 6, 6}, centre)) points.push_back(p);
    SCOPED_TRACE(far);
    EXPECT_GE(expect_those_one_by_one(points, 1.9), points.size());
  }
}

TEST(NeighbourGrid, FindsNeighboursFarOutWhereNumbersAreCoarse) {
  // A step of the coordinates is an eighth of a thousandth of the reach, a rounding error no more
  // than half of it, and the last cells of their own are here.
  Random random(4);
  for (int repeat = 0; repeat < 3000; ++repeat) {
    const double reach = uniform(random, 0.9, 1.1);
    const double x = std::floor(uniform(random, 9.5e11, 1e12));
    const Points pair{{x, -x, 0.0}, {x + reach, -x, 0.0}, {x, -x - reach, 0.0}};
    EXPECT_EQ(near(NeighbourGrid(pair, reach), pair[0], reach).rows,
              near_one_by_one(pair, pair[0], reach))
        << reach << ' ' << x;
  }
}

TEST(NeighbourGrid, LeavesOutPointsAtNoPlace) {
  const Points points{{0, 0, 0},          {kNaN, 0, 0},   {0, kInfinity, 0}, {1, 0, 0},
                      {0, 0, -kInfinity}, {0, 0.5, kNaN}, {0, 0, 1}};
  const NeighbourGrid grid(points, 2.0);
  expect_all_in_cells(points, grid);
  EXPECT_EQ(near(grid, {0, 0, 0}, 2.0).rows, (RowNumbers{0, 3, 6}));
  for (const Vec3& place : {Vec3{kNaN, 0, 0}, Vec3{0, kInfinity, 0}, Vec3{0, 0, -kInfinity}})
    EXPECT_EQ(near(grid, place, kInfinity).looked_at, 0U);
  expect_all_in_cells({{kNaN, kNaN, kNaN}}, NeighbourGrid(Points{{kNaN, kNaN, kNaN}}, 1.0));
}

TEST(NeighbourGrid, OfNoPointsHasNoCells) {
  const NeighbourGrid grid(Points{}, 1.0);
  EXPECT_EQ(grid.cells(), 0);
  EXPECT_TRUE(grid.members().empty());
  EXPECT_EQ(near(grid, {0, 0, 0}, 1.0).looked_at, 0U);
}

TEST(NeighbourGrid, OfOnePointHasOneCell) {
  for (const Vec3& point : {Vec3{0, 0, 0}, Vec3{-0.1, 7, 1e9}}) {
    const NeighbourGrid grid(Points{point}, 1.0);
    EXPECT_EQ(grid.cells(), 1);
    EXPECT_EQ(near(grid, point, 1.0).rows, RowNumbers{0});
    EXPECT_EQ(near(grid, point + Vec3{0.6, -0.6, 0.5}, 1.0).rows, RowNumbers{0});
    EXPECT_EQ(near(grid, point + Vec3{3, 0, 0}, 1.0).looked_at, 0U);
  }
}

TEST(NeighbourGrid, PointsOfOneCellKeepTheirOrder) {
  Random random(5);
  const Points points = cloud(random, 1000, {1, 1, 1}, {50.5, 50.5, 50.5});
  const NeighbourGrid grid(points, 100.0);
  ASSERT_EQ(grid.cells(), 1);
  for (std::size_t k = 0; k < points.size(); ++k)
    EXPECT_EQ(grid.members(0)[k].row, static_cast<std::int32_t>(k));
}

TEST(NeighbourGrid, FollowsALineOfAMillionAngstrom) {
  // Along axes and diagonals, in which cells in rows may share buckets.
  constexpr int kPoints = 20001;
  for (const Vec3& direction :
       {Vec3{1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 0, 1}, Vec3{0, 1, -1}, Vec3{1, 1, 1}}) {
    Points line;
    for (int k = 0; k < kPoints; ++k) line.push_back((50.0 * k - 5e5) * direction);
    const NeighbourGrid grid(line, 60.0);
    std::size_t looked_at = 0;
    for (int k = 1; k + 1 < kPoints; ++k) {
      const FoundAtoms found = near(grid, line[static_cast<std::size_t>(k)], 55.0);
      looked_at += found.looked_at;
      ASSERT_EQ(found.rows,
                modulus(direction) == 1.0 ? (RowNumbers{k - 1, k, k + 1}) : RowNumbers{k});
    }
    EXPECT_LT(looked_at, 5U * kPoints);
  }
}

TEST(NeighbourGrid, LooksAtFewPointsBesidesTheNearOnes) {
  // 27 cells of a cloud with a point a cell, and of two clouds so far from each other that no box
  // around both could have cells.
  Random random(6);
  Points points = cloud(random, 8000, {20, 20, 20});
  for (const Vec3& p : cloud(random, 8000, {20, 20, 20}, {1e7, 0, 0})) points.push_back(p);
  const NeighbourGrid grid(points, 1.0);
  std::size_t looked_at = 0;
  for (const Vec3& p : points) looked_at += near(grid, p, 1.0).looked_at;
  EXPECT_LT(static_cast<double>(looked_at) / static_cast<double>(points.size()), 29.0);
}

TEST(NeighbourGrid, NamesTheRowsOfATable) {
  std::vector<double> storage(kColumns * 4);
  AtomTable atoms(storage, 4);
  for (std::int32_t i = 0; i < 4; ++i) atoms.set_position(i, {0.1 * i, 0.0, 0.0});
  EXPECT_EQ(near(NeighbourGrid(atoms, {1, 3}, 1.0), {0, 0, 0}, 1.0).rows, (RowNumbers{1, 2}));
  EXPECT_EQ(NeighbourGrid(atoms, {2, 2}, 1.0).cells(), 0);
}

}  // namespace
}  // namespace dravo::test
