#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "dravo/energy.hpp"
#include "support/message_of.hpp"

namespace dravo::test {
namespace {

TEST(EnergyMethods, HaveNames) {
  constexpr std::array<std::pair<EnergyMethod, std::string_view>, 4> kNames{
      {{EnergyMethod::gfnff, "gfnff"},
       {EnergyMethod::gfn2, "gfn2"},
       {EnergyMethod::gfn1, "gfn1"},
       {EnergyMethod::command, "command"}}};
  for (const auto& [method, name] : kNames) {
    EXPECT_EQ(name_of(method), name);
    EXPECT_EQ(energy_method(name), method);
  }
}

TEST(EnergyMethods, AreSpeltAsTheyAre) {
  for (const std::string name : {"", "GFN2", "gfn", "gfn2 ", "pm6"})
    EXPECT_EQ(message_of<InvalidInput>([&] { (void)energy_method(name); }),
              "expected one of gfnff, gfn2, gfn1, command, found \"" + name + "\"");
}

TEST(EnergyUnits, HaveNames) {
  EXPECT_EQ(energy_unit("hartree"), EnergyUnit::hartree);
  EXPECT_EQ(energy_unit("ev"), EnergyUnit::ev);
  EXPECT_EQ(energy_unit("kcal/mol"), EnergyUnit::kcal_mol);
  EXPECT_EQ(energy_unit("kj/mol"), EnergyUnit::kj_mol);
  EXPECT_EQ(message_of<InvalidInput>([] { (void)energy_unit("eV"); }),
            "expected one of hartree, ev, kcal/mol, kj/mol, found \"eV\"");
}

TEST(EnergyStatuses, HaveNames) {
  constexpr std::array<std::pair<EnergyStatus, std::string_view>, 5> kNames{
      {{EnergyStatus::ok, "ok"},
       {EnergyStatus::clash, "clash"},
       {EnergyStatus::scf_fail, "scf_fail"},
       {EnergyStatus::nonphysical, "nonphysical"},
       {EnergyStatus::engine_died, "engine_died"}}};
  for (const auto& [status, name] : kNames) {
    EXPECT_EQ(name_of(status), name);
    EXPECT_EQ(energy_status(name), std::optional(status));
  }
  for (const std::string_view name : {"", "OK", "scf", "clash "})
    EXPECT_EQ(energy_status(name), std::nullopt) << name;
}

// The values of CODATA 2018: Hartree and Bohr, with Avogadro's number and 4184 J exact.
TEST(EnergyConstants, AreThoseOfCodata) {
  constexpr double kJoulesPerHartree = 4.3597447222071e-18, kAvogadro = 6.02214076e23;
  EXPECT_NEAR(kKcalPerMolPerHartree, kJoulesPerHartree * kAvogadro / 4184.0, 1e-9);
  EXPECT_EQ(kAngstromPerBohr, 0.529177210903);
}

}  // namespace
}  // namespace dravo::test
