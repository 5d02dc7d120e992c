/// Types of rotors, moments of inertia and rotational constants.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "dravo/identify.hpp"
#include "identify/poses.hpp"
#include "inertia/centre_of_mass.hpp"
#include "inertia/inertia_tensor.hpp"

namespace dravo::test {
namespace {

constexpr double kTetrahedral = 109.4712206;

/// Three atoms around +z, `degrees` from it, `bond` Angstrom from the origin.
void add_tripod(std::vector<Atom>& atoms, std::string_view symbol, double bond, double degrees) {
  for (const double around : {0.0, 120.0, 240.0})
    atoms.push_back({symbol, bond * Vec3{std::sin(degrees * kDegree) * std::cos(around * kDegree),
                                         std::sin(degrees * kDegree) * std::sin(around * kDegree),
                                         std::cos(degrees * kDegree)}});
}

std::array<double, 3> moments_of(const std::vector<Atom>& atoms) {
  SmallTable table(atoms);
  const Vec3 cm = centre_of_mass(table.table(), table.rows());
  return principal_axes(inertia_tensor(table.table(), table.rows(), cm)).moments;
}

TEST(RotorTypes, AreThoseOfTheTextbook) {
  const std::vector<Atom> carbon_dioxide{{"C", {}}, {"O", {0, 0, 1.16}}, {"O", {0, 0, -1.16}}};
  std::vector<Atom> methane{{"C", {}}, {"H", {0, 0, 1.09}}};
  add_tripod(methane, "H", 1.09, kTetrahedral);
  // HNH 106.7 and HCH 110.4 degrees; sin(HXH / 2) = (sqrt 3 / 2) sin(angle to the axis).
  std::vector<Atom> ammonia{{"N", {}}};
  add_tripod(ammonia, "H", 1.012, 67.9);
  std::vector<Atom> chloromethane{{"C", {}}, {"Cl", {0, 0, 1.785}}};
  add_tripod(chloromethane, "H", 1.09, 108.5);
  std::vector<Atom> benzene;
  for (int k = 0; k < 6; ++k)
    for (const auto& [symbol, radius] : {std::pair{"C", 1.395}, {"H", 2.48}})
      benzene.push_back(
          {symbol, radius * Vec3{std::cos(60 * k * kDegree), std::sin(60 * k * kDegree), 0}});
  const SampleInput formamide = sample("formamide-dimer");

  const std::vector<std::tuple<const char*, std::vector<Atom>, const char*>> cases{
      {"carbon dioxide", carbon_dioxide, "linear"},
      {"methane", methane, "spherical top"},
      {"ammonia", ammonia, "oblate symmetric top"},
      {"benzene", benzene, "oblate symmetric top"},
      {"chloromethane", chloromethane, "prolate symmetric top"},
      {"formamide", molecule_of(formamide, true), "asymmetric top"},
  };
  for (const auto& [name, atoms, type] : cases)
    EXPECT_EQ(name_of(rotor_type(moments_of(atoms))), type) << name;
}

TEST(RotorTypes, TakeMomentsAsEqualUpToAThousandthPart) {
  const std::vector<std::pair<std::array<double, 3>, RotorType>> cases{
      {{9.9905, 9.995, 10.0}, RotorType::spherical}, {{9.98, 9.985, 10.0}, RotorType::oblate},
      {{5.0, 9.9905, 10.0}, RotorType::prolate},     {{5.0, 9.9895, 10.0}, RotorType::asymmetric},
      {{5.0, 5.0045, 10.0}, RotorType::oblate},      {{5.0, 5.0055, 10.0}, RotorType::asymmetric},
      {{0.0095, 9.0, 9.5}, RotorType::linear},       {{0.0115, 9.0, 9.5}, RotorType::asymmetric},
      {{-1e-40, 1.0, 1.0}, RotorType::linear},       {{0.0, 0.0, 0.0}, RotorType::spherical},
  };
  for (const auto& [moments, type] : cases)
    EXPECT_EQ(name_of(rotor_type(moments)), name_of(type))
        << moments[0] << ' ' << moments[1] << ' ' << moments[2];
}

TEST(Moments, AreThoseOfTheAtomsInBothUnits) {
  // Their sum is twice the sum of m m' d^2 over all pairs of atoms, divided by the mass.
  for (const char* name : kPlaceable) {
    const SampleInput given = sample(name);
    const Identification found = identify(pair_of(given));
    for (const bool first : {true, false}) {
      const std::vector<Atom> atoms = molecule_of(given, first);
      SmallTable table(atoms);
      double mass = 0.0, pairs = 0.0;
      for (std::int32_t i = 0; i < table.count(); ++i) {
        mass += table.table().mass(i);
        for (std::int32_t j = 0; j < i; ++j) {
          const Vec3 d = table.table().position(i) - table.table().position(j);
          pairs += table.table().mass(i) * table.table().mass(j) * dot(d, d);
        }
      }
      double sum = 0.0;
      for (const PrincipalAxis& axis : found.molecules[first ? 0 : 1].axes) {
        sum += axis.moment_amu;
        // 1 amu = 1.66053907e-24 g; h / (8 pi^2) = 505379.0 MHz amu Angstrom^2 (CODATA 2018).
        EXPECT_NEAR(axis.moment / axis.moment_amu, 1.66053907e-40, 1e-46);
        EXPECT_NEAR(axis.constant * axis.moment_amu, 505.3790, 1e-9 * 505.3790);
      }
      EXPECT_NEAR(sum, 2.0 * pairs / mass, 1e-9 * sum) << name;
    }
  }
}

TEST(RotationalConstants, OfFormamideAreThoseOfItsSpectrum) {
  // Microwave spectrum, GHz; E. Hirota et al., J. Mol. Spectrosc. 49, 251 (1974).
  const std::array gigahertz{72.717, 11.373, 9.834};
  // Planar; bonds and angles as found there: CN 1.352, CO 1.219, NH 1.002, CH 1.098 Angstrom, NCO
  // 124.7, HcisNC 118.5, HtransNC 120.0, NCH 112.7 degrees.
  const auto at = [](const Vec3& from, double bond, double degrees) {
    return from + bond * Vec3{std::cos(degrees * kDegree), std::sin(degrees * kDegree), 0};
  };
  const Vec3 nitrogen{1.352, 0, 0};
  const std::vector<Atom> formamide{{"C", {}},
                                    {"N", nitrogen},
                                    {"O", at({}, 1.219, 124.7)},
                                    {"H", at({}, 1.098, -112.7)},
                                    {"H", at(nitrogen, 1.002, 180.0 - 118.5)},
                                    {"H", at(nitrogen, 1.002, 180.0 + 120.0)}};
  const SampleInput dimer = sample("formamide-dimer");  // has the symbols of its atoms
  const std::vector<Atom> partner = molecule_of(dimer, false);
  const Identification found = identify(pair_of(formamide, partner));
  for (std::size_t k = 0; k < 3; ++k)
    EXPECT_NEAR(found.molecules[0].axes[k].constant, gigahertz[k], 0.02 * gigahertz[k]) << k;
}

}  // namespace
}  // namespace dravo::test
