#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "quantum/input_files.hpp"
#include "quantum/quantum_text.hpp"

namespace dravo {
namespace {

/// Which files of CP2K have a basis, and the potentials that go with it.
struct Cp2kBasis {
  std::string_view basis_file;
  std::string_view potential_file;
  std::string_view method;
  std::string potential;
};

Cp2kBasis basis_of(const QuantumJob& job) {
  if (job.basis.find("GTH") == std::string::npos)
    return {"EMSL_BASIS_SETS", "POTENTIAL", "GAPW", "ALL"};
  const bool molopt = job.basis.find("MOLOPT") != std::string::npos;
  return {molopt ? "BASIS_MOLOPT" : "GTH_BASIS_SETS", "GTH_POTENTIALS", "GPW", "GTH-" + job.method};
}

std::string bsse_section(const QuantumJob& job, const Pair& pair) {
  std::string text = fmt::format(
      "  &BSSE\n"
      "    &FRAGMENT\n      LIST 1..{}\n    &END FRAGMENT\n"
      "    &FRAGMENT\n      LIST {}..{}\n    &END FRAGMENT\n",
      pair.n1(), pair.n1() + 1, pair.size());
  struct Configuration {
    const char* functions;  ///< of which molecules
    const char* atoms;
    std::array<Presence, 2> molecules;
  };
  constexpr Presence kReal = Presence::real, kNone = Presence::absent;
  constexpr std::array<Configuration, 5> kConfigurations{{{"1 0", "1 0", {kReal, kNone}},
                                                          {"0 1", "0 1", {kNone, kReal}},
                                                          {"1 1", "1 0", {kReal, kNone}},
                                                          {"1 1", "0 1", {kNone, kReal}},
                                                          {"1 1", "1 1", {kReal, kReal}}}};
  for (const Configuration& configuration : kConfigurations) {
    const QuantumSystem system{"", configuration.molecules};
    text += fmt::format(
        "    &CONFIGURATION\n      GLB_CONF {}\n      SUB_CONF {}\n      CHARGE {}\n"
        "      MULTIPLICITY {}\n    &END CONFIGURATION\n",
        configuration.functions, configuration.atoms, charge_of(job, system),
        multiplicity_of(job, system));
  }
  return text + "  &END BSSE\n";
}

std::string electrons(const QuantumJob& job, const QuantumSystem& system, const Cp2kBasis& basis) {
  std::string text = fmt::format(
      "  &DFT\n"
      "    BASIS_SET_FILE_NAME {}\n    POTENTIAL_FILE_NAME {}\n"
      "    CHARGE {}\n    MULTIPLICITY {}\n",
      basis.basis_file, basis.potential_file, charge_of(job, system), multiplicity_of(job, system));
  if (job.multiplicities != std::array{1, 1}) text += "    UKS TRUE\n";
  text += fmt::format(
      "    &QS\n      METHOD {}\n    &END QS\n"
      "    &POISSON\n      PERIODIC NONE\n      POISSON_SOLVER MT\n    &END POISSON\n"
      "    &SCF\n      EPS_SCF 1.0E-6\n      MAX_SCF 100\n    &END SCF\n"
      "    &XC\n      &XC_FUNCTIONAL {}\n      &END XC_FUNCTIONAL\n    &END XC\n",
      basis.method, job.method);
  for (const std::string& line : job.keywords) text += fmt::format("    {}\n", line);
  return text + "  &END DFT\n";
}

/// Whole Angstrom. The solver needs twice the width of the density, which reaches a few Angstrom
/// beyond the atoms.
std::string cell(const Pair& pair) {
  constexpr double kBeyond = 3.0;
  Vec3 low = pair.positions()[0], high = low;
  for (const Vec3& p : pair.positions()) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
  }
  const auto edge = [](double from, double to) {
    return std::ceil(2.0 * (to - from + 2.0 * kBeyond));
  };
  return fmt::format(
      "    &CELL\n      ABC {:.1f} {:.1f} {:.1f}\n      PERIODIC NONE\n    &END CELL\n",
      edge(low.x, high.x), edge(low.y, high.y), edge(low.z, high.z));
}

std::string kinds(const QuantumJob& job, const Cp2kBasis& basis, const Pair& pair) {
  std::string text;
  for (const std::string_view element : elements_of(pair))
    text += fmt::format(
        "    &KIND {0}\n      ELEMENT {0}\n      BASIS_SET {1}\n      POTENTIAL {2}\n"
        "    &END KIND\n"
        "    &KIND {0}_ghost\n      ELEMENT {0}\n      BASIS_SET {1}\n      GHOST\n"
        "    &END KIND\n",
        element, job.basis, basis.potential);
  return text;
}

}  // namespace

std::string cp2k_input(const QuantumJob& job, const QuantumSystem& system,
                       const NumberedPair& pose) {
  const Cp2kBasis basis = basis_of(job);
  const bool together = in_one_file(job);
  std::string text = fmt::format(
      "# pose {}\n&GLOBAL\n  PROJECT {}\n  RUN_TYPE {}\n  PRINT_LEVEL MEDIUM\n&END GLOBAL\n"
      "&FORCE_EVAL\n  METHOD QUICKSTEP\n",
      pose.index, system.name, together ? "BSSE" : "ENERGY");
  if (together) text += bsse_section(job, pose.pair);
  text += electrons(job, system, basis);
  text += "  &SUBSYS\n" + cell(pose.pair) + "    &COORD\n";
  append_atom_lines(text, atoms_of(pose.pair, system), {"", "_ghost"});
  text += "    &END COORD\n" + kinds(job, basis, pose.pair);
  return text + "  &END SUBSYS\n&END FORCE_EVAL\n";
}

}  // namespace dravo
