#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "common/shown_text.hpp"
#include "dravo/error.hpp"
#include "driver/element_table.hpp"
#include "quantum/input_files.hpp"
#include "quantum/quantum_text.hpp"

namespace dravo {
namespace {

struct Named {
  std::string_view name;
  std::string_view words;
};

constexpr std::array<Named, 14> kBases{{
    {"sto-3g", "GBASIS=STO NGAUSS=3"},
    {"3-21g", "GBASIS=N21 NGAUSS=3"},
    {"6-31g", "GBASIS=N31 NGAUSS=6"},
    {"6-31g*", "GBASIS=N31 NGAUSS=6 NDFUNC=1"},
    {"6-31g(d)", "GBASIS=N31 NGAUSS=6 NDFUNC=1"},
    {"6-31g**", "GBASIS=N31 NGAUSS=6 NDFUNC=1 NPFUNC=1"},
    {"6-31g(d,p)", "GBASIS=N31 NGAUSS=6 NDFUNC=1 NPFUNC=1"},
    {"6-311g**", "GBASIS=N311 NGAUSS=6 NDFUNC=1 NPFUNC=1"},
    {"cc-pvdz", "GBASIS=CCD"},
    {"cc-pvtz", "GBASIS=CCT"},
    {"cc-pvqz", "GBASIS=CCQ"},
    {"aug-cc-pvdz", "GBASIS=ACCD"},
    {"aug-cc-pvtz", "GBASIS=ACCT"},
    {"aug-cc-pvqz", "GBASIS=ACCQ"},
}};

/// Behind SCFTYP; other methods than these are functionals.
constexpr std::array<Named, 5> kMethods{{
    {"hf", ""},
    {"scf", ""},
    {"mp2", " MPLEVL=2"},
    {"ccsd", " CCTYP=CCSD"},
    {"ccsd(t)", " CCTYP=CCSD(T)"},
}};

template <std::size_t size>
const Named* named(const std::array<Named, size>& table, const std::string& name) {
  const auto* const found = std::find_if(table.begin(), table.end(), [&](const Named& each) {
    return each.name == small_letters(name);
  });
  return found == table.end() ? nullptr : found;
}

std::string words_of_method(const std::string& method) {
  const Named* const known = named(kMethods, method);
  return known != nullptr ? std::string(known->words) : " DFTTYP=" + method;
}

}  // namespace

std::string gamess_basis(const std::string& name) {
  if (name.find('=') != std::string::npos) return name;
  if (const Named* const known = named(kBases, name)) return std::string(known->words);
  std::string names;
  for (const Named& basis : kBases)
    names += fmt::format("{}{}", names.empty() ? "" : ", ", basis.name);
  throw InvalidInput(fmt::format(
      "--basis: expected one of {}, or the words of a $BASIS group such as GBASIS=CCD, found {}",
      names, dravo::quoted(name)));
}

namespace {

/// Correlation-consistent functions are spherical; GAMESS takes Cartesian ones if nobody says so.
std::string words_of_functions(const std::string& basis) {
  const bool spherical = basis.starts_with("GBASIS=CC") || basis.starts_with("GBASIS=ACC");
  return spherical ? " ISPHER=1" : "";
}

/// It has no coupled clusters on unrestricted orbitals.
std::string_view orbitals_of(const std::string& words_of_method, int multiplicity) {
  if (multiplicity == 1) return "RHF";
  return words_of_method.starts_with(" CCTYP") ? "ROHF" : "UHF";
}

}  // namespace

std::string gamess_input(const QuantumJob& job, const QuantumSystem& system,
                         const NumberedPair& pose) {
  const int multiplicity = multiplicity_of(job, system);
  const std::string method = words_of_method(job.method), basis = gamess_basis(job.basis);
  std::string text = fmt::format(
      "! pose {}, {}\n"
      " $CONTRL SCFTYP={} RUNTYP=ENERGY{}\n"
      "  ICHARG={} MULT={}{} COORD=UNIQUE UNITS=ANGS NOSYM=1 $END\n",
      pose.index, system.name, orbitals_of(method, multiplicity), method, charge_of(job, system),
      multiplicity, words_of_functions(basis));
  constexpr int kMegawords = 125;  // a word has eight bytes
  if (job.memory > 0)
    text += fmt::format(" $SYSTEM MWORDS={} $END\n", kMegawords * job.memory / job.cores);
  text += fmt::format(" $BASIS {} $END\n", basis);
  for (const std::string& line : job.keywords) text += fmt::format(" {}\n", line);
  text += fmt::format(" $DATA\npose {}\nC1\n", pose.index);
  for (const SystemAtom& atom : atoms_of(pose.pair, system)) {
    const Label label{atom.symbol[0], atom.symbol.size() > 1 ? atom.symbol[1] : ' '};
    const int protons = atomic_number_of_symbol(label).value_or(0);
    text += fmt::format("{:<2} {:>6.1f}", atom.symbol, atom.ghost ? -1.0 * protons : protons);
    append_coordinates(text, atom.position);
  }
  return text + " $END\n";
}

}  // namespace dravo
