#include "properties/molecules.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <ostream>
#include <random>
#include <utility>

#include "driver/element_table.hpp"

namespace dravo {

void showValue(const PoseDegrees& degrees, std::ostream& out) {
  out.precision(17);
  out << "r " << degrees.r << " theta " << degrees.theta << " phi " << degrees.phi << " alpha "
      << degrees.alpha << " beta " << degrees.beta << " gamma " << degrees.gamma;
}

}  // namespace dravo

namespace dravo::test {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegree = kPi / 180.0;

std::size_t atomic_number(const Atom& atom) {
  const auto elements = element_table();
  const auto found = std::find_if(elements.begin(), elements.end(),
                                  [&](const Element& e) { return e.symbol == atom.symbol; });
  return static_cast<std::size_t>(found - elements.begin()) + 1;
}

double mass(const Atom& atom) {
  return static_cast<double>(element_table()[atomic_number(atom) - 1].mass);
}

/// Half widths of the boxes that the atoms lie in, Angstrom.
constexpr std::array<Vec3, 4> kBoxes{
    {{3.0, 3.0, 3.0}, {3.0, 2.0, 1.0}, {3.0, 3.0, 0.0}, {3.0, 0.3, 0.3}}};

rc::Gen<std::string_view> any_element() {
  const auto any = rc::gen::map(rc::gen::resize(rc::kNominalSize, rc::gen::inRange(0, 92)),
                                [](int k) { return element_table()[std::size_t(k)].symbol; });
  const auto common = rc::gen::element<std::string_view>("H", "C", "N", "O", "F", "P", "S", "Cl");
  return rc::gen::weightedOneOf<std::string_view>({{4, common}, {1, any}});
}

rc::Gen<Molecule> any_molecule() {
  return rc::gen::exec([] {
    const int count = *rc::gen::resize(rc::kNominalSize, rc::gen::inRange(3, 13));
    const Vec3 box = *rc::gen::elementOf(kBoxes);
    const bool one_element = *rc::gen::weightedElement<bool>({{7, false}, {1, true}});
    const std::string_view element = *any_element();
    Molecule molecule;
    for (int i = 0; i < count; ++i)
      molecule.push_back(
          {one_element ? element : *any_element(),
           {*uniform(-box.x, box.x), *uniform(-box.y, box.y), *uniform(-box.z, box.z)}});
    return molecule;
  });
}

/// Of a quaternion of any length; one of nearly none turns nothing.
Matrix3 rotation_of(double w, double x, double y, double z) {
  const double n = w * w + x * x + y * y + z * z;
  if (n < 0.01) return {{{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}}};
  const double s = 2.0 / n;
  return {{{{1.0 - s * (y * y + z * z), s * (x * y - w * z), s * (x * z + w * y)},
            {s * (x * y + w * z), 1.0 - s * (x * x + z * z), s * (y * z - w * x)},
            {s * (x * z - w * y), s * (y * z + w * x), 1.0 - s * (x * x + y * y)}}}};
}

using Square = std::array<std::array<double, 3>, 3>;

Square inertia_of(const Molecule& molecule, const Vec3& centre) {
  Square tensor{};
  for (const Atom& atom : molecule) {
    const Vec3 d = atom.position - centre;
    const std::array<double, 3> v{d.x, d.y, d.z};
    for (std::size_t i = 0; i < 3; ++i)
      for (std::size_t j = 0; j < 3; ++j)
        tensor[i][j] += mass(atom) * ((i == j ? dot(d, d) : 0.0) - v[i] * v[j]);
  }
  return tensor;
}

/// Turns rows and columns p and q of a symmetric matrix so that the element they share vanishes.
void annihilate(Square& a, Square& columns, std::size_t p, std::size_t q) {
  if (a[p][q] == 0.0) return;
  const double angle = 0.5 * std::atan2(2.0 * a[p][q], a[q][q] - a[p][p]);
  const double c = std::cos(angle), s = std::sin(angle);
  const auto turn = [&](double& first, double& second) {
    const double old = first;
    first = c * old - s * second;
    second = s * old + c * second;
  };
  for (std::size_t k = 0; k < 3; ++k) turn(a[k][p], a[k][q]);
  for (std::size_t k = 0; k < 3; ++k) turn(a[p][k], a[q][k]);
  for (std::size_t k = 0; k < 3; ++k) turn(columns[k][p], columns[k][q]);
}

/// Moments in ascending order with their axes; the axes have no direction yet.
struct Inertia {
  std::array<double, 3> moments;
  std::array<Vec3, 3> axes;
};

/// By Jacobi's rotations.
Inertia principal(Square tensor) {
  Square columns{{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};
  for (int sweep = 0; sweep < 30; ++sweep)
    for (const auto& [p, q] : {std::pair{0U, 1U}, std::pair{0U, 2U}, std::pair{1U, 2U}})
      annihilate(tensor, columns, p, q);
  std::array<std::size_t, 3> order{0, 1, 2};
  std::sort(order.begin(), order.end(),
            [&](std::size_t a, std::size_t b) { return tensor[a][a] < tensor[b][b]; });
  Inertia result{};
  for (std::size_t k = 0; k < 3; ++k) {
    const std::size_t from = order[k];
    result.moments[k] = tensor[from][from];
    result.axes[k] = {columns[0][from], columns[1][from], columns[2][from]};
  }
  return result;
}

/// From the centre of mass to the centre of the atoms of the highest atomic number.
Vec3 reference_of(const Molecule& molecule, const Vec3& centre) {
  std::size_t highest = 0;
  for (const Atom& atom : molecule) highest = std::max(highest, atomic_number(atom));
  Vec3 sum;
  double count = 0.0;
  for (const Atom& atom : molecule)
    if (atomic_number(atom) == highest) {
      sum = sum + atom.position;
      count += 1.0;
    }
  return (1.0 / count) * sum - centre;
}

/// Degrees by which a reference leans out of the plane normal to an axis, towards the axis.
double lean(const Vec3& axis, const Vec3& reference) {
  return std::asin(std::clamp(dot(axis, reference) / modulus(reference), -1.0, 1.0)) / kDegree;
}

bool gaps_are_wide(const std::array<double, 3>& moments) {
  const double least = 0.01 * moments[2];
  return moments[1] - moments[0] > least && moments[2] - moments[1] > least;
}

double full_turns_off(double degrees) { return degrees < 0.0 ? degrees + 360.0 : degrees; }

}  // namespace

void showValue(const Molecule& molecule, std::ostream& out) {
  out.precision(17);
  for (const auto& [symbol, p] : molecule)
    out << symbol << ' ' << p.x << ' ' << p.y << ' ' << p.z << '\n';
}

void showValue(const MoleculePair& pair, std::ostream& out) {
  out << "\nmolecule 1:\n";
  showValue(pair.one, out);
  out << "molecule 2:\n";
  showValue(pair.two, out);
}

rc::Gen<double> uniform(double low, double high) {
  constexpr int steps = 1000000;
  return rc::gen::map(rc::gen::resize(rc::kNominalSize, rc::gen::inRange(0, steps + 1)),
                      [=](int k) { return low + (high - low) * k / steps; });
}

rc::Gen<Pose> any_pose(std::size_t atoms) {
  return rc::gen::exec([atoms] {
    const auto part = [] { return *uniform(-1.0, 1.0); };
    const auto shift = [] { return *uniform(-20.0, 20.0); };
    const double w = part(), x = part(), y = part(), z = part();
    Pose pose{rotation_of(w, x, y, z), {}, {}};
    pose.translation.x = shift();
    pose.translation.y = shift();
    pose.translation.z = shift();
    pose.order.resize(atoms);
    std::iota(pose.order.begin(), pose.order.end(), std::size_t{0});
    std::shuffle(pose.order.begin(), pose.order.end(),
                 std::mt19937(*rc::gen::arbitrary<std::uint32_t>()));
    return pose;
  });
}

Molecule posed(const Molecule& molecule, const Pose& pose) {
  Molecule result;
  for (const std::size_t atom : pose.order)
    result.push_back(
        {molecule[atom].symbol, pose.rotation * molecule[atom].position + pose.translation});
  return result;
}

rc::Gen<MoleculePair> any_pair() {
  return rc::gen::exec([] {
    const Molecule one = *any_molecule();
    const bool repeated = *rc::gen::weightedElement<bool>({{5, false}, {1, true}});
    const Molecule two = repeated ? one : *any_molecule();
    const Pose pose1 = *any_pose(one.size());
    const Pose pose2 = *any_pose(two.size());
    return MoleculePair{posed(one, pose1), posed(two, pose2)};
  });
}

rc::Gen<PoseDegrees> any_parameters() {
  return rc::gen::exec([] {
    const auto angle = [](double highest) {
      const auto special = highest > 180.0
                               ? rc::gen::element(0.0, 90.0, 180.0, 270.0, 360.0, 0.05, 0.1)
                               : rc::gen::element(0.0, 90.0, 180.0, 0.05, 0.4, 179.92, 179.5);
      return *rc::gen::weightedOneOf<double>({{2, uniform(0.0, highest)}, {1, special}});
    };
    PoseDegrees degrees;
    degrees.r = *rc::gen::weightedOneOf<double>(
        {{6, uniform(0.0, 20.0)}, {1, rc::gen::element(0.0, 20.0)}});
    degrees.theta = angle(180.0);
    degrees.phi = angle(360.0);
    degrees.alpha = angle(360.0);
    degrees.beta = angle(180.0);
    degrees.gamma = angle(360.0);
    return degrees;
  });
}

PoseDegrees nudged(PoseDegrees degrees) {
  struct Nudge {
    double PoseDegrees::*angle;
    float from;
    float below;
    float used;
  };
  constexpr std::array<Nudge, 6> kNudges{{
      {&PoseDegrees::alpha, 0.0F, 0.1F, 0.09F},
      {&PoseDegrees::gamma, 0.0F, 0.1F, 0.09F},
      {&PoseDegrees::theta, 0.0F, 0.05F, 0.049F},
      {&PoseDegrees::phi, 0.0F, 0.05F, 0.049F},
      {&PoseDegrees::theta, 179.91F, 180.09F, 179.99F},
      {&PoseDegrees::beta, 179.91F, 180.09F, 179.99F},
  }};
  for (const Nudge& nudge : kNudges) {
    double& value = degrees.*nudge.angle;
    if (value >= static_cast<double>(nudge.from) && value < static_cast<double>(nudge.below))
      value = static_cast<double>(nudge.used);
  }
  if (degrees.beta < 0.5) degrees.gamma = static_cast<double>(0.09F);
  return degrees;
}

PoseRadians radians_of(const PoseDegrees& degrees) {
  return {degrees.r,
          degrees.theta * kDegree,
          degrees.phi * kDegree,
          degrees.alpha * kDegree,
          degrees.beta * kDegree,
          degrees.gamma * kDegree};
}

Vec3 centre_of(const Molecule& molecule) {
  Vec3 sum;
  double total = 0.0;
  for (const Atom& atom : molecule) {
    sum = sum + mass(atom) * atom.position;
    total += mass(atom);
  }
  return (1.0 / total) * sum;
}

FrameOutlook outlook(const Molecule& molecule, int number) {
  const Vec3 centre = centre_of(molecule);
  auto [moments, axes] = principal(inertia_of(molecule, centre));
  const Vec3 reference = reference_of(molecule, centre);
  FrameOutlook result;
  result.certain = gaps_are_wide(moments) && std::abs(modulus(reference) - 0.1) > 0.001;
  if (!(modulus(reference) > 0.1)) return result;

  std::size_t with_direction = 0;
  std::size_t gives_up = number == 1 ? 2 : 0;  // x or Y, unless one has no direction to give up
  for (std::size_t k = 0; k < 3; ++k) {
    const double degrees = lean(axes[k], reference);
    if (!(std::abs(std::abs(degrees) - 5.0) > 0.1)) result.certain = false;
    if (degrees < 0.0) axes[k] = -axes[k];
    if (std::abs(degrees) > 5.0)
      ++with_direction;
    else
      gives_up = k;
  }
  if (with_direction < 2) return result;

  // z, y, x and Y, X, Z: both orders are left-handed.
  if (dot(cross(axes[0], axes[1]), axes[2]) > 0.0) axes[gives_up] = -axes[gives_up];
  result.axes = number == 1 ? Axes{axes[2], axes[1], axes[0]} : Axes{axes[1], axes[0], axes[2]};
  return result;
}

bool has_certain_frames(const MoleculePair& pair) {
  const FrameOutlook one = outlook(pair.one, 1), two = outlook(pair.two, 2);
  return one.certain && two.certain && one.axes && two.axes;
}

Matrix3 rotation_by(const PoseRadians& radians) {
  const double sa = std::sin(radians.alpha), ca = std::cos(radians.alpha);
  const double sb = std::sin(radians.beta), cb = std::cos(radians.beta);
  const double sg = std::sin(radians.gamma), cg = std::cos(radians.gamma);
  return {{{{ca * cb * cg - sa * sg, sa * cb * cg + ca * sg, -sb * cg},
            {-ca * cb * sg - sa * cg, ca * cg - sa * cb * sg, sb * sg},
            {ca * sb, sa * sb, cb}}}};
}

PoseDegrees angles_between(const Axes& one, const Axes& two) {
  // A carries X, Y, Z onto x, y, z: its element in row Z and column x is Z . x, and so on.
  PoseDegrees degrees;
  degrees.alpha = full_turns_off(std::atan2(dot(two.z, one.y), dot(two.z, one.x)) / kDegree);
  degrees.beta = std::acos(std::clamp(dot(two.z, one.z), -1.0, 1.0)) / kDegree;
  degrees.gamma = full_turns_off(std::atan2(dot(two.y, one.z), -dot(two.x, one.z)) / kDegree);
  return degrees;
}

bool meets_full_turn(const PoseDegrees& degrees) {
  const double sine = std::sin(degrees.beta * kDegree);
  const auto near = [&](double angle) {
    if (angle < 0.02 || angle > 359.9) return true;
    return sine > 0.001 && (360.0 - angle) * kDegree * sine < 0.005;
  };
  return near(degrees.alpha) || near(degrees.gamma);
}

}  // namespace dravo::test
