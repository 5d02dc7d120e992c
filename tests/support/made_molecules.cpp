#include "support/made_molecules.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <stdexcept>
#include <utility>

#include "common/atom_table.hpp"
#include "molecules/pair_table.hpp"
#include "support/atoms.hpp"
#include "support/pairs.hpp"
#include "support/turned.hpp"
#include "support/turns.hpp"

namespace dravo::test {
namespace {

using Atoms = std::vector<Atom>;

// --- operations -------------------------------------------------------------------------------

constexpr Matrix3 kInversion{{{{-1, 0, 0}, {0, -1, 0}, {0, 0, -1}}}};
constexpr Matrix3 kAcross{{{{1, 0, 0}, {0, 1, 0}, {0, 0, -1}}}};   ///< reflects in z = 0
constexpr Matrix3 kUpright{{{{1, 0, 0}, {0, -1, 0}, {0, 0, 1}}}};  ///< reflects in y = 0

constexpr Vec3 kX{1, 0, 0}, kZ{0, 0, 1};
constexpr Vec3 kDiagonal{1, 1, 1};
constexpr Vec3 kFivefold{0, 1, std::numbers::phi};  ///< a vertex of the icosahedron

Matrix3 turn(int fold, const Vec3& axis) { return turn_about(axis, 360.0 / fold); }

Matrix3 rotoreflection(int fold) { return product(kAcross, turn(fold, kZ)); }

std::map<std::string_view, PointGroup> make_point_groups() {
  const Matrix3 half_x = turn(2, kX), half_z = turn(2, kZ), quarter_z = turn(4, kZ);
  const Matrix3 third = turn(3, kDiagonal), fifth = turn(5, kFivefold);
  return {
      {"C1", {1, {}}},
      {"Cs", {1, {kAcross}}},
      {"Ci", {1, {kInversion}}},
      {"C2", {2, {half_z}}},
      {"C3", {3, {turn(3, kZ)}}},
      {"C2v", {2, {half_z, kUpright}}},
      {"C3v", {3, {turn(3, kZ), kUpright}}},
      {"C4v", {4, {quarter_z, kUpright}}},
      {"C2h", {2, {half_z, kAcross}}},
      {"C3h", {3, {turn(3, kZ), kAcross}}},
      {"C4h", {4, {quarter_z, kAcross}}},
      {"C6h", {6, {turn(6, kZ), kAcross}}},
      {"S4", {2, {rotoreflection(4)}}},
      {"S6", {3, {rotoreflection(6)}}},
      {"D2", {4, {half_z, half_x}}},
      {"D3", {6, {turn(3, kZ), half_x}}},
      {"D2h", {4, {half_z, half_x, kAcross}}},
      {"D3h", {6, {turn(3, kZ), half_x, kAcross}}},
      {"D4h", {8, {quarter_z, half_x, kAcross}}},
      {"D5h", {10, {turn(5, kZ), half_x, kAcross}}},
      {"D6h", {12, {turn(6, kZ), half_x, kAcross}}},
      {"D2d", {4, {rotoreflection(4), kUpright}}},
      {"D3d", {6, {rotoreflection(6), kUpright}}},
      {"D4d", {8, {rotoreflection(8), kUpright}}},
      {"D5d", {10, {rotoreflection(10), kUpright}}},
      {"T", {12, {half_z, third}}},
      {"Th", {12, {half_z, third, kInversion}}},
      {"Td", {12, {rotoreflection(4), third}}},
      {"O", {24, {quarter_z, third}}},
      {"Oh", {24, {quarter_z, third, kInversion}}},
      {"I", {60, {fifth, third}}},
      {"Ih", {60, {fifth, third, kInversion}}},
      {"C*v", {kInfinitelyMany, {kUpright}}},
      {"D*h", {kInfinitelyMany, {kUpright, kAcross}}},
      {"K", {kInfinitelyMany, {}}},
  };
}

/// What the operations make of a point. Points of the same place differ by rounding only.
std::vector<Vec3> orbit(const Vec3& seed, const std::vector<Matrix3>& generators) {
  constexpr double kSamePlace = 1e-6;
  std::vector<Vec3> points{seed};
  for (std::size_t i = 0; i < points.size(); ++i)
    for (const Matrix3& generator : generators) {
      const Vec3 image = generator * points[i];
      bool known = false;
      for (const Vec3& p : points) known = known || modulus(p - image) < kSamePlace;
      if (!known) points.push_back(image);
    }
  return points;
}

Molecule spread(const Atoms& seeds, std::string_view group) {
  std::vector<Label> labels;
  std::vector<Vec3> positions;
  for (const auto& [symbol, position] : seeds)
    for (const Vec3& p : orbit(position, point_groups().at(group).generators)) {
      labels.push_back(label_of(symbol));
      positions.push_back(p);
    }
  return {std::move(labels), std::move(positions)};
}

// --- places -----------------------------------------------------------------------------------

/// At a distance from the z axis, turned about it.
Vec3 around(double radius, double degrees, double z = 0.0) {
  return {radius * std::cos(degrees * kDegree), radius * std::sin(degrees * kDegree), z};
}

/// A hydrogen of a methyl group whose carbon lies on the diagonal. It is anti to the bond that the
/// carbon has with the centre of a tetrahedron when it is turned by 0 degrees.
Vec3 methyl_hydrogen(double carbon, double degrees) {
  constexpr double kBond = 1.09, kFromAxis = 70.5;
  const Vec3 out = (1.0 / std::numbers::sqrt3) * kDiagonal;
  const Vec3 aside = (1.0 / std::sqrt(6.0)) * Vec3{1, 1, -2};
  const Vec3 staggered = carbon * out + (kBond * std::cos(kFromAxis * kDegree)) * out +
                         (kBond * std::sin(kFromAxis * kDegree)) * aside;
  return turn_about(kDiagonal, degrees) * staggered;
}

Vec3 on_diagonal(double distance) { return (distance / std::numbers::sqrt3) * kDiagonal; }

/// A corner of the truncated icosahedron whose edges are `single_bond` in the pentagons and
/// `double_bond` between hexagons. It cuts an edge of the icosahedron in three, from (0, -1, phi)
/// to (0, 1, phi).
Vec3 fullerene_corner(double single_bond, double double_bond) {
  const double half_edge = single_bond + double_bond / 2.0;
  return {0.0, double_bond / 2.0, half_edge * std::numbers::phi};
}

// --- the molecules ----------------------------------------------------------------------------

struct Recipe {
  const char* name;
  const char* group;
  Atoms seeds;
};

constexpr auto kHalomethane = "bromochlorofluoromethane";

std::vector<Recipe> small_molecules() {
  return {
      {"helium", "K", {{"He", {}}}},
      {"carbon dioxide", "D*h", {{"C", {}}, {"O", {0, 0, 1.16}}}},
      {"nitrogen", "D*h", {{"N", {0, 0, 0.55}}}},
      {"hydrogen cyanide", "C*v", {{"C", {}}, {"N", {0, 0, 1.156}}, {"H", {0, 0, -1.064}}}},
      {"water", "C2v", {{"O", {}}, {"H", {0.757, 0, -0.586}}}},
      {"ozone", "C2v", {{"O", {}}, {"O", {1.09, 0, -0.67}}}},
      {"ammonia", "C3v", {{"N", {}}, {"H", around(0.938, 0, -0.381)}}},
      {"methane", "Td", {{"C", {}}, {"H", on_diagonal(1.087)}}},
      {"bromine pentafluoride", "C4v", {{"Br", {}}, {"F", {0, 0, 1.69}}, {"F", {1.76, 0, -0.14}}}},
      {"xenon tetrafluoride", "D4h", {{"Xe", {}}, {"F", {1.95, 0, 0}}}},
      {"sulfur hexafluoride", "Oh", {{"S", {}}, {"F", {1.561, 0, 0}}}},
      {"hypochlorous acid", "Cs", {{"O", {}}, {"Cl", {1.69, 0, 0}}, {"H", around(0.964, 102.96)}}},
      {"hydrogen peroxide", "C2", {{"O", {0.72, 0.1, 0}}, {"H", {0.88, 0.75, 0.68}}}},
      {"trans-difluorodiazene", "C2h", {{"N", {0.611, 0, 0}}, {"F", {0.997, 1.34, 0}}}},
      {"octasulfur", "D4d", {{"S", around(2.34, 0, 0.49)}}},
      {"boric acid", "C3h", {{"B", {}}, {"O", {1.36, 0, 0}}, {"H", {1.73, 0.897, 0}}}},
      {"pyramidal boric acid", "C3", {{"B", {}}, {"O", {1.36, 0, 0.2}}, {"H", {1.73, 0.81, 0.58}}}},
      {"orthosilicic acid", "S4", {{"Si", {}}, {"O", {1.28, 0, 1.0}}, {"H", {1.75, 0.73, 1.32}}}},
      {"palladium tetrahydroxide", "C4h", {{"Pd", {}}, {"O", {2, 0, 0}}, {"H", {2.33, 0.91, 0}}}},
      {"aluminium hexahydrate", "Th", {{"Al", {}}, {"O", {1.9, 0, 0}}, {"H", {2.48, 0.77, 0}}}},
  };
}

std::vector<Recipe> hydrocarbons_and_their_kin() {
  const Vec3 carbon{0, 0, 0.765};  // of ethane
  const Vec3 half{0.77, 0, 0};     // of a haloethane, its bonds along x
  const auto substituent = [&](double bond, double degrees) {
    const Vec3 aside = around(bond * std::sin(70.5 * kDegree), degrees);
    return half + Vec3{bond * std::cos(70.5 * kDegree), aside.x, aside.y};
  };
  return {
      {"ethene", "D2h", {{"C", {0.667, 0, 0}}, {"H", {1.23, 0.92, 0}}}},
      {"twisted ethene", "D2", {{"C", {0, 0, 0.667}}, {"H", around(0.92, 15, 1.23)}}},
      {"allene", "D2d", {{"C", {}}, {"C", {0, 0, 1.308}}, {"H", {0.93, 0, 1.87}}}},
      {"eclipsed ethane", "D3h", {{"C", carbon}, {"H", around(1.016, 0, 1.159)}}},
      {"staggered ethane", "D3d", {{"C", carbon}, {"H", around(1.016, 0, 1.159)}}},
      {"twisted ethane", "D3", {{"C", carbon}, {"H", around(1.016, 10, 1.159)}}},  // by 20 degrees
      {"meso-dichlorodifluoroethane",
       "Ci",
       {{"C", half},
        {"F", substituent(1.38, 0)},
        {"Cl", substituent(1.77, 120)},
        {"H", substituent(1.09, 240)}}},
      {"hexahypofluoritoethane",
       "S6",
       {{"C", carbon}, {"O", around(1.25, 0, 1.2)}, {"F", around(1.75, 40, 2.35)}}},
      {"benzene", "D6h", {{"C", {1.395, 0, 0}}, {"H", {2.482, 0, 0}}}},
      {"pinwheel of carbon", "C6h", {{"C", {1.4, 0, 0}}, {"C", around(2.6, 13)}}},
      {"pinwheel of carbon and hydrogen", "C6h", {{"C", {1.4, 0, 0}}, {"H", around(2.4, 13)}}},
      {kHalomethane,
       "C1",
       {{"C", {}},
        {"H", on_diagonal(1.09)},
        {"F", turn(2, kX) * on_diagonal(1.36)},
        {"Cl", turn(2, {0, 1, 0}) * on_diagonal(1.76)},
        {"Br", turn(2, kZ) * on_diagonal(1.93)}}},
  };
}

std::vector<Recipe> globes_and_sandwiches() {
  const double neopentyl = 1.534;
  const Vec3 ring_carbon = around(1.215, 0, 1.66), ring_hydrogen = around(2.3, 0, 1.66);
  return {
      {"eclipsed ferrocene", "D5h", {{"Fe", {}}, {"C", ring_carbon}, {"H", ring_hydrogen}}},
      {"staggered ferrocene", "D5d", {{"Fe", {}}, {"C", ring_carbon}, {"H", ring_hydrogen}}},
      {"cubane", "Oh", {{"C", on_diagonal(1.3605)}, {"H", on_diagonal(2.4575)}}},
      {"neopentane",
       "Td",
       {{"C", {}}, {"C", on_diagonal(neopentyl)}, {"H", methyl_hydrogen(neopentyl, 0)}}},
      {"neopentane, methyls turned",
       "T",
       {{"C", {}}, {"C", on_diagonal(neopentyl)}, {"H", methyl_hydrogen(neopentyl, 20)}}},
      {"snub cube of carbon", "O", {{"C", {0.7, 1.3, 2.4}}}},
      {"snub dodecahedron of carbon", "I", {{"C", {0.6, 1.5, 4.2}}}},
      {"fullerene", "Ih", {{"C", fullerene_corner(1.458, 1.401)}}},
      {"fullerene, bonds equal", "Ih", {{"C", fullerene_corner(1.44, 1.44)}}},
  };
}

// --- tops by accident ---------------------------------------------------------------------------

/// Three rows of sums of m x x, m x y, ... about the centre of mass, amu Angstrom^2.
Matrix3 second_moments(const ConstAtomTable& atoms, const Vec3& centre) {
  Matrix3 sums{};
  for (std::int32_t i = 0; i < atoms.rows(); ++i) {
    const Vec3 r = atoms.position(i) - centre;
    sums.row[0] = sums.row[0] + (atoms.mass(i) * r.x) * r;
    sums.row[1] = sums.row[1] + (atoms.mass(i) * r.y) * r;
    sums.row[2] = sums.row[2] + (atoms.mass(i) * r.z) * r;
  }
  return sums;
}

Vec3 centre_of(const ConstAtomTable& atoms) {
  Vec3 sum;
  double mass = 0.0;
  for (std::int32_t i = 0; i < atoms.rows(); ++i) {
    sum = sum + atoms.mass(i) * atoms.position(i);
    mass += atoms.mass(i);
  }
  return (1.0 / mass) * sum;
}

/// Stretched and sheared until the second moments along x, y and z are `wanted` and those of two
/// axes are zero. With S = L Lt (Cholesky) and r' = D L^-1 r they are D L^-1 S L^-t D = D D. As L
/// is lower triangular, a twofold axis z stays one.
Molecule with_second_moments(const Molecule& molecule, const Vec3& wanted) {
  const OwnedTable owned = table_of(molecule);
  const Vec3 centre = centre_of(owned.table());
  const Matrix3 s = second_moments(owned.table(), centre);
  const double xx = std::sqrt(s.row[0].x), yx = s.row[1].x / xx, zx = s.row[2].x / xx;
  const double yy = std::sqrt(s.row[1].y - yx * yx), zy = (s.row[2].y - zx * yx) / yy;
  const double zz = std::sqrt(s.row[2].z - zx * zx - zy * zy);
  std::vector<Vec3> positions;
  for (const Vec3& p : molecule.positions()) {
    const Vec3 r = p - centre;
    const double x = r.x / xx, y = (r.y - yx * x) / yy, z = (r.z - zx * x - zy * y) / zz;
    positions.push_back(
        {std::sqrt(wanted.x) * x, std::sqrt(wanted.y) * y, std::sqrt(wanted.z) * z});
  }
  return {molecule.labels(), std::move(positions)};
}

struct AccidentalTop {
  const char* name;
  const char* group;
  Atoms seeds;
  Vec3 part;  ///< of the second moments, per amu and in Angstrom^2
};

std::vector<AccidentalTop> accidental_tops() {
  const Atoms six_elements{{"C", {1.9, 0.3, -0.2}}, {"Cl", {-1.7, 0.5, 0.4}},
                           {"N", {0.2, 2.2, -0.5}}, {"S", {-0.4, -1.8, 0.6}},
                           {"O", {0.5, 0.1, 1.9}},  {"F", {0.3, -0.4, -2.0}}};
  Atoms one_element = six_elements;
  for (Atom& atom : one_element) atom.symbol = "C";
  const Atoms four_elements{{"C", {1.2, 1.1, 1.4}},
                            {"N", {-1.3, -1.0, 1.2}},
                            {"O", {-1.1, 1.3, -1.2}},
                            {"F", {1.0, -1.3, -1.1}}};
  const Atoms with_axis{{"O", {1.4, 0.2, 0.9}},
                        {"F", {0.5, 1.6, -1.0}},
                        {"C", {1.7, -1.0, -1.6}},
                        {"N", {0, 0, 2.9}}};
  return {
      {"oblate by accident, six elements", "C1", six_elements, {1.6, 1.6, 1.1}},
      {"prolate by accident, six elements", "C1", six_elements, {1.2, 1.2, 1.7}},
      {"spherical by accident, six elements", "C1", six_elements, {1.5, 1.5, 1.5}},
      {"oblate by accident, one element", "C1", one_element, {1.6, 1.6, 1.1}},
      {"prolate by accident, one element", "C1", one_element, {1.2, 1.2, 1.9}},
      {"spherical by accident, one element", "C1", one_element, {1.5, 1.5, 1.5}},
      {"spherical by accident, four elements", "C1", four_elements, {1.3, 1.3, 1.3}},
      {"oblate by accident, twofold axis", "C2", with_axis, {1.8, 1.3, 1.8}},
      {"prolate by accident, twofold axis", "C2", with_axis, {1.3, 1.3, 2.0}},
      {"spherical by accident, twofold axis", "C2", with_axis, {1.6, 1.6, 1.6}},
  };
}

/// Equal moments and no symmetry, or one too low to make them equal.
std::vector<MadeMolecule> tops_by_accident() {
  std::vector<MadeMolecule> molecules;
  for (const auto& [name, group, seeds, part] : accidental_tops()) {
    const Molecule skew = spread(seeds, group);
    const OwnedTable owned = table_of(skew);
    double mass = 0.0;
    for (std::int32_t i = 0; i < skew.size(); ++i) mass += owned.table().mass(i);
    molecules.push_back({name, group, with_second_moments(skew, mass * part),
                         point_groups().at(group).proper_order});
  }
  return molecules;
}

/// M at the origin and two atoms m at (+-x, 0, -z): the sums 2 m x^2 and 2 m M z^2 / (2 m + M) are
/// equal.
MadeMolecule bent_top_by_accident() {
  const OwnedTable masses = table_of(Molecule({label_of("S"), label_of("O")}, {{}, {0, 0, 1}}));
  const double M = masses.table().mass(0), m = masses.table().mass(1);
  const double x = 1.4, z = x * std::sqrt((2.0 * m + M) / M);
  return {"oblate by accident, three atoms", "C2v", spread({{"S", {}}, {"O", {x, 0, -z}}}, "C2v"),
          2};
}

std::vector<MadeMolecule> make_all() {
  std::vector<MadeMolecule> all;
  for (const auto& recipes :
       {small_molecules(), hydrocarbons_and_their_kin(), globes_and_sandwiches()})
    for (const auto& [name, group, seeds] : recipes)
      all.push_back({name, group, spread(seeds, group), point_groups().at(group).proper_order});
  const auto chiral_one = std::find_if(
      all.begin(), all.end(), [](const MadeMolecule& one) { return one.name == kHalomethane; });
  const MadeMolecule chiral = *chiral_one;
  all.push_back({chiral.name + ", mirror image", chiral.group, mirrored(chiral.molecule),
                 chiral.proper_order});
  for (MadeMolecule& top : tops_by_accident()) all.push_back(std::move(top));
  all.push_back(bent_top_by_accident());
  return all;
}

}  // namespace

const std::map<std::string_view, PointGroup>& point_groups() {
  static const auto groups = make_point_groups();
  return groups;
}

const std::vector<MadeMolecule>& made_molecules() {
  static const std::vector<MadeMolecule> all = make_all();
  return all;
}

const MadeMolecule& made(std::string_view name) {
  for (const MadeMolecule& one : made_molecules())
    if (one.name == name) return one;
  throw std::out_of_range("no molecule of this name: " + std::string(name));
}

}  // namespace dravo::test
